#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace orv {

constexpr uint32_t kNoTriangle = 0xFFFFFFFF;

// What the strip search knows of a triangle list: the triangles that take part, those that touch
// each vertex, and those that lie across each edge.
struct StripAdjacency {
  using Triangle = std::array<uint16_t, 3>;

  // Without degenerate triangles and without repetitions: a triangle with the corners of an
  // earlier one in the same order. A rotated order is no repetition.
  std::vector<Triangle> triangles;
  std::vector<uint32_t>
      firstTouching;               // per vertex, and one more: where its part of touching begins
  std::vector<uint32_t> touching;  // triangles, ascending for each vertex
  // Per triangle the ones across its edges 0-1, 1-2 and 2-0, or kNoTriangle. An edge joins the
  // first two triangles that have it; any further one has no neighbour there.
  std::vector<std::array<uint32_t, 3>> across;

  uint32_t VertexCount() const { return static_cast<uint32_t>(firstTouching.size()) - 1; }
  std::span<const uint32_t> TrianglesAt(uint32_t vertex) const {
    return {touching.data() + firstTouching[vertex], touching.data() + firstTouching[vertex + 1]};
  }
};

// Takes time in proportion to the triangles and the largest index, however crowded a vertex is.
StripAdjacency BuildStripAdjacency(std::span<const uint16_t> indices);

}  // namespace orv
