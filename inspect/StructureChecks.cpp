#include <cmath>
#include <unordered_set>

#include "inspect/Checks.h"
#include "inspect/Text.h"
#include "platform/ExString.h"

namespace orv::inspect {

namespace {

constexpr size_t kMaxVertices = 0x10000;  // that 16 bits can number

void CheckMaterialNumbers(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const GenericMaterial& material = file.mesh.chunks[number].material;
  Tally tally(findings, Code::NotFinite, PlaceInChunk(file, number, "MATL"));
  const auto check = [&](bool finite, const std::string& what) {
    if (!finite) tally.Add([&] { return what + " is not a finite number"; });
  };
  check(std::isfinite(material.opacity), "the opacity");
  check(std::isfinite(material.shininess), "the shininess");
  const Vec3 colours[] = {material.ambient, material.diffuse, material.specular, material.emissive};
  const char* const names[] = {"ambient", "diffuse", "specular", "emissive"};
  for (size_t i = 0; i < 4; ++i) check(IsFinite(colours[i]), names[i] + std::string(" colour"));
  for (const MaterialMap& map : material.maps) {
    check(std::isfinite(map.amount), "the amount of the map " + map.fileName);
  }
}

void CheckCounts(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const MeshChunkInfo& info = file.chunks[number];
  const size_t triangles = file.mesh.chunks[number].triangles.size();
  const size_t vertices = file.mesh.chunks[number].vertices.size();
  Place place = PlaceInChunk(file, number, "GEOM");
  const auto add = [&](Code code, std::string text) {
    findings.push_back({code, place, std::move(text)});
  };
  if (info.index != number) {
    add(Code::ChunkNumber, "the chunk calls itself number " + std::to_string(info.index));
    findings.back().place.path = "QIRF/CHNK " + std::to_string(number);
  }
  if (info.indexCount != 3 * triangles) {
    add(Code::CountMismatch, "the index count is " + std::to_string(info.indexCount) + " for " +
                                 Counted(triangles, "triangle"));
  }
  if (info.triangleCountAgain != triangles) {
    add(Code::CountMismatch, "the second triangle count is " +
                                 std::to_string(info.triangleCountAgain) + ", the first " +
                                 std::to_string(triangles));
  }
  if (vertices > kMaxVertices) {
    add(Code::TooManyVertices,
        std::to_string(vertices) + " vertices are more than 16-bit indices can name");
  }
}

bool Contains(const BoundingBox& outer, const BoundingBox& inner) {
  const Vec3 &a = outer.minimum, &b = outer.maximum, &c = inner.minimum, &d = inner.maximum;
  return a.x <= c.x && a.y <= c.y && a.z <= c.z && b.x >= d.x && b.y >= d.y && b.z >= d.z;
}

// Vertices that no triangle names may have lost their places after the box was computed.
void CheckBox(const IndexedMeshFile& file, bool allVerticesUsed, Findings& findings) {
  if (!file.boundingBox) return;
  const BoundingBox box = ComputeBoundingBox(file.mesh);
  if (!Contains(*file.boundingBox, box)) {
    findings.push_back(
        {Code::BoxTooSmall, {"QIRF/INFO"}, "the bounding box does not hold all vertices"});
  } else if (allVerticesUsed && *file.boundingBox != box) {
    findings.push_back(
        {Code::BoxTooLarge, {"QIRF/INFO"}, "the bounding box is larger than the model"});
  }
}

void CheckSkeleton(const IndexedMeshFile& file, Findings& findings) {
  Tally nonFinite(findings, Code::NotFinite, {"QIRF/SKEL"});
  Tally notUnit(findings, Code::RotationNotUnit, {"QIRF/SKEL"});
  for (size_t i = 0; i < file.bones.size(); ++i) {
    const BonePose& pose = file.bonePoses[i];
    const std::string& name = file.bones[i].name;
    if (!IsFinite(pose)) {
      nonFinite.Add([&] { return "the place of bone " + name + " is not a finite number"; });
    } else if (!IsUnit(pose.rotation)) {
      notUnit.Add([&] {
        return "the rotation of bone " + name + " is " + Number(Length(pose.rotation)) +
               " long instead of 1";
      });
    }
  }
}

void CheckChunkBones(const IndexedMeshFile& file, Findings& findings) {
  std::unordered_set<std::string> names;
  for (const BoneNode& bone : file.bones) names.insert(LowerCase(bone.name));
  for (size_t i = 0; i < file.chunks.size(); ++i) {
    const std::string& bone = file.chunks[i].boneName;
    if (bone.empty() || names.contains(LowerCase(bone))) continue;
    findings.push_back({Code::ChunkBoneMissing, PlaceInChunk(file, i, "GEOM"),
                        "the chunk is bound to the bone " + bone + ", which is not in the file"});
  }
}

void CheckAttachmentNumbers(const IndexedMesh& mesh, Findings& findings) {
  Tally tally(findings, Code::NotFinite, {"QIRF/ATCH"});
  for (const AttachmentPoint& point : mesh.attachmentPoints) {
    if (IsFinite(point.position) && IsFinite(point.rotation)) continue;
    tally.Add([&] {
      return "the place of the attachment point " + point.name + " is not a finite number";
    });
  }
}

}  // namespace

Place PlaceInChunk(const IndexedMeshFile& file, size_t chunk, const char* tag) {
  return {"QIRF/CHNK " + std::to_string(chunk) + "/" + tag, static_cast<int64_t>(chunk),
          file.mesh.chunks[chunk].material.name};
}

Place PlaceOfWeights(const IndexedMeshFile& file, size_t chunk) {
  return {"QIRF/INFL", static_cast<int64_t>(chunk), file.mesh.chunks[chunk].material.name};
}

void CheckRemarks(const std::vector<ReadProblem>& remarks, Findings& findings) {
  for (const ReadProblem& remark : remarks) {
    Code code = Code::BytesLeftOver;
    if (remark.fault == ReadFault::Version) code = Code::UnknownPart;
    if (remark.fault == ReadFault::Count) code = Code::MapCount;
    findings.push_back({code, {remark.path}, remark.TextWithOffset()});
  }
}

void CheckBoneNames(const std::vector<BoneNode>& bones, Findings& findings) {
  Tally tally(findings, Code::BoneTwice, {"QIRF/SKEL"});
  std::unordered_set<std::string> names;
  for (const BoneNode& bone : bones) {
    if (names.insert(LowerCase(bone.name)).second) continue;
    tally.Add([&] { return "two bones are called " + bone.name; });
  }
}

void CheckStructure(const IndexedMeshFile& file, Findings& findings) {
  CheckRemarks(file.remarks, findings);
  std::vector<VertexUse> uses;
  bool allVerticesUsed = true;
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    uses.push_back(FindVertexUse(file.mesh.chunks[i]));
    allVerticesUsed &= uses.back().unused == 0;
    CheckCounts(file, i, findings);
    CheckMaterialNumbers(file, i, findings);
    CheckGeometry(file, i, uses.back(), findings);
  }
  CheckBox(file, allVerticesUsed, findings);
  CheckWeightStructure(file, uses, GatherWeights(file.mesh), findings);
  CheckSkeleton(file, findings);
  CheckBoneNames(file.bones, findings);
  CheckChunkBones(file, findings);
  CheckAttachmentNumbers(file.mesh, findings);
}

}  // namespace orv::inspect
