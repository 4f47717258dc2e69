#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <set>
#include <vector>

#include "meshproc/IndexOptimizer.h"

namespace orv {
namespace {

using Indices = std::vector<uint16_t>;
using Triangle = std::array<uint16_t, 3>;

std::vector<Triangle> TrianglesOf(const Indices& indices) {
  std::vector<Triangle> triangles;
  for (size_t i = 0; i < indices.size(); i += 3)
    triangles.push_back({indices[i], indices[i + 1], indices[i + 2]});
  return triangles;
}

// Each triangle that is not degenerate, corners in order, once.
std::vector<Triangle> Expected(const Indices& indices) {
  std::set<Triangle> kept;
  for (const Triangle& t : TrianglesOf(indices))
    if (t[0] != t[1] && t[1] != t[2] && t[2] != t[0]) kept.insert(t);
  return {kept.begin(), kept.end()};
}

void ExpectSameTriangles(const Indices& input) {
  const Indices output = OptimizeTriangleOrder(input);
  ASSERT_EQ(output.size() % 3, 0u);
  std::vector<Triangle> triangles = TrianglesOf(output);
  std::sort(triangles.begin(), triangles.end());
  EXPECT_EQ(triangles, Expected(input));
  EXPECT_EQ(output, OptimizeTriangleOrder(input)) << "the order depends on more than the input";
}

double MissesPerTriangle(const Indices& indices, size_t cacheSize) {
  std::vector<uint16_t> cache;
  size_t misses = 0;
  for (const uint16_t index : indices) {
    if (std::find(cache.begin(), cache.end(), index) != cache.end()) continue;
    ++misses;
    cache.insert(cache.begin(), index);
    if (cache.size() > cacheSize) cache.pop_back();
  }
  return static_cast<double>(misses) / static_cast<double>(indices.size() / 3);
}

// Two triangles per cell, each turned by a different number of corners.
Indices Grid(int columns, int rows) {
  Indices indices;
  const auto add = [&](std::array<int, 3> corners, int turn) {
    for (int i = 0; i < 3; ++i) indices.push_back(static_cast<uint16_t>(corners[(i + turn) % 3]));
  };
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      const int corner = y * (columns + 1) + x;
      add({corner, corner + 1, corner + columns + 1}, x % 3);
      add({corner + 1, corner + columns + 2, corner + columns + 1}, (x + y) % 3);
    }
  }
  return indices;
}

Indices Shuffled(const Indices& indices, uint32_t seed) {
  std::vector<Triangle> triangles = TrianglesOf(indices);
  std::mt19937 random(seed);
  for (size_t i = triangles.size(); i > 1; --i)
    std::swap(triangles[i - 1], triangles[random() % i]);
  Indices shuffled;
  for (const Triangle& t : triangles) shuffled.insert(shuffled.end(), t.begin(), t.end());
  return shuffled;
}

TEST(IndexOrder, KeepsTheTrianglesOfSmallLists) {
  const std::vector<Indices> cases = {
      {},
      {0, 1, 2},
      {2, 0, 1},
      {5, 5, 5},
      {1, 1, 2},
      {65535, 0, 65534},
      {0, 1, 2, 3, 4, 5},                             // two pieces
      {0, 1, 2, 0, 1, 2},                             // a repetition
      {0, 1, 2, 1, 2, 0, 2, 0, 1, 0, 2, 1},           // rotated and turned over: all kept
      {0, 1, 2, 0, 1, 3, 0, 1, 4, 1, 0, 5, 0, 1, 6},  // five on an edge
      {0, 1, 1, 0, 1, 2, 1, 1, 1, 0, 1, 1, 0, 1, 2},  // degenerate ones between
  };
  for (const Indices& input : cases) {
    SCOPED_TRACE(testing::PrintToString(input));
    ExpectSameTriangles(input);
  }
}

TEST(IndexOrder, KeepsTheTrianglesOfRandomLists) {
  std::mt19937 random(7);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    // Few vertices give repetitions, degenerate triangles and crowded edges; many give loose ones.
    const uint32_t vertexCount = 1 + random() % (round % 40 == 0 ? 65536 : 40);
    const uint32_t spread = round % 40 == 1 ? 65535 / vertexCount : 1;
    Indices input(3 * (random() % 300));
    for (uint16_t& index : input) index = static_cast<uint16_t>(random() % vertexCount * spread);
    ExpectSameTriangles(input);
  }
}

// More triangles at every vertex than a step takes at once.
TEST(IndexOrder, KeepsTheTrianglesOfCrowdedLists) {
  std::mt19937 random(5);
  for (const uint32_t vertexCount : {4, 12, 20}) {
    SCOPED_TRACE(vertexCount);
    Indices input(3 * 5000);
    for (uint16_t& index : input) index = static_cast<uint16_t>(random() % vertexCount);
    ExpectSameTriangles(input);
  }
}

TEST(IndexOrder, KeepsTheTrianglesOfDamagedGrids) {
  std::mt19937 random(11);
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    const int columns = 1 + random() % 30;
    const int rows = 1 + random() % 30;
    Indices input = Shuffled(Grid(columns, rows), round);
    for (int i = random() % 8; i > 0; --i) {
      const size_t damaged = random() % input.size();
      input[damaged] = static_cast<uint16_t>(random() % 40);
    }
    ExpectSameTriangles(input);
  }
}

// Rows swept in a cache of 10 cannot load less than 0.5625 a triangle; input order loads 1.01.
TEST(IndexOrder, SweepsAGridInRowsThatFitTheCache) {
  const Indices grid = Grid(71, 71);
  for (const Indices& input : {grid, Shuffled(grid, 1)}) {
    const Indices output = OptimizeTriangleOrder(input);
    EXPECT_LT(MissesPerTriangle(output, 10), 0.595);
    EXPECT_LT(MissesPerTriangle(output, 16), 0.595);
  }
}

// One load a triangle, and the hub again whenever it has dropped out. Crawls when a
// search at a vertex walks past all its triangles.
TEST(IndexOrder, FollowsAFanOf65533Triangles) {
  Indices fan;
  for (uint32_t i = 1; i < 65534; ++i)
    fan.insert(fan.end(), {0, static_cast<uint16_t>(i), static_cast<uint16_t>(i + 1)});
  Indices doubled = Shuffled(fan, 3);
  doubled.insert(doubled.end(), fan.begin(), fan.end());
  const Indices output = OptimizeTriangleOrder(doubled);
  EXPECT_EQ(output.size(), fan.size());
  EXPECT_LT(MissesPerTriangle(output, 10), 1.2);
}

TEST(IndexOrder, NumbersVerticesInOrderOfFirstUse) {
  constexpr uint32_t kNone = 0xFFFFFFFF;
  const std::vector<uint32_t> expected = {2, kNone, 0, 3, kNone, 1};
  EXPECT_EQ(RemapInOrderOfFirstUse(Indices{2, 5, 0, 0, 5, 3}, 6), expected);
  EXPECT_EQ(RemapInOrderOfFirstUse(Indices{}, 2), std::vector<uint32_t>(2, kNone));
}

TEST(IndexOrder, EachNewNumberIsAtMostOneHigher) {
  const Indices order = OptimizeTriangleOrder(Shuffled(Grid(20, 13), 2));
  const std::vector<uint32_t> newNumbers = RemapInOrderOfFirstUse(order, 21 * 14);
  uint32_t next = 0;
  for (const uint16_t index : order) {
    ASSERT_LE(newNumbers[index], next);
    if (newNumbers[index] == next) ++next;
  }
  EXPECT_EQ(next, 21u * 14u);
}

}  // namespace
}  // namespace orv
