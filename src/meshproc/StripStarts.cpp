#include "meshproc/StripStarts.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace orv {
namespace {

// A counting sort; crowded vertices need not be told apart.
std::vector<uint32_t> SortByTriangleCount(const StripState& state) {
  constexpr uint32_t kMany = 32;
  const auto classOf = [&](uint32_t vertex) { return std::min(state.LeftAt(vertex), kMany); };
  std::array<uint32_t, kMany + 2> first = {};
  for (uint32_t vertex = 0; vertex < state.VertexCount(); ++vertex) ++first[classOf(vertex) + 1];
  std::partial_sum(first.begin(), first.end(), first.begin());
  std::vector<uint32_t> sorted(state.VertexCount());
  for (uint32_t vertex = 0; vertex < state.VertexCount(); ++vertex)
    sorted[first[classOf(vertex)]++] = vertex;
  return sorted;
}

}  // namespace

StripStarts::StripStarts(const StripState& state)
    : m_state(state),
      m_byTriangleCount(SortByTriangleCount(state)),
      m_settledLoads(state.NextLoad()) {}

void StripStarts::Settle() {
  for (; m_settledLoads < m_state.NextLoad(); ++m_settledLoads) {
    const uint32_t droppedOut = m_settledLoads - m_state.CacheSize();
    if (m_state.IsOpenLoad(droppedOut)) m_behind.push_back(m_state.VertexOfLoad(droppedOut));
  }
  while (!m_behind.empty() && m_state.LeftAt(m_behind.back()) == 0) m_behind.pop_back();
  while (m_firstUnfinished < m_byTriangleCount.size() &&
         m_state.LeftAt(m_byTriangleCount[m_firstUnfinished]) == 0)
    ++m_firstUnfinished;
}

std::vector<uint32_t> StripStarts::Candidates(size_t count) const {
  std::vector<uint32_t> vertices;
  const uint32_t end = m_state.NextLoad();
  for (uint32_t load = end - m_state.CacheSize(); load < end && vertices.size() < count; ++load)
    if (m_state.IsOpenLoad(load)) vertices.push_back(m_state.VertexOfLoad(load));
  const size_t lately = std::min(m_behind.size(), kLately);
  for (size_t i = 1; i <= lately && vertices.size() < count; ++i) {
    const uint32_t vertex = m_behind[m_behind.size() - i];
    if (m_state.LeftAt(vertex) > 0) vertices.push_back(vertex);
  }
  return vertices;
}

uint32_t StripStarts::Next() const {
  const std::vector<uint32_t> near = Candidates(1);
  if (!near.empty()) return near.front();
  for (size_t i = m_firstUnfinished; i < m_byTriangleCount.size(); ++i)
    if (m_state.LeftAt(m_byTriangleCount[i]) > 0) return m_byTriangleCount[i];
  return kNoVertex;
}

}  // namespace orv
