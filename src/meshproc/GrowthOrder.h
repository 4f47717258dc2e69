#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace orv {

// The order in which groups of triangles grow over shared edges. Growth starts at each triangle of
// a list in turn, goes on with the first neighbour and all that grows from it, then with the
// second; the neighbours of a triangle are the first two others in the list that share an edge with
// it. No triangle is visited twice.
// Made to be built for many lists, one after the other, without allocating anew.
class GrowthOrder {
 public:
  // A triangle's corner at the point that a list is about, and its other two; edges are equal when
  // both their ends are.
  struct Item {
    uint32_t tip = 0;
    std::array<uint32_t, 2> ends{};
    uint32_t triangle = 0;  // up to three items, side by side, can be of one triangle
    uint32_t corner = 0;    // for the caller's use
  };

  struct Step {
    uint32_t triangle = 0;
    uint32_t place = 0;  // in the list, of the triangle's first item
    // The steps at which its neighbours were visited, if before, the first neighbour's first.
    std::array<uint32_t, 2> earlier{};
    uint32_t earlierCount = 0;
  };

  void Build(std::span<const Item> items);
  std::span<const Step> Steps() const { return m_steps; }

 private:
  static constexpr uint32_t kNone = 0xFFFFFFFF;
  using Pair = std::array<uint32_t, 2>;  // places in the list, ascending, or kNone

  void FindNeighbours(std::span<const Item> items);
  void CompareAll(std::span<const Item> items);
  void SortEdges(std::span<const Item> items);
  void Grow(std::span<const Item> items, uint32_t seed);
  void Visit(std::span<const Item> items, uint32_t place);

  struct EdgeUse {
    uint64_t edge;
    uint32_t place;
    auto operator<=>(const EdgeUse&) const = default;
  };

  std::vector<Step> m_steps;
  std::vector<uint32_t> m_stepOf;  // per place, kNone before the visit
  std::vector<Pair> m_neighbours;  // per place
  std::vector<uint32_t> m_waiting;
  std::vector<EdgeUse> m_uses;
};

}  // namespace orv
