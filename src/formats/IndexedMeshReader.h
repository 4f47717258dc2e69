#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/BoneTree.h"
#include "formats/ChunkReader.h"
#include "formats/MeshStatistics.h"
#include "scene/IndexedMesh.h"

namespace orv {

// What the file says about a chunk beside what is in the chunk itself.
struct MeshChunkInfo {
  uint32_t index = 0;
  uint32_t geometryVersion = 0;
  uint32_t indexCount = 0;
  uint32_t triangleCountAgain = 0;  // the second count of the file
  uint32_t maxInfluencesPerVertex = 0;
  std::string boneName;  // "" unless bound to a bone
  size_t fileSize = 0;   // bytes, with the header
};

// An indexed mesh file as it was read. Every triangle names vertices of its chunk, and every
// influence a chunk of the mesh; a weight can name a vertex that is not there. Numbers can be NaN.
struct IndexedMeshFile {
  IndexedMesh mesh;  // without skeleton and attachment bones; a material's name has its type
  std::vector<MeshChunkInfo> chunks;               // as many as in the mesh
  std::optional<uint32_t> maxInfluencesPerVertex;  // as stored, absent from the oldest files
  std::optional<uint32_t> maxBonesPerChunk;        // the same
  std::optional<BoundingBox> boundingBox;          // the same
  std::vector<BoneNode> bones;                     // of a rigidly bound mesh
  std::vector<BonePose> bonePoses;                 // relative to the parent; in the scene's units
  size_t vertexCount = 0;                          // of all chunks
  size_t triangleCount = 0;
  std::vector<ReadProblem> remarks;
};

// False, with the problem, when the bytes are no indexed mesh file.
bool ReadIndexedMesh(std::string_view bytes, IndexedMeshFile& file, ReadProblem& problem);
bool ReadIndexedMeshFile(const std::string& fileName, IndexedMeshFile& file, ReadProblem& problem);

}  // namespace orv
