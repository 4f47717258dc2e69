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
}

template <typename Take>
void StripStarts::OfferNear(const Take& take) const {
  const uint32_t end = m_state.NextLoad();
  for (uint32_t load = end - m_state.CacheSize(); load < end; ++load)
    if (m_state.IsOpenLoad(load) && !take(m_state.VertexOfLoad(load))) return;
  const size_t lately = std::min(m_behind.size(), kLately);
  for (size_t i = 1; i <= lately; ++i) {
    const uint32_t vertex = m_behind[m_behind.size() - i];
    if (m_state.LeftAt(vertex) > 0 && !take(vertex)) return;
  }
}

std::vector<uint32_t> StripStarts::Near(size_t count) const {
  std::vector<uint32_t> vertices;
  OfferNear([&](uint32_t vertex) {
    if (vertices.size() == count) return false;
    vertices.push_back(vertex);
    return true;
  });
  return vertices;
}

uint32_t StripStarts::Next(uint32_t& finished) const {
  uint32_t next = kNoVertex;
  OfferNear([&](uint32_t vertex) {
    next = vertex;
    return false;
  });
  if (next != kNoVertex) return next;
  while (finished < m_byTriangleCount.size() && m_state.LeftAt(m_byTriangleCount[finished]) == 0)
    ++finished;
  return finished < m_byTriangleCount.size() ? m_byTriangleCount[finished] : kNoVertex;
}

}  // namespace orv
