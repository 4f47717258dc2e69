#include <algorithm>
#include <cassert>
#include <unordered_map>

#include "formats/ChunkStream.h"
#include "formats/IndexedMeshFile.h"
#include "formats/SideFiles.h"
#include "platform/ExString.h"

namespace orv {

namespace {

// Only weights above zero count.
struct MeshStatistics {
  uint32_t maxInfluencesPerVertex = 0;
  uint32_t maxBonesPerChunk = 0;
  std::vector<uint32_t> maxInfluencesOfChunk;  // per vertex; one entry a mesh chunk
};

struct InfluenceCounts {
  uint32_t maxPerVertex = 0;
  uint32_t bones = 0;
};

// A bone that lists a vertex twice counts once for it.
InfluenceCounts CountInfluences(const GenericMeshInfluence& influence, size_t vertexCount) {
  InfluenceCounts counts;
  std::vector<uint32_t> bonesOfVertex(vertexCount, 0);
  std::vector<size_t> lastBoneOfVertex(vertexCount, SIZE_MAX);
  for (size_t bone = 0; bone < influence.m_bones.size(); ++bone) {
    bool moves = false;
    for (const VertexWeight& weight : influence.m_bones[bone]->m_weights) {
      if (!(weight.weight > 0)) continue;
      moves = true;
      if (weight.vertex >= vertexCount || lastBoneOfVertex[weight.vertex] == bone) continue;
      lastBoneOfVertex[weight.vertex] = bone;
      counts.maxPerVertex = std::max(counts.maxPerVertex, ++bonesOfVertex[weight.vertex]);
    }
    if (moves) ++counts.bones;
  }
  return counts;
}

MeshStatistics ComputeStatistics(const IndexedMesh& mesh) {
  MeshStatistics statistics;
  statistics.maxInfluencesOfChunk.assign(mesh.chunks.size(), 0);
  const size_t influenced = std::min(mesh.chunks.size(), mesh.influences.size());
  for (size_t i = 0; i < influenced; ++i) {
    const InfluenceCounts counts =
        CountInfluences(*mesh.influences[i], mesh.chunks[i].vertices.size());
    statistics.maxInfluencesOfChunk[i] = counts.maxPerVertex;
    statistics.maxInfluencesPerVertex =
        std::max(statistics.maxInfluencesPerVertex, counts.maxPerVertex);
    statistics.maxBonesPerChunk = std::max(statistics.maxBonesPerChunk, counts.bones);
  }
  return statistics;
}

void WriteMeshInfo(std::ostream& out, const IndexedMesh& mesh, const MeshStatistics& statistics) {
  const BoundingBox box = ComputeBoundingBox(mesh);
  ChunkScope info(out, "INFO", kMeshInfoVersion);
  WriteRecords<float>(out, std::span<const float>(mesh.vector));
  WriteRecords<float>(out, std::span<const float>(mesh.direction));
  WriteU32(out, mesh.word);
  WriteU32(out, static_cast<uint32_t>(mesh.chunks.size()));
  WriteU32(out, statistics.maxInfluencesPerVertex);
  WriteU32(out, statistics.maxBonesPerChunk);
  WriteVec3(out, box.minimum);
  WriteVec3(out, box.maximum);
}

void WriteProperties(std::ostream& out, const GenericMaterial& material) {
  WriteU32(out, static_cast<uint32_t>(material.properties.size()));
  for (const auto& [key, value] : material.properties) {
    WriteString(out, key);
    WriteString(out, value);
  }
}

void WriteColours(std::ostream& out, const GenericMaterial& material, bool useDefaultColors) {
  WriteVec3(out, useDefaultColors ? Vec3{1, 1, 1} : material.ambient);
  WriteVec3(out, useDefaultColors ? Vec3{1, 1, 1} : material.diffuse);
  WriteVec3(out, useDefaultColors ? Vec3{0, 0, 0} : material.specular);
  WriteVec3(out, useDefaultColors ? Vec3{0, 0, 0} : material.emissive);
  WriteF32(out, useDefaultColors ? 32.0f : material.shininess);
}

// The opacity map is in the side file of the diffuse map. However many there are, the count goes
// down by one only. Pinned by IndexedMeshWriter.TwoOpacityMapsCountOneTooHigh.
void WriteMaps(std::ostream& out, const GenericMaterial& material, bool hasOpacityMap) {
  WriteU32(out, static_cast<uint32_t>(material.maps.size() - (hasOpacityMap ? 1 : 0)));
  for (const MaterialMap& map : material.maps) {
    if (map.channel == kOpacity) continue;
    WriteU32(out, static_cast<uint32_t>(map.channel));
    WriteString(out, map.fileName);
    WriteF32(out, map.amount);
  }
}

void WriteMaterial(std::ostream& out, GenericMaterial& material, bool useDefaultColors,
                   const std::string& folder, bool& askOverwrite, bool& forceOverwrite,
                   ExportUserInterface& ui) {
  ChunkScope matl(out, "MATL", kMaterialVersion);
  WriteString(out, ComposeMaterialName(material, material.name, /*allowBillboards=*/true, ui));
  WriteProperties(out, material);
  WriteU32(out, material.twoSided);
  WriteF32(out, material.opacity);
  WriteColours(out, material, useDefaultColors);
  const bool hasOpacityMap =
      WriteTextureSideFiles(material, folder, ui, askOverwrite, forceOverwrite);
  WriteMaps(out, material, hasOpacityMap);
}

void WriteGeometry(std::ostream& out, const IndexedMesh::Chunk& chunk, uint32_t maxInfluences) {
  const auto vertexCount = static_cast<uint32_t>(chunk.vertices.size());
  const auto triangleCount = static_cast<uint32_t>(chunk.triangles.size());
  // Without vertices too: the flag is then set, and no tangent follows.
  const bool hasTangents =
      AsksForTangents(chunk.material.name) && chunk.tangents.size() == vertexCount;
  const GenericSkeleton::Node* bone = chunk.material.attachmentBone;
  assert(chunk.normals.size() == vertexCount && chunk.faceNormals.size() >= triangleCount);
  assert(chunk.tangents.empty() || chunk.tangents.size() == vertexCount);

  ChunkScope geom(out, "GEOM", kGeometryVersion);
  WriteU32(out, chunk.word);
  WriteU32(out, hasTangents ? kHasTangents : 0);
  WriteF32(out, chunk.surfaceArea);
  WriteU32(out, vertexCount);
  WriteU32(out, triangleCount);
  WriteU32(out, 3 * triangleCount);
  WriteU32(out, triangleCount);
  WriteU32(out, maxInfluences);
  WriteString(out, bone ? bone->Name() : "");
  WriteRecords<float>(out, std::span<const IndexedVertex>(chunk.vertices));
  WriteRecords<uint16_t>(out, std::span<const Triangle>(chunk.triangles));
  WriteRecords<float>(out, std::span<const Vec3>(chunk.normals));
  WriteRecords<float>(out, std::span<const Vec3>(chunk.faceNormals).first(triangleCount));
  if (hasTangents) WriteRecords<float>(out, std::span<const Vec3>(chunk.tangents));
}

// Relative to the parent bone, with row matrices: world = stored x parent's world.
void WriteRelativePose(std::ostream& out, const GenericSkeleton::Node& bone,
                       const GenericSkeleton::Node* parent) {
  Vec3 translation = bone.Position();
  Quaternion rotation = bone.Rotation();
  if (parent) {
    const Quaternion intoParent = Conjugate(parent->Rotation());
    translation = (translation - parent->Position()) * RotationRows(intoParent);
    rotation = rotation * intoParent;
  }
  WriteVec3(out, translation);
  WriteF32(out, rotation.x);
  WriteF32(out, rotation.y);
  WriteF32(out, rotation.z);
  WriteF32(out, rotation.w);
}

void WriteMeshSkeleton(std::ostream& out, GenericSkeleton& skeleton) {
  skeleton.SetFrame(0);
  ChunkScope skel(out, "SKEL", kSkeletonVersion);
  WriteBoneTree(out, *skeleton.m_root, WriteRelativePose);
}

struct BoneInChunk {
  uint32_t chunk;
  const GenericBoneInfluence* bone;
};

// All bones of one name. The first one's position and rotation stand for it.
using SameNamedBones = std::vector<BoneInChunk>;

// In order of first mention; names are the same when they differ in case only.
std::vector<SameNamedBones> GroupByName(
    std::span<const std::unique_ptr<GenericMeshInfluence>> perChunk) {
  std::vector<SameNamedBones> groups;
  std::unordered_map<std::string, size_t> groupOfName;
  for (size_t chunk = 0; chunk < perChunk.size(); ++chunk) {
    for (const auto& bone : perChunk[chunk]->m_bones) {
      const auto [entry, isNew] = groupOfName.try_emplace(LowerCase(bone->m_name), groups.size());
      if (isNew) groups.emplace_back();
      groups[entry->second].push_back({static_cast<uint32_t>(chunk), bone.get()});
    }
  }
  return groups;
}

void WriteBoneHeader(std::ostream& out, const GenericBoneInfluence& bone) {
  WriteString(out, bone.m_name);
  WriteString(out, bone.m_parentName);
  WriteVec3(out, bone.m_position);
  WriteRecords<float>(out, std::span<const Vec3>(bone.m_rotation));
}

void WriteWeights(std::ostream& out, const BoneInChunk& match) {
  static_assert(sizeof(VertexWeight) == 20);  // vertex, weight, offset: the record of the file
  const std::vector<VertexWeight>& weights = match.bone->m_weights;
  WriteU32(out, match.chunk);
  WriteU32(out, static_cast<uint32_t>(weights.size()));
  WriteRecords<uint32_t>(out, std::span<const VertexWeight>(weights));
}

void WriteInfluences(std::ostream& out,
                     std::span<const std::unique_ptr<GenericMeshInfluence>> perChunk) {
  const std::vector<SameNamedBones> bones = GroupByName(perChunk);
  ChunkScope infl(out, "INFL", kInfluencesVersion);
  WriteU32(out, static_cast<uint32_t>(bones.size()));
  for (const SameNamedBones& bone : bones) {
    WriteBoneHeader(out, *bone.front().bone);
    WriteU32(out, static_cast<uint32_t>(bone.size()));
    for (const BoneInChunk& match : bone) WriteWeights(out, match);
  }
}

void WriteAttachments(std::ostream& out, std::span<const AttachmentPoint> points) {
  ChunkScope atch(out, "ATCH", kAttachmentsVersion);
  WriteU32(out, static_cast<uint32_t>(points.size()));
  for (const AttachmentPoint& point : points) {
    WriteString(out, point.name);
    WriteRecords<float>(out, std::span<const Vec3>(point.rotation));
    WriteVec3(out, point.position);
  }
}

}  // namespace

BoundingBox ComputeBoundingBox(const IndexedMesh& mesh) {
  BoundingBox box;
  for (const IndexedMesh::Chunk& chunk : mesh.chunks) {
    for (const IndexedVertex& vertex : chunk.vertices) {
      box.minimum.x = std::min(box.minimum.x, vertex.x);
      box.minimum.y = std::min(box.minimum.y, vertex.y);
      box.minimum.z = std::min(box.minimum.z, vertex.z);
      box.maximum.x = std::max(box.maximum.x, vertex.x);
      box.maximum.y = std::max(box.maximum.y, vertex.y);
      box.maximum.z = std::max(box.maximum.z, vertex.z);
    }
  }
  return box;
}

void WriteNeighbours(std::ostream& out, const IndexedMesh::Chunk& chunk) {
  assert(chunk.neighbours.size() >= chunk.triangles.size());
  const std::span<const std::array<uint32_t, 3>> neighbours(chunk.neighbours);
  ChunkScope ninf(out, "NINF", kNeighboursVersion);
  WriteRecords<uint32_t>(out, neighbours.first(chunk.triangles.size()));
}

void WriteIndexedMesh(std::ostream& out, ExIndexedMesh& mesh, const std::string& folder,
                      bool optimise, bool& askOverwrite, bool& forceOverwrite,
                      ExportUserInterface& ui) {
  RootScope root(out, "IDXM");
  const MeshStatistics statistics = ComputeStatistics(mesh);
  WriteMeshInfo(out, mesh, statistics);
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    ui.ReportProgress(i, mesh.chunks.size());
    mesh.PrepareChunk(i, optimise);
    IndexedMesh::Chunk& chunk = mesh.chunks[i];
    ChunkScope chnk(out, "CHNK", kMeshChunkVersion);
    WriteU32(out, static_cast<uint32_t>(i));
    WriteMaterial(out, chunk.material, mesh.m_useDefaultColors, folder, askOverwrite,
                  forceOverwrite, ui);
    WriteGeometry(out, chunk, statistics.maxInfluencesOfChunk[i]);
  }
  if (mesh.skeleton) {
    WriteMeshSkeleton(out, *mesh.skeleton);
  } else if (!mesh.influences.empty()) {
    WriteInfluences(out, mesh.influences);
  }
  if (!mesh.attachmentPoints.empty()) WriteAttachments(out, mesh.attachmentPoints);
}

bool WriteIndexedMeshFile(ExIndexedMesh& mesh, const std::string& fileName, bool optimise,
                          bool& askOverwrite, bool& forceOverwrite, ExportUserInterface& ui) {
  binofstream out(fileName);
  if (out)
    WriteIndexedMesh(out, mesh, std::string(FolderPart(fileName)), optimise, askOverwrite,
                     forceOverwrite, ui);
  return CommitOrReport(out, ui);
}

}  // namespace orv
