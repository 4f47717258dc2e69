#include "formats/IndexedMeshWriter.h"

#include <cassert>

#include "formats/BoneTree.h"
#include "formats/ChunkStream.h"
#include "formats/FileVersions.h"
#include "formats/SideFiles.h"
#include "platform/ExString.h"

namespace orv {

namespace {

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

}  // namespace

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

void WriteMaterial(std::ostream& out, GenericMaterial& material, bool useDefaultColors,
                   const std::string& folder, const MeshWriteSettings& settings,
                   ExportUserInterface& ui) {
  ChunkScope matl(out, "MATL", kMaterialVersion);
  WriteString(out, ComposeMaterialName(material, material.name, settings.allowBillboards, ui));
  WriteProperties(out, material);
  WriteU32(out, material.twoSided);
  WriteF32(out, material.opacity);
  WriteColours(out, material, useDefaultColors);
  const bool hasOpacityMap =
      WriteTextureSideFiles(material, folder, ui, settings.askOverwrite, settings.forceOverwrite);
  WriteMaps(out, material, hasOpacityMap);
}

void WriteGeometry(std::ostream& out, const IndexedMesh::Chunk& chunk, uint32_t maxInfluences) {
  const auto vertexCount = static_cast<uint32_t>(chunk.vertices.size());
  const auto triangleCount = static_cast<uint32_t>(chunk.triangles.size());
  // Without vertices too: the flag is then set, and no tangent follows.
  const bool hasTangents = chunk.material.name.find(".tbump") != std::string::npos &&
                           chunk.tangents.size() == vertexCount;
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

void WriteNeighbours(std::ostream& out, const IndexedMesh::Chunk& chunk) {
  assert(chunk.neighbours.size() >= chunk.triangles.size());
  const std::span<const std::array<uint32_t, 3>> neighbours(chunk.neighbours);
  ChunkScope ninf(out, "NINF", kNeighboursVersion);
  WriteRecords<uint32_t>(out, neighbours.first(chunk.triangles.size()));
}

void WriteMeshSkeleton(std::ostream& out, GenericSkeleton& skeleton) {
  skeleton.SetFrame(0);
  ChunkScope skel(out, "SKEL", kSkeletonVersion);
  WriteBoneTree(out, *skeleton.m_root, WriteRelativePose);
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

void WriteIndexedMesh(std::ostream& out, ExIndexedMesh& mesh, const std::string& folder,
                      const MeshWriteSettings& settings, ExportUserInterface& ui) {
  RootScope root(out, "IDXM");
  const MeshStatistics statistics = ComputeStatistics(mesh);
  WriteMeshInfo(out, mesh, statistics);
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    ui.ReportProgress(i, mesh.chunks.size());
    mesh.PrepareChunk(i, settings.optimise);
    IndexedMesh::Chunk& chunk = mesh.chunks[i];
    ChunkScope chnk(out, "CHNK", kChunkVersion);
    WriteU32(out, static_cast<uint32_t>(i));
    WriteMaterial(out, chunk.material, mesh.m_useDefaultColors, folder, settings, ui);
    WriteGeometry(out, chunk, statistics.maxInfluencesOfChunk[i]);
  }
  if (mesh.skeleton) {
    WriteMeshSkeleton(out, *mesh.skeleton);
  } else if (!mesh.influences.empty()) {
    WriteInfluences(out, mesh.influences);
  }
  if (!mesh.attachmentPoints.empty()) WriteAttachments(out, mesh.attachmentPoints);
}

bool WriteIndexedMeshFile(ExIndexedMesh& mesh, const std::string& fileName,
                          const MeshWriteSettings& settings, ExportUserInterface& ui) {
  binofstream out(fileName);
  if (out) WriteIndexedMesh(out, mesh, std::string(FolderPart(fileName)), settings, ui);
  return CommitOrReport(out, ui);
}

}  // namespace orv
