#include "formats/IndexedMeshFile.h"

namespace orv {

namespace {

constexpr uint32_t kOldestVersion = 100;
constexpr uint32_t kOldestMaterialVersion = 101;
constexpr size_t kInfoPaddingAt103 = 20;  // bytes
constexpr uint32_t kMaxListed = 256;      // properties, maps: more than any material has

// The smallest that an item can be, in bytes.
constexpr size_t kMinMeshChunkBytes = 124;
constexpr size_t kMinPropertyBytes = 8;
constexpr size_t kMinMapBytes = 12;
constexpr size_t kVertexBytes = 20 + 12;   // with its normal
constexpr size_t kTriangleBytes = 6 + 12;  // with its normal
constexpr size_t kMinInfluenceBytes = 60;
constexpr size_t kMinMatchBytes = 8;
constexpr size_t kWeightBytes = 20;
constexpr size_t kMinAttachmentBytes = 52;

// Returns the number of mesh chunks.
uint32_t ReadInfo(ChunkReader& in, IndexedMeshFile& file) {
  const uint32_t version = in.EnterChunk("INFO", kOldestVersion, kMeshInfoVersion);
  in.ReadBlock(file.mesh.vector.data(), 12, 4);
  in.ReadBlock(file.mesh.direction.data(), 12, 4);
  file.mesh.word = in.ReadU32();
  const uint32_t chunkCount = in.ReadU32();
  if (version >= 102) {
    file.maxInfluencesPerVertex = in.ReadU32();
    file.maxBonesPerChunk = in.ReadU32();
  }
  if (version == 103) in.Skip(kInfoPaddingAt103);
  if (version >= 104) {
    file.boundingBox.emplace();
    file.boundingBox->minimum = in.ReadVec3();
    file.boundingBox->maximum = in.ReadVec3();
  }
  in.LeaveChunk();
  return chunkCount;
}

uint32_t ReadShortCount(ChunkReader& in, const char* what, size_t minBytesEach) {
  const uint32_t count = in.ReadCount(what, minBytesEach);
  if (count > kMaxListed) {
    in.Fail(ReadFault::Count,
            std::string(what) + " count " + std::to_string(count) + " is beyond " +
                std::to_string(kMaxListed),
            sizeof(count));
  }
  return count;
}

// A material with two opacity maps counts one map more than it has.
void ReadMaps(ChunkReader& in, std::vector<MaterialMap>& maps) {
  const uint32_t count = in.ReadU32();
  if (count > kMaxListed || count > in.BytesLeft() / kMinMapBytes + 1) {
    in.Fail(ReadFault::Count, "map count " + std::to_string(count) + " exceeds the chunk",
            sizeof(count));
  }
  maps.reserve(count);
  while (maps.size() < count && (in.BytesLeft() > 0 || maps.size() + 1 < count)) {
    MaterialMap& map = maps.emplace_back();
    map.channel = in.ReadI32();
    map.fileName = in.ReadString();
    map.amount = in.ReadF32();
  }
  if (maps.size() < count) {
    in.Remark(ReadFault::Count, "map count " + std::to_string(count) + ", but one less follows");
  }
}

void ReadMaterial(ChunkReader& in, GenericMaterial& material) {
  in.EnterChunk("MATL", kOldestMaterialVersion, kMaterialVersion);
  material.name = in.ReadString();
  material.properties.resize(ReadShortCount(in, "property", kMinPropertyBytes));
  for (auto& [key, value] : material.properties) {
    key = in.ReadString();
    value = in.ReadString();
  }
  material.twoSided = in.ReadU32();
  material.opacity = in.ReadF32();
  material.ambient = in.ReadVec3();
  material.diffuse = in.ReadVec3();
  material.specular = in.ReadVec3();
  material.emissive = in.ReadVec3();
  material.shininess = in.ReadF32();
  ReadMaps(in, material.maps);
  in.LeaveChunk();
}

struct GeometryCounts {
  uint32_t flags = 0;
  uint32_t vertices = 0;
  uint32_t triangles = 0;
};

GeometryCounts ReadGeometryHeader(ChunkReader& in, IndexedMesh::Chunk& chunk, MeshChunkInfo& info) {
  const uint32_t version = info.geometryVersion;
  GeometryCounts counts;
  if (version >= 101) chunk.word = in.ReadU32();
  if (version >= kGeometryVersion) counts.flags = in.ReadU32();
  chunk.surfaceArea = in.ReadF32();
  counts.vertices = in.ReadCount("vertex", kVertexBytes);
  counts.triangles = in.ReadCount("triangle", kTriangleBytes);
  info.indexCount = version >= 101 ? in.ReadU32() : 3 * counts.triangles;
  info.triangleCountAgain = version >= 101 ? in.ReadU32() : counts.triangles;
  if (version >= 102) info.maxInfluencesPerVertex = in.ReadU32();
  if (version >= 200) info.boneName = in.ReadString();
  return counts;
}

void RequireVertices(const ChunkReader& in, const IndexedMesh::Chunk& chunk) {
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    for (const uint16_t vertex : chunk.triangles[i]) {
      if (vertex < chunk.vertices.size()) continue;
      in.Fail(ReadFault::Index,
              "triangle " + std::to_string(i) + " names vertex " + std::to_string(vertex) + " of " +
                  std::to_string(chunk.vertices.size()),
              (chunk.triangles.size() - i) * sizeof(Triangle));
    }
  }
}

void ReadGeometry(ChunkReader& in, IndexedMesh::Chunk& chunk, MeshChunkInfo& info) {
  const uint32_t version = in.EnterChunk("GEOM", kOldestVersion, kGeometryVersion);
  info.geometryVersion = version;
  const GeometryCounts counts = ReadGeometryHeader(in, chunk, info);
  in.ReadRecords<float>(chunk.vertices, "vertex", counts.vertices);
  in.ReadRecords<uint16_t>(chunk.triangles, "triangle", counts.triangles);
  RequireVertices(in, chunk);
  in.ReadRecords<float>(chunk.normals, "vertex normal", counts.vertices);
  in.ReadRecords<float>(chunk.faceNormals, "face normal", counts.triangles);
  if (counts.flags & kHasTangents) {
    in.ReadRecords<float>(chunk.tangents, "tangent", counts.vertices);
  }
  in.LeaveChunk();
}

void ReadNeighbours(ChunkReader& in, IndexedMesh::Chunk& chunk) {
  in.EnterChunk("NINF", kNeighboursVersion, kNeighboursVersion);
  in.ReadRecords<uint32_t>(chunk.neighbours, "neighbour", chunk.triangles.size());
  in.LeaveChunk();
}

void ReadMeshChunk(ChunkReader& in, uint32_t number, IndexedMesh::Chunk& chunk,
                   MeshChunkInfo& info) {
  const size_t start = in.Position();
  in.EnterChunk("CHNK", kMeshChunkVersion, kMeshChunkVersion, number);
  info.index = in.ReadU32();
  ReadMaterial(in, chunk.material);
  ReadGeometry(in, chunk, info);
  if (in.NextIs('N')) ReadNeighbours(in, chunk);
  in.LeaveChunk();
  info.fileSize = in.Position() - start;
}

void ReadMeshChunks(ChunkReader& in, uint32_t count, IndexedMeshFile& file) {
  in.RequireRoom("chunk", count, kMinMeshChunkBytes);
  file.mesh.chunks.resize(count);
  file.chunks.resize(count);
  for (uint32_t i = 0; i < count; ++i) {
    ReadMeshChunk(in, i, file.mesh.chunks[i], file.chunks[i]);
    file.vertexCount += file.mesh.chunks[i].vertices.size();
    file.triangleCount += file.mesh.chunks[i].triangles.size();
  }
}

// A longer one would be copied for each chunk that the bone moves.
std::string ReadBoneName(ChunkReader& in) {
  std::string name = in.ReadString();
  if (name.size() > kMaxNameLength) {
    in.Fail(ReadFault::Length, "a bone name of " + std::to_string(name.size()) +
                                   " characters is beyond " + std::to_string(kMaxNameLength));
  }
  return name;
}

void ReadBoneInfluence(ChunkReader& in, IndexedMesh& mesh) {
  const std::string name = ReadBoneName(in);
  const std::string parentName = ReadBoneName(in);
  const Vec3 position = in.ReadVec3();
  Matrix33 rotation;
  in.ReadBlock(rotation.data(), sizeof(rotation), sizeof(float));
  const uint32_t matchCount = in.ReadCount("chunk", kMinMatchBytes);
  for (uint32_t i = 0; i < matchCount; ++i) {
    const uint32_t chunk = in.ReadU32();
    if (chunk >= mesh.influences.size()) {
      in.Fail(ReadFault::Index, "bone \"" + name + "\" names chunk " + std::to_string(chunk) +
                                    " of " + std::to_string(mesh.influences.size()));
    }
    auto bone = std::make_unique<GenericBoneInfluence>(name, parentName, position, rotation);
    in.ReadRecords<uint32_t>(bone->m_weights, "weight", in.ReadCount("weight", kWeightBytes));
    mesh.influences[chunk]->AddBone(std::move(bone));
  }
}

bool TryReadInfluences(ChunkReader& in, IndexedMesh& mesh) {
  if (!in.TryEnterChunk("INFL", kInfluencesVersion)) return false;
  mesh.influences.reserve(mesh.chunks.size());
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    mesh.influences.push_back(std::make_unique<ExGenericMeshInfluence>());
  }
  const uint32_t boneCount = in.ReadCount("bone", kMinInfluenceBytes);
  for (uint32_t i = 0; i < boneCount; ++i) ReadBoneInfluence(in, mesh);
  in.LeaveChunk();
  return true;
}

