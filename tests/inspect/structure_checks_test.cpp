#include <cmath>

#include "inspect/GoodFiles.h"

namespace orv::inspect {
namespace {

using MeshCase = DamageCase<IndexedMeshFile>;

// A second triangle beside the first, of the same size.
void AddTriangle(IndexedMeshFile& file, const Triangle& triangle) {
  IndexedMesh::Chunk& chunk = file.mesh.chunks[0];
  chunk.triangles.push_back(triangle);
  chunk.faceNormals.push_back({0, 0, 1});
  chunk.surfaceArea += 0.5f;
  file.chunks[0].indexCount += 3;
  file.chunks[0].triangleCountAgain += 1;
}

TEST(StructureChecks, EachDamageToASkinIsFoundInItsPlace) {
  const MeshCase cases[] = {
      {[](auto&) {}, ""},
      {[](auto& f) { f.chunks[1].index = 7; }, "QIRF/CHNK 1 chunk-number"},
      {[](auto& f) { f.chunks[0].indexCount = 4; }, "QIRF/CHNK 0/GEOM count-mismatch"},
      {[](auto& f) { f.chunks[0].triangleCountAgain = 2; }, "QIRF/CHNK 0/GEOM count-mismatch"},
      {[](auto& f) {
         f.mesh.chunks[0].normals[1].y = NAN;
         f.mesh.chunks[0].normals[2].x = INFINITY;
       },
       "QIRF/CHNK 0/GEOM not-finite"},
      {[](auto& f) {
         GenericMaterial& m = f.mesh.chunks[0].material;
         m.opacity = m.shininess = m.emissive.y = m.maps[0].amount = NAN;
       },
       "QIRF/CHNK 0/MATL not-finite"},
      {[](auto& f) { f.mesh.influences[0]->m_bones[0]->m_weights[2].offset.z = NAN; },
       "QIRF/INFL not-finite"},
      {[](auto& f) {
         f.mesh.chunks[0].normals[1] = {0, 0, 0.5f};
       },
       "QIRF/CHNK 0/GEOM normal-not-unit"},
      {[](auto& f) { f.mesh.chunks[1].tangents[1] = {}; }, "QIRF/CHNK 1/GEOM tangent-not-unit"},
      {[](auto& f) {
         f.mesh.chunks[0].faceNormals[0] = {0, 0, 2};
       },
       "QIRF/CHNK 0/GEOM face-normal-wrong"},
      {[](auto& f) {
         f.mesh.chunks[0].faceNormals[0] = {0, 0, -1};
       },
       "QIRF/CHNK 0/GEOM face-normal-wrong"},
      {[](auto& f) { f.mesh.chunks[1].tangents.clear(); }, "QIRF/CHNK 1/GEOM tangents-missing"},
      {[](auto& f) {
         f.mesh.chunks[0].tangents.assign(3, Vec3{1, 0, 0});
       },
       "QIRF/CHNK 0/GEOM tangents-unexpected"},
      {[](auto& f) { f.mesh.chunks[0].surfaceArea = 0.51f; }, "QIRF/CHNK 0/GEOM area-mismatch"},
      {[](auto& f) { f.boundingBox->maximum.x = 0.5f; }, "QIRF/INFO box-too-small"},
      {[](auto& f) { f.boundingBox->minimum.z = -1; }, "QIRF/INFO box-too-large"},
      {[](auto& f) { f.chunks[0].maxInfluencesPerVertex = 1; },
       "QIRF/CHNK 0/GEOM maximum-too-small"},
      {[](auto& f) { f.chunks[0].maxInfluencesPerVertex = 3; },
       "QIRF/CHNK 0/GEOM maximum-too-large"},
      {[](auto& f) { f.maxInfluencesPerVertex = 1; }, "QIRF/INFO maximum-too-small"},
      {[](auto& f) { f.maxBonesPerChunk = 3; }, "QIRF/INFO maximum-too-large"},
      {[](auto& f) {
         f.mesh.influences[0]->m_bones[1]->m_weights.push_back({0xFFFFFFFF, 0, {}});
         f.mesh.influences[0]->m_bones[1]->m_weights.push_back({3, 0, {}});
       },
       "QIRF/INFL weight-vertex"},
      {[](auto& f) { f.chunks[0].boneName = "b.arm"; }, "QIRF/CHNK 0/GEOM chunk-bone-missing"},
      {[](auto& f) {
         f.mesh.chunks[0].neighbours = {{0x10000, 0x20000, 0xFFFFFFFF}};
       },
       "QIRF/CHNK 0/NINF neighbour-range"},
      {[](auto& f) {
         AddTriangle(f, {0, 1, 2});
       },
       ""},  // repeated, yet in order
      {[](auto& f) {
         f.mesh.chunks[0].triangles = {{1, 2, 0}};
         AddTriangle(f, {1, 2, 0});
       },
       "QIRF/CHNK 0/GEOM repeated-triangle"},
      {[](auto& f) {
         f.mesh.chunks[0].triangles = {{1, 2, 0}};
       },
       "QIRF/CHNK 0/GEOM index-order"},
  };
  for (const MeshCase& c : cases) EXPECT_EQ(CodesAfter(GoodSkinFile(), c.damage), c.codes);
}

TEST(StructureChecks, EachDamageToASkeletonIsFoundInItsPlace) {
  const MeshCase cases[] = {
      {[](auto&) {}, ""},
      {[](auto& f) {
         f.bonePoses[1].rotation = {0, 0, 0, 2};
       },
       "QIRF/SKEL rotation-not-unit"},
      {[](auto& f) { f.bonePoses[0].position.x = NAN; }, "QIRF/SKEL not-finite"},
      {[](auto& f) {
         f.bones.push_back({"B.ROOT", 0}), f.bonePoses.emplace_back();
       },
       "QIRF/SKEL bone-twice"},
      // The weights that a skeleton keeps out of the file are counted all the same.
      {[](auto& f) { f.maxInfluencesPerVertex = f.maxBonesPerChunk = 2; }, ""},
  };
  for (const MeshCase& c : cases) EXPECT_EQ(CodesAfter(GoodRigidFile(), c.damage), c.codes);
}

// Vertices that no triangle names have lost their places, and with them the box and the maxima what
// they were computed from. Their weights are gathered in the last place.
TEST(StructureChecks, UnusedVerticesExcuseTheStatistics) {
  const auto addUnused = [](IndexedMeshFile& f) {
    f.mesh.chunks[0].vertices.push_back(f.mesh.chunks[0].vertices[0]);
    f.mesh.chunks[0].normals.push_back({0, 0, 1});
    f.boundingBox->maximum.z = 4;
    f.chunks[0].maxInfluencesPerVertex = 9;
    *f.maxInfluencesPerVertex = 9;
  };
  EXPECT_EQ(CodesAfter<IndexedMeshFile>(GoodSkinFile(), addUnused),
            "QIRF/CHNK 0/GEOM unused-vertex");
  const auto addWeighted = [](IndexedMeshFile& f) {
    f.mesh.chunks[1].vertices.push_back(f.mesh.chunks[1].vertices[0]);
    f.mesh.chunks[1].normals.push_back({0, 0, 1});
    f.mesh.chunks[1].tangents.push_back({1, 0, 0});
    f.mesh.influences[1]->m_bones[0]->m_weights.push_back({3, 1, {}});
    AddInfluence(*f.mesh.influences[1], "b.toe", {{3, 1, {}}});
    f.maxInfluencesPerVertex = 2;
    f.chunks[1].maxInfluencesPerVertex = 1;
  };
  EXPECT_EQ(CodesAfter<IndexedMeshFile>(GoodSkinFile(), addWeighted),
            "QIRF/CHNK 1/GEOM unused-vertex");
  const auto grow = [](IndexedMeshFile& f) {
    f.mesh.chunks[0].vertices.resize(0x10001);
    f.mesh.chunks[0].normals.resize(0x10001, {0, 0, 1});
  };
  EXPECT_TRUE(CodesAfter<IndexedMeshFile>(GoodSkinFile(), grow)
                  .starts_with("QIRF/CHNK 0/GEOM too-many-vertices"));
}

Lines LinesOfBytes(const std::string& bytes) {
  IndexedMeshFile file;
  ReadProblem problem;
  EXPECT_TRUE(ReadIndexedMesh(bytes, file, problem)) << problem.Message();
  Findings findings;
  CheckStructure(file, findings);
  return LinesOf(findings);
}

TEST(StructureChecks, WhatTheReaderRemarksIsFound) {
  ExIndexedMesh mesh = GoodSkin();
  std::string bytes = Written(mesh).bytes;
  EXPECT_EQ(LinesOfBytes(bytes + "abcd"),
            Lines({"4 bytes follow the last chunk [bytes-left-over]"}));

  bytes[bytes.rfind("ATCH") + 8] = 9;
  const Lines lines = LinesOfBytes(bytes);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0], "QIRF/ATCH: version 9 is unknown [unknown-part]");

  mesh.chunks[0].material.maps.assign(2, {.channel = kOpacity, .fileName = "a.texture"});
  EXPECT_EQ(LinesOfBytes(Written(mesh).bytes),
            Lines({"QIRF/CHNK 0/MATL: map count 1, but one less follows [map-count]"}));
}

}  // namespace
}  // namespace orv::inspect
