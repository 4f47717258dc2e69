#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "formats/IndexedMeshFile.h"

namespace orv::inspect {

// What the triangles of a chunk make of its vertices.
struct VertexUse {
  std::vector<bool> used;         // per vertex: a triangle names it
  size_t unused = 0;              // vertices that no triangle names
  bool inOrderOfFirstUse = true;  // each index is at most one above all before it
};

VertexUse FindVertexUse(const IndexedMesh::Chunk& chunk);

// How many triangles have the corners of an earlier one, in the same order.
size_t CountRepeatedTriangles(const IndexedMesh::Chunk& chunk);

// The weights of one chunk, seen from its vertices. Only weights above 0 of vertices that are there
// count; a bone that lists a vertex twice counts once for it.
struct ChunkWeights {
  std::vector<uint32_t> bonesOfVertex;
  std::vector<double> sumOfVertex;
  uint32_t bones = 0;  // with a weight above 0

  uint32_t MaxBonesOfVertex(const std::vector<bool>& used) const;
};

// For the whole mesh; none without a skin.
std::vector<ChunkWeights> GatherWeights(const IndexedMesh& mesh);

// How a list of triangles meets a first-in first-out vertex cache that is empty at its start.
struct VertexCacheCount {
  size_t misses = 0;
  size_t triangles = 0;
  size_t vertices = 0;  // that triangles name

  double Acmr() const;  // misses per triangle: 0.5 is the best a large mesh can reach, 3 the worst
  double Atvr() const;  // misses per vertex: 1 is the best
  VertexCacheCount& operator+=(const VertexCacheCount& other);
};

VertexCacheCount CountCacheMisses(std::span<const Triangle> triangles, size_t vertexCount,
                                  size_t cacheSize);

// One bone of a tree that is told line by line, a parent before its children.
struct OutlinedBone {
  std::string name;
  int32_t parent = -1;  // place in the outline; -1: a root
  size_t depth = 0;
};

// A bone of a skin.
struct SkinBone : OutlinedBone {
  std::string parentName;        // as the file has it; also of a bone that the file lacks
  size_t vertexCount = 0;        // that follow it; a vertex that it lists twice counts twice
  std::vector<uint32_t> chunks;  // that list it, ascending
};

std::vector<OutlinedBone> OutlineOf(std::span<const BoneNode> bones);

// The distinct bones of a skin, names compared without case, as a tree. Bones whose parents go in a
// circle stand as if they had none.
std::vector<SkinBone> OutlineOf(
    std::span<const std::unique_ptr<GenericMeshInfluence>> influencePerChunk);

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
