#pragma once

#include <cstddef>
#include <functional>

namespace orv::bench {

// By how many bytes the heap grows at most while `run` is at work, its result included. Counts all
// that goes through operator new.
size_t HeapPeak(const std::function<void()>& run);

}  // namespace orv::bench
