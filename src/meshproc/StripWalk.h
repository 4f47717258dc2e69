#pragma once

#include <cstdint>

#include "meshproc/StripStarts.h"
#include "meshproc/StripState.h"

namespace orv {

// Sweeps over the surface row by row. A row is a run of consecutive loads; its vertices are
// finished one after the other, oldest first, and what is loaded on the way is the next row.
class StripWalk {
 public:
  // Of a crowded vertex this many triangles are emitted in a step; the rest waits for another turn.
  static constexpr uint32_t kMostPerStep = 32;

  struct Row {
    uint32_t cursor;  // the load to look at next
    uint32_t end;     // loads from here on are the next row
    // How many vertices the next row may have. A vertex whose triangles would load more stays
    // unfinished: that is where the row is cut, and a later one begins.
    uint32_t budget;
    uint32_t finished;  // how far the search for starts has come
  };
  struct Position {
    StripState::Mark mark;
    Row row;
  };

  StripWalk(StripState& state, const StripStarts& starts);

  Position Here() const { return {m_state.Here(), m_row}; }
  void Return(const Position& position);
  void SetBudget(uint32_t budget) { m_row.budget = budget; }

  // Finishes a vertex out of turn. The row goes on behind it when it is cached, else with
  // whatever is cached.
  void StartAt(uint32_t vertex);
  // Finishes the next vertex of the row, or a new start when there is none; false when no
  // triangle is left.
  bool Step();

 private:
  // What is left at a vertex: chains of triangles, each across an edge from the one before.
  struct Fan {
    uint32_t start;    // the triangle at the best end of a chain
    uint32_t missing;  // vertices not cached
  };

  bool StepInRow();
  bool Finish(uint32_t vertex, bool mayDecline);
  Fan Examine(uint32_t vertex, uint32_t following) const;
  uint32_t EndRank(uint32_t rim, bool isEnd, uint32_t following) const;
  void EmitChain(uint32_t vertex, uint32_t triangle, uint32_t limit);
  uint32_t FollowingInRow() const;
  uint32_t NextRowLength() const { return m_state.NextLoad() - m_row.end; }

  StripState& m_state;
  const StripStarts& m_starts;
  Row m_row;
};

}  // namespace orv
