#pragma once

#include <array>
#include <optional>
#include <vector>

#include "formats/IndexedMeshFile.h"
#include "inspect/BoneOutline.h"
#include "inspect/VertexCache.h"

namespace orv::inspect {

inline constexpr std::array<size_t, 2> kCacheSizes = {10, 16};  // entries

// A count for each of kCacheSizes.
using CacheCounts = std::array<VertexCacheCount, kCacheSizes.size()>;

// What is not in an indexed mesh file but follows from it.
struct MeshSummary {
  struct Chunk {
    CacheCounts cache;
    uint32_t bones = 0;  // that move a vertex of the chunk
  };
  std::vector<Chunk> chunks;
  CacheCounts cache;                   // of all chunks
  double surfaceArea = 0;              // square metres
  std::optional<BoundingBox> box;      // the file's, else that of the vertices; none without any
  std::vector<OutlinedBone> skeleton;  // of a rigidly bound mesh
  std::vector<SkinBone> skin;          // of a skinned one
};

MeshSummary Summarise(const IndexedMeshFile& file);

}  // namespace orv::inspect
