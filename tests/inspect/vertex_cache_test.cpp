#include "inspect/MeshFacts.h"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace orv::inspect
