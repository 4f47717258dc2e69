#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <span>
#include <vector>

namespace orv {

// A bone that moves a triangle, with the number of its corners that the bone moves.
struct BoneUse {
  uint32_t bone = 0;
  uint32_t corners = 0;  // 1 to 3
};

// The open pieces of a chunk that is being split and the bones they hold, kept so that 64 pieces
// are asked at once whether they have room for a triangle's bones. A bone that is new to a piece
// needs room for each corner it moves, but takes up the room of one.
class PieceIndex {
 public:
  static constexpr uint32_t kNone = 0xFFFFFFFF;

  PieceIndex(size_t boneCount, uint32_t maxBonesPerPiece);

  uint32_t Open();  // 0, 1, 2 ...
  void Close(uint32_t piece);
  bool HasRoom(uint32_t piece, std::span<const BoneUse> bones) const;
  void AddBones(uint32_t piece, std::span<const BoneUse> bones);

  // The first open piece that has room and that accepts(piece) takes, or kNone.
  template <typename Accepts>
  uint32_t FindFirst(std::span<const BoneUse> bones, Accepts accepts) const {
    const size_t end = EndOfRoomy(bones);
    for (size_t block = m_firstOpenBlock; block < end; ++block) {
      for (uint64_t roomy = WithRoom(block, bones); roomy != 0; roomy &= roomy - 1) {
        const uint32_t piece = static_cast<uint32_t>(block * 64) + std::countr_zero(roomy);
        if (accepts(piece)) return piece;
      }
    }
    return kNone;
  }

 private:
  using Counters = std::array<uint64_t, 5>;  // bit i of each word: one binary digit of piece i's

  // 64 pieces, one per bit.
  struct Block {
    uint64_t open = 0;
    Counters room{};  // for further bones
  };

  size_t EndOfRoomy(std::span<const BoneUse> bones) const;
  static uint64_t Subtract(Counters& counters, uint64_t pieces, size_t digit);
  uint64_t WithRoom(size_t block, std::span<const BoneUse> bones) const;
  uint64_t Holders(uint32_t bone, size_t block) const;

  std::vector<Block> m_blocks;
  std::vector<std::vector<uint64_t>> m_holders;  // per bone and block; ends at the last holder
  size_t m_firstOpenBlock = 0;
  uint32_t m_count = 0;
  uint32_t m_maxBones;
};

}  // namespace orv
