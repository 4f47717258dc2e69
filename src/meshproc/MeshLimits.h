#pragma once

#include <cstdint>

namespace orv {

// What the engine takes in one chunk. A chunk with more vertices or indices is split; the bones
// bind only the pieces of a split chunk.
struct MeshLimits {
  uint32_t vertices = 32000;
  uint32_t indices = 32000;  // at least 3
  uint32_t bones = 16;       // at most 31
};

}  // namespace orv
