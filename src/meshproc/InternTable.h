#pragma once

#include <bit>
#include <cstdint>
#include <vector>

namespace orv {

// Asks the processor to fetch memory that is soon needed.
inline void Prefetch([[maybe_unused]] const void* address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

// Finds the number under which an equal key was added before. The keys stay with the caller, who
// compares them by number; equal keys must hash alike.
class InternTable {
 public:
  explicit InternTable(size_t expectedKeys = 0)
      : m_slots(std::bit_ceil(expectedKeys + expectedKeys / 3 + 8)) {}

  // The number of the key for which equal(number) holds, or newNumber, which then stands for it.
  template <typename Equal>
  uint32_t FindOrAdd(uint32_t hash, uint32_t newNumber, Equal equal) {
    if (m_used >= m_slots.size() / 4 * 3) Grow();
    const size_t mask = m_slots.size() - 1;
    size_t place = hash & mask;
    for (; m_slots[place].number != kFree; place = (place + 1) & mask) {
      if (m_slots[place].hash == hash && equal(m_slots[place].number)) return m_slots[place].number;
    }
    m_slots[place] = {hash, newNumber};
    ++m_used;
    return newNumber;
  }

  // Only looks; kFree when there is no equal key.
  template <typename Equal>
  uint32_t Find(uint32_t hash, Equal equal) const {
    const size_t mask = m_slots.size() - 1;
    size_t place = hash & mask;
    for (; m_slots[place].number != kFree; place = (place + 1) & mask) {
      if (m_slots[place].hash == hash && equal(m_slots[place].number)) break;
    }
    return m_slots[place].number;
  }

  // To be called some time before a key of that hash is looked up; then First, the most likely
  // number or kFree, is there to fetch that key's data by.
  void Prefetch(uint32_t hash) const { orv::Prefetch(&m_slots[hash & (m_slots.size() - 1)]); }
  uint32_t First(uint32_t hash) const { return m_slots[hash & (m_slots.size() - 1)].number; }

  static constexpr uint32_t kFree = 0xFFFFFFFF;

 private:
  struct Slot {
    uint32_t hash = 0;
    uint32_t number = kFree;
  };

  void Grow() {
    const std::vector<Slot> old = std::move(m_slots);
    m_slots.assign(old.size() * 2, {});
    for (const Slot& slot : old) {
      if (slot.number == kFree) continue;
      size_t place = slot.hash & (m_slots.size() - 1);
      while (m_slots[place].number != kFree) place = (place + 1) & (m_slots.size() - 1);
      m_slots[place] = slot;
    }
  }

  std::vector<Slot> m_slots;  // a power of two
  size_t m_used = 0;
};

// One 64-bit word after the other into a hash; finish by Fold.
inline uint64_t Mix(uint64_t hash, uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 32);
}

// Exactly equal floats give equal words: 0 has two bit patterns.
inline uint64_t PairBits(float a, float b) {
  return std::bit_cast<uint32_t>(a + 0.0f) | uint64_t{std::bit_cast<uint32_t>(b + 0.0f)} << 32;
}

}  // namespace orv
