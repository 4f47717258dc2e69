#pragma once

#include <cmath>
#include <string>

#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"
#include "inspect/Findings.h"
#include "inspect/MeshFacts.h"

namespace orv::inspect {

// What can be said of a file by itself; each adds what it finds.
void CheckStructure(const IndexedMeshFile& file, Findings& findings);
void CheckStructure(const AnimationFile& file, Findings& findings);
void CheckContent(const IndexedMeshFile& file, Findings& findings);
void CheckContent(const AnimationFile& file, Findings& findings);

// Whether the side files of the textures stand in the folder, and the pictures that they name.
// folder: with its trailing separator, or "" for the current one.
void CheckTextures(const IndexedMesh& mesh, const std::string& folder, Findings& findings);

// Whether mesh and animation are about the same bones. Nothing is found of a mesh without bones
// beside an animation with frames but the one thing that it does not move.
void CheckBones(const IndexedMeshFile& mesh, const AnimationFile& animation,
                const std::string& animationName, Findings& findings);

// The parts of CheckStructure and CheckContent that are about one chunk's geometry, and the skin.
void CheckGeometry(const IndexedMeshFile& file, size_t number, const VertexUse& use,
                   Findings& findings);
void CheckWeightStructure(const IndexedMeshFile& file, const std::vector<VertexUse>& uses,
                          const std::vector<ChunkWeights>& weights, Findings& findings);
void CheckWeightContent(const IndexedMeshFile& file, Findings& findings);

inline constexpr float kUnitTolerance = 1e-3f;

// The tests that run over every number of a file.
inline bool IsUnit(Vec3 v) { return std::abs(Dot(v, v) - 1) <= 2 * kUnitTolerance; }
inline bool IsUnit(Quaternion q) { return std::abs(Length(q) - 1) <= kUnitTolerance; }
inline bool IsFinite(const Matrix33& m) {
  return IsFinite(m[0]) && IsFinite(m[1]) && IsFinite(m[2]);
}
inline bool IsFinite(const IndexedVertex& v) {
  return IsFinite(v.Position()) && std::isfinite(v.u) && std::isfinite(v.v);
}
inline bool IsFinite(const BonePose& pose) {
  const Quaternion& q = pose.rotation;
  return IsFinite(pose.position) && IsFinite(Vec3{q.x, q.y, q.z}) && std::isfinite(q.w);
}

Place PlaceInChunk(const IndexedMeshFile& file, size_t chunk, const char* tag);
Place PlaceOfWeights(const IndexedMeshFile& file, size_t chunk);
void CheckRemarks(const std::vector<ReadProblem>& remarks, Findings& findings);
void CheckBoneNames(const std::vector<BoneNode>& bones, Findings& findings);

}  // namespace orv::inspect
