#include "meshproc/GrowthOrder.h"

#include <algorithm>
#include <cassert>

namespace orv {

namespace {

// Comparing every pair is the faster way up to about this many triangles.
constexpr size_t kMaxCompared = 24;

// 0 or 1, without a branch. Neither triangle has two corners at the tips' point, so that a tip is
// no end of the other.
uint32_t SharesEdge(const GrowthOrder::Item& a, const GrowthOrder::Item& b) {
  const uint32_t e00 = a.ends[0] == b.ends[0], e01 = a.ends[0] == b.ends[1];
  const uint32_t e10 = a.ends[1] == b.ends[0], e11 = a.ends[1] == b.ends[1];
  const uint32_t oneEnd = e00 | e01 | e10 | e11, bothEnds = (e00 & e11) | (e01 & e10);
  return (oneEnd & uint32_t{a.tip == b.tip}) | bothEnds;
}

uint64_t EdgeKey(uint32_t end0, uint32_t end1) {
  return uint64_t{std::max(end0, end1)} << 32 | std::min(end0, end1);
}

bool AreOfOneTriangle(const GrowthOrder::Item& a, const GrowthOrder::Item& b) {
  return a.triangle == b.triangle;
}

// Keeps the two lowest places of all that are offered, in any order.
void Offer(std::array<uint32_t, 2>& lowest, uint32_t place) {
  if (place < lowest[0]) {
    lowest = {place, lowest[0]};
  } else if (place > lowest[0] && place < lowest[1]) {
    lowest[1] = place;
  }
}

}  // namespace

void GrowthOrder::Build(std::span<const Item> items) {
  FindNeighbours(items);
  m_steps.clear();
  m_stepOf.assign(items.size(), kNone);
  for (uint32_t seed = 0; seed < items.size(); ++seed) Grow(items, seed);
}

void GrowthOrder::FindNeighbours(std::span<const Item> items) {
  m_neighbours.assign(items.size(), {kNone, kNone});
  const bool twice =
      std::adjacent_find(items.begin(), items.end(), AreOfOneTriangle) != items.end();
  if (items.size() <= kMaxCompared && !twice) {
    CompareAll(items);
  } else {
    SortEdges(items);
  }
}

// Free of branches that depend on the triangles: a place is written down before it is known to be a
// neighbour, and kept by counting it. Each triangle meets the others in ascending order.
void GrowthOrder::CompareAll(std::span<const Item> items) {
  std::array<std::array<uint32_t, 3>, kMaxCompared> found;  // the third is for what comes too late
  std::array<uint32_t, kMaxCompared> counts{};
  for (uint32_t b = 1; b < items.size(); ++b) {
    for (uint32_t a = 0; a < b; ++a) {
      const uint32_t shares = SharesEdge(items[a], items[b]);
      found[a][counts[a]] = b;
      found[b][counts[b]] = a;
      counts[a] = std::min(counts[a] + shares, 2u);
      counts[b] = std::min(counts[b] + shares, 2u);
    }
  }
  for (size_t place = 0; place < items.size(); ++place)
    for (uint32_t i = 0; i < counts[place]; ++i) m_neighbours[place][i] = found[place][i];
}

void GrowthOrder::SortEdges(std::span<const Item> items) {
  m_uses.clear();
  for (uint32_t place = 0; place < items.size(); ++place) {
    const auto [tip, ends, triangle, corner] = items[place];
    m_uses.push_back({EdgeKey(tip, ends[0]), place});
    m_uses.push_back({EdgeKey(tip, ends[1]), place});
    m_uses.push_back({EdgeKey(ends[0], ends[1]), place});
  }
  std::sort(m_uses.begin(), m_uses.end());
  m_uses.erase(std::unique(m_uses.begin(), m_uses.end()), m_uses.end());

  auto first = m_uses.begin();  // of the same edge
  for (auto use = first; use != m_uses.end(); ++use) {
    if (use->edge != first->edge) first = use;
    // Ends after five uses at most, since three can be the triangle's own.
    int found = 0;
    for (auto other = first; found < 2 && other != m_uses.end() && other->edge == use->edge;
         ++other) {
      if (items[other->place].triangle == items[use->place].triangle) continue;
      Offer(m_neighbours[use->place], other->place);
      ++found;
    }
  }
}

void GrowthOrder::Grow(std::span<const Item> items, uint32_t seed) {
  m_waiting.push_back(seed);
  while (!m_waiting.empty()) {
    const uint32_t place = m_waiting.back();
    m_waiting.pop_back();
    if (m_stepOf[place] != kNone) continue;
    const auto [first, second] = m_neighbours[place];
    Visit(items, place);
    if (second != kNone) m_waiting.push_back(second);
    if (first != kNone) m_waiting.push_back(first);
  }
}

void GrowthOrder::Visit(std::span<const Item> items, uint32_t place) {
  const uint32_t triangle = items[place].triangle;
  assert(place == 0 || items[place - 1].triangle != triangle);  // neighbours name the first place
  const uint32_t stepIndex = static_cast<uint32_t>(m_steps.size());
  Step& step = m_steps.emplace_back();
  step.triangle = triangle;
  step.place = place;
  for (const uint32_t neighbour : m_neighbours[place])
    if (neighbour != kNone && m_stepOf[neighbour] != kNone)
      step.earlier[step.earlierCount++] = m_stepOf[neighbour];

  for (; place < items.size() && items[place].triangle == triangle; ++place)
    m_stepOf[place] = stepIndex;
}

}  // namespace orv
