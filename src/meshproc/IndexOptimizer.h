#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace orv {

// A cache-friendly order for the triangles of an indexed list, for a first-in first-out cache of
// 10 vertices. Each triangle keeps its own corner order. A degenerate triangle and the repetition
// of a triangle (same corners in the same order) are left out, so the result can be shorter.
std::vector<uint16_t> OptimizeTriangleOrder(std::span<const uint16_t> indices);

// New numbers for vertices in order of first use; 0xFFFFFFFF for a vertex that no index names.
std::vector<uint32_t> RemapInOrderOfFirstUse(std::span<const uint16_t> indices, size_t vertexCount);

}  // namespace orv
