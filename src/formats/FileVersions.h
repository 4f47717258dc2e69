#pragma once

#include <cstdint>

// The version that each chunk is written with.
namespace orv {

// Indexed mesh file
inline constexpr uint32_t kMeshInfoVersion = 104;
inline constexpr uint32_t kChunkVersion = 100;
inline constexpr uint32_t kMaterialVersion = 103;
inline constexpr uint32_t kGeometryVersion = 201;
inline constexpr uint32_t kNeighboursVersion = 100;
inline constexpr uint32_t kInfluencesVersion = 100;
inline constexpr uint32_t kAttachmentsVersion = 100;

// Animation file
inline constexpr uint32_t kAnimationInfoVersion = 100;
inline constexpr uint32_t kEventsVersion = 100;
inline constexpr uint32_t kFrameVersion = 100;

// Both
inline constexpr uint32_t kSkeletonVersion = 100;
inline constexpr uint32_t kBoneVersion = 100;

inline constexpr uint32_t kHasTangents = 1;  // "GEOM" flag

}  // namespace orv
