#pragma once

#include <cstddef>

namespace orv {

// A text of the string table in the one buffer that all callers share: valid until the next call.
const char* ResourceText(unsigned id);

// The same in the caller's buffer, cut to its size.
const char* ResourceText(unsigned id, char* buffer, size_t size);

}  // namespace orv
