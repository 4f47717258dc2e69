#pragma once

#include <cstdint>
#include <vector>

#include "meshproc/StripState.h"

namespace orv {

constexpr uint32_t kNoVertex = 0xFFFFFFFF;

// Vertices at which a row can begin when the one at hand runs dry or gets expensive.
class StripStarts {
 public:
  explicit StripStarts(const StripState& state);

  // Learns, after what was emitted has been settled, which vertices it left behind unfinished.
  void Settle();

  // Up to count vertices that promise to go on cheaply: those still cached, oldest first, then
  // those left behind lately.
  std::vector<uint32_t> Near(size_t count) const;
  // The first of those; without any, one with few triangles; kNoVertex when nothing is left. The
  // caller keeps in finished how far the search has come, 0 at first, and takes that back when it
  // rewinds the state.
  uint32_t Next(uint32_t& finished) const;

 private:
  // Hands one vertex after the other to take, until that returns false.
  template <typename Take>
  void OfferNear(const Take& take) const;

  static constexpr size_t kLately = 8;

  const StripState& m_state;
  std::vector<uint32_t> m_behind;           // dropped out of the cache unfinished, oldest first
  std::vector<uint32_t> m_byTriangleCount;  // all vertices, few triangles first
  uint32_t m_settledLoads;
};

}  // namespace orv
