#pragma once

#include <vector>

#include "maxheap.h"

// Growable array. Does not own what pointers in it point to.
template <typename T>
class Tab : public MaxHeapOperators {
 public:
  int Count() const { return static_cast<int>(m_items.size()); }
  void SetCount(int count) { m_items.resize(static_cast<size_t>(count)); }
  void ZeroCount() { m_items.clear(); }

  // Answers the index of the first item appended.
  int Append(int count, const T* items) {
    const int first = Count();
    m_items.insert(m_items.end(), items, items + count);
    return first;
  }
  // Removes `count` items from `start` on; answers how many are left.
  int Delete(int start, int count) {
    m_items.erase(m_items.begin() + start, m_items.begin() + start + count);
    return Count();
  }

  T& operator[](int i) { return m_items[static_cast<size_t>(i)]; }
  const T& operator[](int i) const { return m_items[static_cast<size_t>(i)]; }
  T* Addr(int i) { return m_items.data() + i; }
  const T* Addr(int i) const { return m_items.data() + i; }

 private:
  std::vector<T> m_items;
};
