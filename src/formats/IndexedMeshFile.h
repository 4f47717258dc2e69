#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "formats/BoneTree.h"
#include "formats/ChunkReader.h"
#include "meshproc/ExIndexedMesh.h"
#include "report/ExportUserInterface.h"
#include "scene/IndexedMesh.h"

// The indexed mesh file, written and read. A mesh is made of chunks, as every file is of other
// ones: here those of the mesh, a "CHNK" each, are mesh chunks.
namespace orv {

// The versions that the chunks are written with.
inline constexpr uint32_t kMeshInfoVersion = 104;
inline constexpr uint32_t kMeshChunkVersion = 100;
inline constexpr uint32_t kMaterialVersion = 103;
inline constexpr uint32_t kGeometryVersion = 201;
inline constexpr uint32_t kNeighboursVersion = 100;
inline constexpr uint32_t kInfluencesVersion = 100;
inline constexpr uint32_t kAttachmentsVersion = 100;

inline constexpr uint32_t kHasTangents = 1;  // "GEOM" flag

// Writes the mesh, and the texture side files beside it. optimise: reorder the triangles of every
// mesh chunk for the vertex cache. Each one is prepared just before it is written; the materials'
// map names become the engine's. The flags say what becomes of a side file that exists, and change
// with the user's answers. False, with the error and the system's reason logged, when the file
// could not be written; the file that was there is still there.
bool WriteIndexedMeshFile(ExIndexedMesh& mesh, const std::string& fileName, bool optimise,
                          bool& askOverwrite, bool& forceOverwrite, ExportUserInterface& ui);

// The whole content of the file. Before each mesh chunk the fraction done is reported. folder: for
// the side files, with its trailing separator, or "".
void WriteIndexedMesh(std::ostream& out, ExIndexedMesh& mesh, const std::string& folder,
                      bool optimise, bool& askOverwrite, bool& forceOverwrite,
                      ExportUserInterface& ui);

// Not in exported files. Pinned by IndexedMeshWriter.Neighbours.
void WriteNeighbours(std::ostream& out, const IndexedMesh::Chunk& chunk);

struct BoundingBox {
  Vec3 minimum{3.4028235e38f, 3.4028235e38f, 3.4028235e38f};  // metres
  Vec3 maximum{-3.4028235e38f, -3.4028235e38f, -3.4028235e38f};
  bool operator==(const BoundingBox&) const = default;
};

// Of all vertices; the start values for a mesh without any.
BoundingBox ComputeBoundingBox(const IndexedMesh& mesh);

// What the file says about a mesh chunk beside what is in the chunk itself.
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
