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
  for (size_t i = 0; i < indices.size(); i += 3) {
    triangles.push_back({indices[i], indices[i + 1], indices[i + 2]});
  }
  return triangles;
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

Indices Shuffled(const Indices& indices, uint32_t seed) {
  std::vector<Triangle> triangles = TrianglesOf(indices);
  std::mt19937 random(seed);
  for (size_t i = triangles.size(); i > 1; --i) {
    std::swap(triangles[i - 1], triangles[random() % i]);
  }
  Indices shuffled;
  for (const Triangle& t : triangles) shuffled.insert(shuffled.end(), t.begin(), t.end());
  return shuffled;
}

TEST(IndexOrder, KeepsTheTrianglesOfRandomLists) {
  std::mt19937 random(7);
  uint64_t digest = 0;
  for (int round = 0; round < 400; ++round) {
    // Few vertices give repetitions, degenerate triangles and crowded edges; many give loose ones.
    const uint32_t vertexCount = 1 + random() % (round % 40 == 0 ? 65536 : 40);
    const uint32_t spread = round % 40 == 1 ? 65535 / vertexCount : 1;
    Indices input(3 * (random() % (round % 40 == 2 ? 5000 : 300)));
    for (uint16_t& index : input) index = static_cast<uint16_t>(random() % vertexCount * spread);

    const Indices output = OptimizeTriangleOrder(input);
    std::set<Triangle> expected;
    for (const Triangle& t : TrianglesOf(input)) {
      if (t[0] != t[1] && t[1] != t[2] && t[2] != t[0]) expected.insert(t);
    }
    std::vector<Triangle> triangles = TrianglesOf(output);
    std::sort(triangles.begin(), triangles.end());
    ASSERT_EQ(triangles, std::vector<Triangle>(expected.begin(), expected.end())) << round;
    for (const uint16_t index : output) digest = (digest ^ index) * 0x100000001B3u;
  }
  EXPECT_EQ(digest, 14558956842650011312u) << "not the order of the files already written";
}

// Rows swept in a cache of 10 cannot load less than 0.5625 a triangle; input order loads 1.01.
TEST(IndexOrder, SweepsAGridInRowsThatFitTheCache) {
  constexpr uint16_t kSide = 71;
  Indices grid;  // two triangles per cell
  for (uint16_t y = 0; y < kSide; ++y) {
    for (uint16_t x = 0; x < kSide; ++x) {
      const uint16_t a = y * (kSide + 1) + x, b = a + 1, c = b + kSide, d = c + 1;
      grid.insert(grid.end(), {a, b, c, d, c, b});
    }
  }
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
  for (uint16_t i = 1; i < 65534; ++i) fan.insert(fan.end(), {0, i, uint16_t(i + 1)});
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
}

}  // namespace
}  // namespace orv
