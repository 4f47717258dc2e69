#pragma once

#include <string_view>

namespace orv {

// Each reads bytes that nobody vouches for and stops the program when what comes out is not what
// the reader promises, or takes memory that the bytes do not account for. What could be read is
// then inspected as a user would.
void FuzzIndexedMesh(std::string_view bytes);
void FuzzAnimation(std::string_view bytes);
void FuzzXml(std::string_view bytes);
void FuzzEvents(std::string_view bytes);

}  // namespace orv
