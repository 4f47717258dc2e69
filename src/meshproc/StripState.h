#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "meshproc/StripAdjacency.h"

namespace orv {

// A triangle as one of its vertices sees it.
struct StripCorner {
  uint32_t triangle : 30;
  uint32_t corner : 2;
};

// The triangles emitted so far, the vertex cache that they leave behind, and what is still to
// come. All of it can be rewound, so that a walk can be tried out.
//
// The cache is first-in first-out: a vertex is cached while fewer than cacheSize loads followed
// its own. Loads are numbered in order; the cached ones are the last cacheSize numbers.
class StripState {
 public:
  struct Triangle {
    std::array<uint16_t, 3> corners;
    bool emitted = false;
    std::array<uint32_t, 3> across;
  };
  struct Mark {
    uint32_t emitted;
    uint32_t loads;
    uint32_t reloads;
  };

  StripState(const StripAdjacency& adjacency, uint32_t cacheSize);

  void Emit(uint32_t triangle) {
    Triangle& emitted = m_triangles[triangle];
    for (const uint16_t vertex : emitted.corners) Use(vertex);
    emitted.emitted = true;
    m_order[m_emitted++] = triangle;
  }

  Mark Here() const { return {m_emitted, m_loads, m_reloads}; }
  void Rewind(const Mark& mark);  // not to before the last Settle
  // What has been emitted will not be rewound any more.
  void Settle();

  uint32_t CacheSize() const { return m_cacheSize; }
  uint32_t EmittedCount() const { return m_emitted; }
  uint32_t NextLoad() const { return m_loads; }  // the number that the next load gets
  // How often a vertex has dropped out of the cache with triangles left, to be loaded once more.
  uint32_t Reloads() const { return m_reloads; }

  uint32_t VertexCount() const { return static_cast<uint32_t>(m_vertices.size()); }
  uint32_t LeftAt(uint32_t vertex) const { return m_vertices[vertex].left; }
  uint32_t LoadOf(uint32_t vertex) const { return m_vertices[vertex].load; }  // its last one
  bool IsCached(uint32_t vertex) const { return IsCachedLoad(m_vertices[vertex].load); }
  bool IsCachedLoad(uint32_t load) const { return m_loads - load <= m_cacheSize; }
  uint32_t VertexOfLoad(uint32_t load) const { return m_history[load].vertex; }
  // Whether the vertex of that load has triangles left and has not been loaded again since.
  bool IsOpenLoad(uint32_t load) const {
    const Vertex& vertex = m_vertices[m_history[load].vertex];
    return vertex.load == load && vertex.left > 0;
  }

  const Triangle& At(uint32_t triangle) const { return m_triangles[triangle]; }
  bool IsLeft(uint32_t triangle) const {
    return triangle != kNoTriangle && !m_triangles[triangle].emitted;
  }
  // Calls use(StripCorner) for the triangles left at a vertex, but for no more than most of them.
  // Skips little however crowded the vertex: only what was emitted since the last Settle.
  template <typename Use>
  void ForEachLeft(uint32_t vertex, uint32_t most, const Use& use) const {
    const StripCorner* next = m_unsettled.data() + m_firstUnsettled[vertex];
    for (uint32_t left = std::min(m_vertices[vertex].left, most); left > 0; ++next) {
      if (m_triangles[next->triangle].emitted) continue;
      use(*next);
      --left;
    }
  }

  std::vector<uint32_t> TakeOrder();

 private:
  struct Vertex {
    uint32_t load = 0;
    uint32_t left = 0;  // triangles not emitted
  };
  struct Load {
    uint32_t vertex = 0;
    uint32_t before = 0;  // the vertex's load before this one
  };

  void Use(uint32_t vertex) {
    Vertex& used = m_vertices[vertex];
    if (!IsCachedLoad(used.load)) {
      m_reloads += IsOpenLoad(m_loads - m_cacheSize);  // this one drops out
      m_history[m_loads] = {vertex, used.load};
      used.load = m_loads++;
    }
    --used.left;
  }
  void RemoveUnsettled(uint32_t triangle, uint32_t corner);

  uint32_t m_cacheSize;
  std::vector<Triangle> m_triangles;
  std::vector<Vertex> m_vertices;
  // For each vertex a part of m_unsettled, and of it the first m_unsettledCount entries in use;
  // m_place says where the corners of a triangle stand.
  std::vector<uint32_t> m_firstUnsettled;
  std::vector<uint32_t> m_unsettledCount;
  std::vector<StripCorner> m_unsettled;
  std::vector<std::array<uint32_t, 3>> m_place;

  std::vector<uint32_t> m_order;  // in use up to m_emitted
  std::vector<Load> m_history;    // in use up to m_loads
  uint32_t m_emitted = 0;
  uint32_t m_loads;
  uint32_t m_reloads = 0;
  uint32_t m_settled = 0;
};

}  // namespace orv
