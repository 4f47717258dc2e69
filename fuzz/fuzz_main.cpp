// The entry that the fuzzer calls; built once for each target.

#include <cstddef>
#include <cstdint>

#include "Targets.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ORV_FUZZ_TARGET({reinterpret_cast<const char*>(data), size});
  return 0;
}
