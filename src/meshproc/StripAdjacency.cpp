#include "meshproc/StripAdjacency.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace orv {
namespace {

using Triangle = StripAdjacency::Triangle;

// A set of triangles by their corners in order, with open addressing. A triangle seen before has
// all three edges in the table already, so asking for the corners alone asks for both.
class SeenTriangles {
 public:
  explicit SeenTriangles(size_t triangleCount)
      : m_slots(std::bit_ceil(2 * triangleCount + 1), kEmpty),
        m_shift(64 - std::countr_zero(m_slots.size())) {}

  // Whether the triangle is new.
  bool Insert(const Triangle& corners) {
    const uint64_t key = uint64_t{corners[0]} << 32 | uint64_t{corners[1]} << 16 | corners[2];
    const size_t mask = m_slots.size() - 1;
    size_t slot = m_shift < 64 ? (key * 0x9E3779B97F4A7C15u) >> m_shift : 0;
    while (m_slots[slot] != kEmpty) {
      if (m_slots[slot] == key) return false;
      slot = (slot + 1) & mask;
    }
    m_slots[slot] = key;
    return true;
  }

 private:
  static constexpr uint64_t kEmpty = ~uint64_t{0};  // a key has 48 bits

  std::vector<uint64_t> m_slots;
  int m_shift;
};

bool IsDegenerate(const Triangle& corners) {
  return corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0];
}

std::vector<Triangle> TakeTriangles(std::span<const uint16_t> indices) {
  std::vector<Triangle> triangles;
  triangles.reserve(indices.size() / 3);
  SeenTriangles seen(indices.size() / 3);
  for (size_t i = 0; i + 3 <= indices.size(); i += 3) {
    const Triangle corners = {indices[i], indices[i + 1], indices[i + 2]};
    if (!IsDegenerate(corners) && seen.Insert(corners)) triangles.push_back(corners);
  }
  return triangles;
}

void ListTouching(StripAdjacency& adjacency) {
  uint32_t highest = 0;
  for (const Triangle& corners : adjacency.triangles)
    highest = std::max<uint32_t>(highest, *std::max_element(corners.begin(), corners.end()));

  std::vector<uint32_t>& first = adjacency.firstTouching;
  first.assign(highest + 2, 0);
  for (const Triangle& corners : adjacency.triangles)
    for (const uint16_t vertex : corners) ++first[vertex];
  std::partial_sum(first.begin(), first.end(), first.begin());
  // Filled from the back, each first[v] sinks from the end of its part to the beginning.
  adjacency.touching.resize(3 * adjacency.triangles.size());
  for (size_t t = adjacency.triangles.size(); t-- > 0;)
    for (const uint16_t vertex : adjacency.triangles[t])
      adjacency.touching[--first[vertex]] = static_cast<uint32_t>(t);
}

// Meets the edges vertex by vertex, so that an edge is known by its other end alone and a plain
// array serves as the table. An edge belongs to its lower vertex.
void JoinAcrossEdges(StripAdjacency& adjacency) {
  struct Edge {
    uint32_t lower = kNoTriangle;     // the vertex for which this entry was last used
    uint32_t triangle = kNoTriangle;  // the first one; kNoTriangle when the edge is full
    uint32_t side = 0;
  };
  std::vector<Edge> edges(adjacency.VertexCount());
  adjacency.across.assign(adjacency.triangles.size(), {kNoTriangle, kNoTriangle, kNoTriangle});
  for (uint32_t lower = 0; lower < adjacency.VertexCount(); ++lower) {
    for (const uint32_t triangle : adjacency.TrianglesAt(lower)) {
      const Triangle& corners = adjacency.triangles[triangle];
      for (uint32_t side = 0; side < 3; ++side) {
        const auto [low, high] = std::minmax(corners[side], corners[(side + 1) % 3]);
        if (low != lower) continue;
        Edge& edge = edges[high];
        if (edge.lower != lower) {
          edge = {lower, triangle, side};
        } else if (edge.triangle != kNoTriangle) {
          adjacency.across[triangle][side] = edge.triangle;
          adjacency.across[edge.triangle][edge.side] = triangle;
          edge.triangle = kNoTriangle;
        }
      }
    }
  }
}

}  // namespace

StripAdjacency BuildStripAdjacency(std::span<const uint16_t> indices) {
  StripAdjacency adjacency;
  adjacency.triangles = TakeTriangles(indices);
  ListTouching(adjacency);
  JoinAcrossEdges(adjacency);
  return adjacency;
}

}  // namespace orv
