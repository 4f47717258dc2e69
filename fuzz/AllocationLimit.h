#pragma once

#include <cstddef>

namespace orv {

// While one lives, the program is stopped when one allocation exceeds four times the input, or
// everything that is allocated and not yet freed exceeds liveFactor times the input, each above a
// constant: what a reader that believes a count in a damaged file does. Needs the address
// sanitizer, whose hooks it uses; one at a time.
class [[nodiscard]] AllocationLimit {
 public:
  AllocationLimit(size_t inputSize, size_t liveFactor);
  ~AllocationLimit();
  AllocationLimit(const AllocationLimit&) = delete;
  AllocationLimit& operator=(const AllocationLimit&) = delete;
};

}  // namespace orv
