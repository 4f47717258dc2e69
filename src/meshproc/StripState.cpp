#include "meshproc/StripState.h"

#include <utility>

namespace orv {

// The history begins with as many loads of nothing as make the cache empty: no vertex has one of
// their numbers but the first, and that has dropped out already.
StripState::StripState(const StripAdjacency& adjacency, uint32_t cacheSize)
    : m_cacheSize(cacheSize),
      m_triangles(adjacency.triangles.size()),
      m_vertices(adjacency.VertexCount()),
      m_firstUnsettled(adjacency.firstTouching.begin(), adjacency.firstTouching.end() - 1),
      m_unsettledCount(adjacency.VertexCount()),
      m_unsettled(adjacency.touching.size()),
      m_place(adjacency.triangles.size()),
      m_order(adjacency.triangles.size()),
      m_history(3 * adjacency.triangles.size() + cacheSize + 1),
      m_loads(cacheSize + 1) {
  for (uint32_t triangle = 0; triangle < m_triangles.size(); ++triangle) {
    m_triangles[triangle] = {adjacency.triangles[triangle], false, adjacency.across[triangle]};
    for (uint32_t corner = 0; corner < 3; ++corner) {
      const uint32_t vertex = adjacency.triangles[triangle][corner];
      const uint32_t place = m_firstUnsettled[vertex] + m_unsettledCount[vertex]++;
      m_unsettled[place] = {triangle, corner};
      m_place[triangle][corner] = place;
      ++m_vertices[vertex].left;
    }
  }
}

void StripState::Rewind(const Mark& mark) {
  while (m_emitted > mark.emitted) {
    Triangle& triangle = m_triangles[m_order[--m_emitted]];
    triangle.emitted = false;
    for (const uint16_t vertex : triangle.corners) ++m_vertices[vertex].left;
  }
  while (m_loads > mark.loads) {
    const Load& load = m_history[--m_loads];
    m_vertices[load.vertex].load = load.before;
  }
  m_reloads = mark.reloads;
}

void StripState::Settle() {
  for (; m_settled < m_emitted; ++m_settled)
    for (uint32_t corner = 0; corner < 3; ++corner) RemoveUnsettled(m_order[m_settled], corner);
}

void StripState::RemoveUnsettled(uint32_t triangle, uint32_t corner) {
  const uint32_t vertex = m_triangles[triangle].corners[corner];
  const uint32_t place = m_place[triangle][corner];
  const StripCorner last = m_unsettled[m_firstUnsettled[vertex] + --m_unsettledCount[vertex]];
  m_unsettled[place] = last;
  m_place[last.triangle][last.corner] = place;
}

std::vector<uint32_t> StripState::TakeOrder() {
  m_order.resize(m_emitted);
  return std::move(m_order);
}

}  // namespace orv
