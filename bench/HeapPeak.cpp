#include "HeapPeak.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

// The benchmarks have one thread.
size_t s_used = 0;
size_t s_peak = 0;

}  // namespace

void* operator new(size_t size) {
  void* const memory = std::malloc(size);
  if (!memory) throw std::bad_alloc();
  s_used += malloc_usable_size(memory);
  s_peak = std::max(s_peak, s_used);
  return memory;
}

void operator delete(void* memory) noexcept {
  s_used -= malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, size_t) noexcept { operator delete(memory); }

namespace orv::bench {

size_t HeapPeak(const std::function<void()>& run) {
  const size_t before = s_used;
  s_peak = before;
  run();
  return s_peak - before;
}

}  // namespace orv::bench
