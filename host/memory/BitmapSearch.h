#pragma once

#include <optional>
#include <span>
#include <string>

namespace orv::host {

// The file that a scene means by a bitmap's name. Scenes come from other machines: so the name is
// looked for in each folder, first with its own folders ("maps/wood.png"), then with fewer and
// fewer of them ("wood.png"), whichever way its slashes lean; where nothing is spelled so, upper
// and lower case count as the same. A full name that exists stands for itself.
std::optional<std::string> FindBitmapFile(const std::string& name,
                                          std::span<const std::string> folders);

// "my%20wall.png" is "my wall.png".
std::string WithoutPercentCodes(const std::string& name);

}  // namespace orv::host
