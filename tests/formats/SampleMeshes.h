#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

#include "FileBytes.h"
#include "RecordingUserInterface.h"
#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv {

inline IndexedMesh::Chunk TriangleChunk(const std::string& materialName = "rail.m.onetex") {
  IndexedMesh::Chunk chunk;
  chunk.material.name = materialName;
  chunk.surfaceArea = 0.5f;
  chunk.vertices = {{0, 0, 0, 0, 1}, {1, 0, 0, 1, 1}, {0, 1, 0, 0, 0}};
  chunk.triangles = {{0, 1, 2}};
  chunk.normals = {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}};
  chunk.faceNormals = {{0, 0, 1}};
  return chunk;
}

inline std::unique_ptr<ExGenericSkeleton::Node> Bone(const std::string& name, Vec3 position = {},
                                                     Quaternion rotation = {}) {
  return std::make_unique<ExGenericSkeleton::Node>(name, position, rotation);
}

inline void AddInfluence(GenericMeshInfluence& influence, const std::string& name,
                         std::vector<VertexWeight> weights, const std::string& parentName = "") {
  auto bone = std::make_unique<GenericBoneInfluence>(
      name, parentName, Vec3{1, 2, 3}, Matrix33{Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}});
  bone->m_weights = std::move(weights);
  influence.AddBone(std::move(bone));
}

inline GenericMeshInfluence& AddChunkInfluence(IndexedMesh& mesh) {
  mesh.influences.push_back(std::make_unique<ExGenericMeshInfluence>());
  return *mesh.influences.back();
}

struct WrittenMesh {
  std::string bytes;
  std::vector<std::string> log;
  std::vector<float> progress;
};

inline WrittenMesh Written(ExIndexedMesh& mesh) {
  RecordingUserInterface ui;
  bool ask = false, force = false;
  WrittenMesh written;
  written.bytes =
      BytesOf([&](std::ostream& out) { WriteIndexedMesh(out, mesh, "", false, ask, force, ui); });
  written.log = ui.log;
  written.progress = ui.progress;
  return written;
}

inline std::string BytesOf(GenericSkeleton& skeleton, const AnimationHeader& header) {
  RecordingUserInterface ui;
  return BytesOf([&](std::ostream& out) { WriteAnimation(out, skeleton, header, ui); });
}

inline IndexedMeshFile ReadBack(ExIndexedMesh& mesh) {
  IndexedMeshFile file;
  ReadProblem problem;
  EXPECT_TRUE(ReadIndexedMesh(Written(mesh).bytes, file, problem)) << problem.Message();
  return file;
}

}  // namespace orv
