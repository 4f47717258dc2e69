#include "AllocationLimit.h"

#include <cstdio>
#include <cstdlib>

// The sanitizer's own; Debian's package of g++ leaves the header out.
extern "C" {
int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void*, size_t),
                                              void (*onFree)(const volatile void*));
size_t __sanitizer_get_allocated_size(const volatile void* memory);
}

namespace orv {
namespace {

constexpr size_t kSingleFactor = 4;

// What is not for the input. Single: a full list of a material's properties (256 of 64 bytes).
// Together: that, 64 remarks with their texts, the buffers of streams, a C++ exception.
constexpr size_t kSingleSlack = size_t{16} << 10;
constexpr size_t kLiveSlack = size_t{64} << 10;

bool s_active = false;
size_t s_singleLimit = 0;
size_t s_liveLimit = 0;
size_t s_live = 0;

void Stop(const char* what, size_t size, size_t limit) {
  s_active = false;
  std::fprintf(stderr, "%s of %zu bytes, allowed are %zu\n", what, size, limit);
  std::abort();
}

void OnMalloc(const volatile void*, size_t size) {
  if (!s_active) return;
  s_live += size;
  if (size > s_singleLimit) Stop("an allocation", size, s_singleLimit);
  if (s_live > s_liveLimit) Stop("allocations", s_live, s_liveLimit);
}

// Memory from before the limit can be freed under it.
void OnFree(const volatile void* memory) {
  if (!s_active || !memory) return;
  const size_t size = __sanitizer_get_allocated_size(memory);
  s_live -= size < s_live ? size : s_live;
}

}  // namespace

AllocationLimit::AllocationLimit(size_t inputSize, size_t liveFactor) {
  [[maybe_unused]] static const int installed =
      __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree);
  s_singleLimit = kSingleFactor * inputSize + kSingleSlack;
  s_liveLimit = liveFactor * inputSize + kLiveSlack;
  s_live = 0;
  s_active = true;
}

AllocationLimit::~AllocationLimit() { s_active = false; }

}  // namespace orv
