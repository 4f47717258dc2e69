#include "meshproc/PieceIndex.h"

#include <algorithm>
#include <cassert>

namespace orv {

PieceIndex::PieceIndex(size_t boneCount, uint32_t maxBonesPerPiece)
    : m_holders(boneCount), m_maxBones(maxBonesPerPiece) {
  assert(maxBonesPerPiece < 1u << std::tuple_size_v<Counters>);
}

uint32_t PieceIndex::Open() {
  if (m_count % 64 == 0) m_blocks.emplace_back();
  const uint64_t bit = uint64_t{1} << m_count % 64;
  Block& block = m_blocks.back();
  block.open |= bit;
  for (size_t digit = 0; digit < block.room.size(); ++digit) {
    if (m_maxBones >> digit & 1) block.room[digit] |= bit;
  }
  return m_count++;
}

void PieceIndex::Close(uint32_t piece) {
  m_blocks[piece / 64].open &= ~(uint64_t{1} << piece % 64);
  while (m_firstOpenBlock < m_count / 64 && m_blocks[m_firstOpenBlock].open == 0) {
    ++m_firstOpenBlock;
  }
}

bool PieceIndex::HasRoom(uint32_t piece, std::span<const BoneUse> bones) const {
  return WithRoom(piece / 64, bones) >> piece % 64 & 1;
}

void PieceIndex::AddBones(uint32_t piece, std::span<const BoneUse> bones) {
  const size_t block = piece / 64;
  const uint64_t bit = uint64_t{1} << piece % 64;
  for (const BoneUse& use : bones) {
    if (Holders(use.bone, block) & bit) continue;
    if (m_holders[use.bone].size() <= block) m_holders[use.bone].resize(block + 1);
    m_holders[use.bone][block] |= bit;
    Subtract(m_blocks[block].room, bit, 0);
  }
}

// One past the last block in which a piece can have room. Bones too many for an empty piece fit
// only where some are held already, so that the empty pieces that such triangles leave are not
// searched.
size_t PieceIndex::EndOfRoomy(std::span<const BoneUse> bones) const {
  uint32_t corners = 0;
  size_t end = 0;
  for (const BoneUse& use : bones) {
    corners += use.corners;
    end = std::max(end, m_holders[use.bone].size());
  }
  return corners <= m_maxBones ? m_blocks.size() : end;
}

// Takes 1, 2, 4 ... (digit 0, 1, 2 ...) from the counters of the given pieces; returns those whose
// counter was too small.
uint64_t PieceIndex::Subtract(Counters& counters, uint64_t pieces, size_t digit) {
  for (; digit < counters.size() && pieces != 0; ++digit) {
    const uint64_t borrow = pieces & ~counters[digit];
    counters[digit] ^= pieces;
    pieces = borrow;
  }
  return pieces;
}

uint64_t PieceIndex::WithRoom(size_t block, std::span<const BoneUse> bones) const {
  uint64_t roomy = m_blocks[block].open;
  Counters room = m_blocks[block].room;
  for (const BoneUse& use : bones) {
    if (roomy == 0) break;
    const uint64_t newTo = roomy & ~Holders(use.bone, block);
    if (use.corners & 1) roomy &= ~Subtract(room, newTo, 0);
    if (use.corners & 2) roomy &= ~Subtract(room, newTo, 1);
  }
  return roomy;
}

uint64_t PieceIndex::Holders(uint32_t bone, size_t block) const {
  return block < m_holders[bone].size() ? m_holders[bone][block] : 0;
}

}  // namespace orv
