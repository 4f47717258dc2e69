#pragma once

#include <string>
#include <vector>

namespace orv::convert {

// What the user is told of a conversion.
struct Messages {
  std::vector<std::string> mended;  // what is not in the result as it is in the files
  std::vector<std::string> notes;   // what was taken for granted

  // Nothing for a count of 0.
  void Mended(const std::string& place, size_t count, const std::string& what) {
    if (count > 0) mended.push_back(place + ": " + std::to_string(count) + " " + what);
  }
};

}  // namespace orv::convert
