#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace orv::host {

constexpr uint32_t kNoFan = 0xFFFFFFFF;

// Smoothing groups that tell the fans of one position apart. A fan is the corners around a position
// that share a normal.
struct SmoothingGroups {
  std::vector<uint32_t> fans;  // groups of each fan; 0 when none of its faces could be coloured
  size_t uncolouredFaces = 0;  // left flat although all their corners have a fan
};

// The three fans that face `face` has at its corners; kNoFan: the face is to be flat.
struct FaceFans {
  uint32_t corner[3];
};

// Finds one group bit for each face, such that no other fan at any of its corners holds that bit.
// `fansOf(face)` gives a face's fans, `paint(face, group)` takes its group. Linear in the faces.
// `fanPosition` says for each fan which position it is at.
template <typename FansOf, typename Paint>
SmoothingGroups PaintFaces(size_t faceCount, size_t positionCount,
                           std::span<const uint32_t> fanPosition, FansOf fansOf, Paint paint);

// The bit for a face of these fans: `forbidden` are the groups of other fans at its corners.
// Prefers the groups that the fans have already, so that they stay few. 0 when all are forbidden.
uint32_t ChooseGroup(uint32_t forbidden, const uint32_t (&groups)[3]);

template <typename FansOf, typename Paint>
SmoothingGroups PaintFaces(size_t faceCount, size_t positionCount,
                           std::span<const uint32_t> fanPosition, FansOf fansOf, Paint paint) {
  SmoothingGroups result;
  result.fans.assign(fanPosition.size(), 0);
  // A bit belongs to one fan of a position at most. So what the other fans there hold is the
  // position's bits without the fan's own.
  std::vector<uint32_t> atPosition(positionCount, 0);
  for (size_t face = 0; face < faceCount; ++face) {
    FaceFans fans = fansOf(face);
    if (fans.corner[0] == kNoFan || fans.corner[1] == kNoFan || fans.corner[2] == kNoFan) {
      paint(face, uint32_t{0});
      continue;
    }
    // A face that is at one position twice can have one normal there only.
    for (int k = 1; k < 3; ++k) {
      for (int j = 0; j < k; ++j) {
        if (fanPosition[fans.corner[j]] == fanPosition[fans.corner[k]]) {
          fans.corner[k] = fans.corner[j];
        }
      }
    }
    uint32_t groups[3];
    uint32_t forbidden = 0;
    for (int k = 0; k < 3; ++k) {
      groups[k] = result.fans[fans.corner[k]];
      forbidden |= atPosition[fanPosition[fans.corner[k]]] & ~groups[k];
    }
    const uint32_t group = ChooseGroup(forbidden, groups);
    if (group == 0) ++result.uncolouredFaces;
    for (const uint32_t fan : fans.corner) {
      result.fans[fan] |= group;
      atPosition[fanPosition[fan]] |= group;
    }
    paint(face, group);
  }
  return result;
}

}  // namespace orv::host
