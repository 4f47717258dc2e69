#pragma once

#include <string>
#include <vector>

namespace orv {

// What a line says, between blanks; 'a word in these' may hold some.
std::vector<std::string> WordsOf(const std::string& line);

// Writes the scenes of a text like scenes.txt into a folder.
void WriteScenes(const std::string& text, const std::string& pictures, const std::string& folder);

}  // namespace orv
