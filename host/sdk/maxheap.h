#pragma once

#include <cstddef>
#include <cstdlib>

// Base that puts a class on the host's heap. An allocation that fails makes the new expression
// yield a null pointer; it does not throw.
class MaxHeapOperators {
 public:
  static void* operator new(std::size_t size) noexcept { return std::malloc(size); }
  static void* operator new[](std::size_t size) noexcept { return std::malloc(size); }
  static void operator delete(void* memory) noexcept { std::free(memory); }
  static void operator delete[](void* memory) noexcept { std::free(memory); }
};
