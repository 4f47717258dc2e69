#include "meshproc/StripWalk.h"

#include <algorithm>

namespace orv {
namespace {

uint32_t CornerOf(const StripState::Triangle& triangle, uint32_t vertex) {
  return triangle.corners[0] == vertex ? 0 : triangle.corners[1] == vertex ? 1 : 2;
}

constexpr uint32_t After(uint32_t corner) { return corner == 2 ? 0 : corner + 1; }
constexpr uint32_t Before(uint32_t corner) { return corner == 0 ? 2 : corner - 1; }

}  // namespace

StripWalk::StripWalk(StripState& state, const StripStarts& starts)
    : m_state(state), m_starts(starts), m_row{state.NextLoad(), state.NextLoad(), 1, 0} {}

void StripWalk::Return(const Position& position) {
  m_state.Rewind(position.mark);
  m_row = position.row;
}

void StripWalk::StartAt(uint32_t vertex) {
  if (m_state.IsCached(vertex)) {
    m_row.cursor = m_state.LoadOf(vertex);
    m_row.end = std::max(m_row.end, m_row.cursor + 1);
  } else {
    m_row.end = m_state.NextLoad();
    m_row.cursor = m_row.end - m_state.CacheSize() - 1;
  }
  Finish(vertex, false);
}

bool StripWalk::Step() {
  for (;;) {
    if (StepInRow()) return true;
    if (NextRowLength() == 0) break;
    m_row.cursor = m_row.end;
    m_row.end = m_state.NextLoad();
  }
  const uint32_t start = m_starts.Next(m_row.finished);
  if (start == kNoVertex) return false;
  StartAt(start);
  return true;
}

// The first vertex that loads anything may load more than the budget, or some could never be
// finished.
bool StripWalk::StepInRow() {
  while (m_row.cursor < m_row.end) {
    const uint32_t load = m_row.cursor;
    const bool finished = m_state.IsCachedLoad(load) && m_state.IsOpenLoad(load) &&
                          Finish(m_state.VertexOfLoad(load), NextRowLength() > 0);
    ++m_row.cursor;
    if (finished) return true;
  }
  return false;
}

bool StripWalk::Finish(uint32_t vertex, bool mayDecline) {
  const uint32_t following = FollowingInRow();
  const uint32_t limit = m_state.EmittedCount() + kMostPerStep;
  while (m_state.LeftAt(vertex) > 0 && m_state.EmittedCount() < limit) {
    const Fan fan = Examine(vertex, following);
    if (mayDecline && fan.missing > 0 && NextRowLength() + fan.missing > m_row.budget) return false;
    mayDecline = false;
    EmitChain(vertex, fan.start, limit);
  }
  return true;
}

// A rim vertex between two triangles counts with the one that it follows; where the windings
// disagree the count is off by one, which costs nothing but a little quality.
StripWalk::Fan StripWalk::Examine(uint32_t vertex, uint32_t following) const {
  Fan fan = {kNoTriangle, 0};
  uint32_t bestRank = 0;
  m_state.ForEachLeft(vertex, kMostPerStep, [&](StripCorner at) {
    const StripState::Triangle& triangle = m_state.At(at.triangle);
    const uint32_t rimAfter = triangle.corners[After(at.corner)];
    const uint32_t rimBefore = triangle.corners[Before(at.corner)];
    const bool endsAfter = !m_state.IsLeft(triangle.across[at.corner]);
    const bool endsBefore = !m_state.IsLeft(triangle.across[Before(at.corner)]);
    fan.missing += !m_state.IsCached(rimAfter);
    fan.missing += endsBefore && !m_state.IsCached(rimBefore);
    const uint32_t rank = std::max(EndRank(rimAfter, endsAfter, following),
                                   EndRank(rimBefore, endsBefore, following));
    if (rank > bestRank) {
      fan.start = at.triangle;
      bestRank = rank;
    }
  });
  return fan;
}

// A chain begins at its end, at the freshest in the cache of several; the end at the following
// vertex of the row comes last, so that the chain leads there.
inline uint32_t StripWalk::EndRank(uint32_t rim, bool isEnd, uint32_t following) const {
  const uint32_t rank = isEnd ? 1u << 31 : 1;
  if (rim == following) return rank;
  return rank + (m_state.IsCached(rim) ? m_state.LoadOf(rim) + 2 : 1);
}

void StripWalk::EmitChain(uint32_t vertex, uint32_t triangle, uint32_t limit) {
  while (m_state.IsLeft(triangle) && m_state.EmittedCount() < limit) {
    m_state.Emit(triangle);
    const StripState::Triangle& emitted = m_state.At(triangle);
    const uint32_t corner = CornerOf(emitted, vertex);
    const uint32_t onward = emitted.across[corner];
    triangle = m_state.IsLeft(onward) ? onward : emitted.across[Before(corner)];
  }
}

uint32_t StripWalk::FollowingInRow() const {
  for (uint32_t load = m_row.cursor + 1; load < m_row.end; ++load)
    if (m_state.IsCachedLoad(load) && m_state.IsOpenLoad(load)) return m_state.VertexOfLoad(load);
  return kNoVertex;
}

}  // namespace orv
