#include "inspect/VertexCache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>
#include <set>

namespace orv::inspect {
namespace {

TEST(VertexCache, KnownListsHaveKnownFigures) {
  struct Case {
    std::vector<Triangle> triangles;
    size_t cacheSize;
    size_t misses;
    double acmr, atvr;
  };
  const Case cases[] = {
      {{}, 10, 0, 0, 0},
      {{{0, 1, 2}}, 10, 3, 3, 1},
      {{{0, 1, 2}, {2, 1, 3}}, 10, 4, 2, 1},
      {{{0, 1, 2}, {3, 4, 5}, {0, 1, 2}}, 6, 6, 2, 1},
      {{{0, 1, 2}, {3, 4, 5}, {0, 1, 2}}, 5, 9, 3, 1.5},
      {{{0, 1, 2}, {0, 3, 4}, {0, 4, 3}}, 4, 6, 2, 1.2},  // being used does not keep vertex 0
  };
  for (const Case& c : cases) {
    const VertexCacheCount count = CountCacheMisses(c.triangles, 6, c.cacheSize);
    EXPECT_EQ(count.misses, c.misses);
    EXPECT_DOUBLE_EQ(count.Acmr(), c.acmr);
    EXPECT_DOUBLE_EQ(count.Atvr(), c.atvr);
  }
}

TEST(VertexCache, AgreesWithAQueue) {
  std::mt19937 random(5);
  for (const size_t cacheSize : {1, 3, 10, 16}) {
    std::vector<Triangle> triangles(500);
    std::deque<uint16_t> cache;
    std::set<uint16_t> seen;
    size_t misses = 0;
    for (Triangle& triangle : triangles) {
      for (uint16_t& vertex : triangle) {
        vertex = static_cast<uint16_t>(random() % 40);
        seen.insert(vertex);
        if (std::find(cache.begin(), cache.end(), vertex) != cache.end()) continue;
        ++misses;
        cache.push_back(vertex);
        if (cache.size() > cacheSize) cache.pop_front();
      }
    }
    const VertexCacheCount count = CountCacheMisses(triangles, 50, cacheSize);
    EXPECT_EQ(count.misses, misses);
    EXPECT_EQ(count.vertices, seen.size());
  }
}

}  // namespace
}  // namespace orv::inspect
