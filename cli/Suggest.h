#pragma once

#include <string>
#include <vector>

namespace orv::cli {

// " Did you mean 'NAME'?" with the candidate closest to the word by edit distance, ignoring case;
// "" when none is near.
std::string DidYouMean(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace orv::cli
