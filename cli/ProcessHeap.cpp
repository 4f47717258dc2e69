#include "Commands.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace orv::cli {

#ifdef __GLIBC__

namespace {

constexpr int kRoom = 1 << 29;  // bytes of address space, taken at once so that all can be marked
constexpr size_t kHugePage = size_t{1} << 21;

void AskForHugePages(uintptr_t begin, uintptr_t end) {
  begin = (begin + kHugePage - 1) & ~(kHugePage - 1);
  end &= ~(kHugePage - 1);
  if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

}  // namespace

void KeepFreedMemory() {
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, -1);
  mallopt(M_TOP_PAD, kRoom);
  const auto begin = reinterpret_cast<uintptr_t>(sbrk(0));
  void* const grows = std::malloc(kHugePage);
  std::free(grows);
  AskForHugePages(begin, reinterpret_cast<uintptr_t>(sbrk(0)));
}

#else

void KeepFreedMemory() {}

#endif

}  // namespace orv::cli
