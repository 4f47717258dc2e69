#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace orv {

inline void Require(bool holds, const std::string& what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what.c_str());
  std::abort();
}

}  // namespace orv
