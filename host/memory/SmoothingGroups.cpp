#include "host/memory/SmoothingGroups.h"

namespace orv::host {

uint32_t ChooseGroup(uint32_t forbidden, const uint32_t (&groups)[3]) {
  const uint32_t allowed = ~forbidden;
  const auto [a, b, c] = groups;
  const uint32_t wishes[] = {a & b & c, (a & b) | (b & c) | (c & a), a | b | c, 0xFFFFFFFF};
  for (const uint32_t wish : wishes) {
    const uint32_t choice = wish & allowed;
    if (choice != 0) return choice & (~choice + 1);  // the lowest
  }
  return 0;
}

}  // namespace orv::host