void TryReadSkeleton(ChunkReader& in, IndexedMeshFile& file) {
  if (!in.TryEnterChunk("SKEL", kSkeletonVersion)) return;
  ReadBoneTree(in, file.bones, &file.bonePoses);
  in.LeaveChunk();
}

void TryReadAttachments(ChunkReader& in, std::vector<AttachmentPoint>& points) {
  if (!in.TryEnterChunk("ATCH", kAttachmentsVersion)) return;
  points.resize(in.ReadCount("attachment point", kMinAttachmentBytes));
  for (AttachmentPoint& point : points) {
    point.name = in.ReadString();
    in.ReadBlock(point.rotation.data(), sizeof(point.rotation), sizeof(float));
    point.position = in.ReadVec3();
  }
  in.LeaveChunk();
}

void ReadFile(ChunkReader& in, IndexedMeshFile& file) {
  in.EnterRoot("IDXM");
  const uint32_t chunkCount = ReadInfo(in, file);
  ReadMeshChunks(in, chunkCount, file);
  if (!TryReadInfluences(in, file.mesh)) TryReadSkeleton(in, file);
  TryReadAttachments(in, file.mesh.attachmentPoints);
  in.LeaveRoot();
}

}  // namespace

bool ReadIndexedMesh(std::string_view bytes, IndexedMeshFile& file, ReadProblem& problem) {
  return ReadContent(bytes, file, problem, ReadFile);
}

bool ReadIndexedMeshFile(const std::string& fileName, IndexedMeshFile& file, ReadProblem& problem) {
  std::string bytes;
  return ReadWholeFile(fileName, bytes, problem) && ReadIndexedMesh(bytes, file, problem);
}

}  // namespace orv
