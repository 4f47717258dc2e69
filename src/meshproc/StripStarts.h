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

  // The next best vertex: one still cached, oldest first, else one left behind lately, else one
  // with few triangles. kNoVertex when nothing is left.
  uint32_t Next() const;
  // Up to count vertices, the cached ones first, then those left behind lately.
  std::vector<uint32_t> Candidates(size_t count) const;

 private:
  static constexpr size_t kLately = 8;

  const StripState& m_state;
  std::vector<uint32_t> m_behind;           // dropped out of the cache unfinished, oldest first
  std::vector<uint32_t> m_byTriangleCount;  // all vertices, few triangles first
  size_t m_firstUnfinished = 0;             // into m_byTriangleCount
  uint32_t m_settledLoads;
};

}  // namespace orv
