#pragma once

#include <cstdint>
#include <vector>

#include "meshproc/StripAdjacency.h"

namespace orv {

// Every triangle once, in an order that makes good use of a first-in first-out cache of
// cacheSize vertices.
std::vector<uint32_t> FindStripOrder(const StripAdjacency& adjacency, uint32_t cacheSize);

}  // namespace orv
