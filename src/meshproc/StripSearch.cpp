#include "meshproc/StripSearch.h"

#include <algorithm>

namespace orv {
namespace {

// Finishes one vertex after the other: all triangles left at it, then on with one still cached.
class Walk {
 public:
  Walk(const StripAdjacency& adjacency, uint32_t cacheSize)
      : m_adjacency(adjacency),
        m_cacheSize(cacheSize),
        m_left(adjacency.VertexCount()),
        m_loadedAt(adjacency.VertexCount(), 0),
        m_done(adjacency.triangles.size(), false),
        m_loads(cacheSize) {
    for (uint32_t v = 0; v < adjacency.VertexCount(); ++v)
      m_left[v] = static_cast<uint32_t>(adjacency.TrianglesAt(v).size());
  }

  std::vector<uint32_t> Run() {
    for (uint32_t start = 0; start < m_adjacency.VertexCount(); ++start)
      for (uint32_t vertex = start; m_left[vertex] > 0; vertex = Next(vertex)) Finish(vertex);
    return std::move(m_order);
  }

 private:
  void Finish(uint32_t vertex) {
    m_candidates.clear();
    for (const uint32_t triangle : m_adjacency.TrianglesAt(vertex)) {
      if (m_done[triangle]) continue;
      m_done[triangle] = true;
      m_order.push_back(triangle);
      for (const uint16_t corner : m_adjacency.triangles[triangle]) {
        --m_left[corner];
        m_candidates.push_back(corner);
        if (m_loads - m_loadedAt[corner] >= m_cacheSize) m_loadedAt[corner] = m_loads++;
      }
    }
  }

  // The oldest vertex that stays cached while its triangles are emitted; the finished vertex when
  // there is none.
  uint32_t Next(uint32_t finished) const {
    uint32_t best = finished;
    uint32_t bestAge = 0;
    for (const uint16_t vertex : m_candidates) {
      const uint32_t age = m_loads - m_loadedAt[vertex];
      if (m_left[vertex] == 0) continue;
      if (best == finished || (age > bestAge && age + 2 * m_left[vertex] <= m_cacheSize)) {
        best = vertex;
        bestAge = age;
      }
    }
    return best;
  }

  const StripAdjacency& m_adjacency;
  const uint32_t m_cacheSize;
  std::vector<uint32_t> m_left;      // per vertex: its triangles still to come
  std::vector<uint32_t> m_loadedAt;  // per vertex: the count of loads before its last one
  std::vector<bool> m_done;
  uint32_t m_loads;
  std::vector<uint16_t> m_candidates;
  std::vector<uint32_t> m_order;
};

}  // namespace

std::vector<uint32_t> FindStripOrder(const StripAdjacency& adjacency, uint32_t cacheSize) {
  return Walk(adjacency, cacheSize).Run();
}

}  // namespace orv
