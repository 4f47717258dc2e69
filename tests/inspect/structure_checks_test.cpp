#include <cmath>

#include "inspect/GoodFiles.h"

namespace orv::inspect {
namespace {

void RepeatTriangle(IndexedMeshFile& file) {
  IndexedMesh::Chunk& chunk = ChunkOf(file);
  chunk.triangles.push_back(chunk.triangles[0]);
  chunk.faceNormals.push_back(chunk.faceNormals[0]);
  chunk.surfaceArea += 0.5f;
  file.chunks[0].indexCount += 3;
  file.chunks[0].triangleCountAgain += 1;
}

TEST(StructureChecks, EachDamageToASkinIsFoundInItsPlace) {
  ExpectFound<IndexedMeshFile>(
      GoodSkinFile,
      {
          {[](auto&) {}, ""},
          {[](auto& f) { f.chunks[1].index = 7; }, "QIRF/CHNK 1 chunk-number"},
          {[](auto& f) { f.chunks[0].indexCount = 4; }, "QIRF/CHNK 0/GEOM count-mismatch"},
          {[](auto& f) { f.chunks[0].triangleCountAgain = 2; }, "QIRF/CHNK 0/GEOM count-mismatch"},
          {[](auto& f) { ChunkOf(f).normals[2].x = INFINITY; }, "QIRF/CHNK 0/GEOM not-finite"},
          {[](auto& f) {
             GenericMaterial& m = ChunkOf(f).material;
             m.opacity = m.shininess = m.emissive.y = m.maps[0].amount = NAN;
           },
           "QIRF/CHNK 0/MATL not-finite"},
          {[](auto& f) { WeightsOf(f, 0)[2].offset.z = NAN; }, "QIRF/INFL not-finite"},
          {[](auto& f) { ChunkOf(f).normals[1].z = 0.5f; }, "QIRF/CHNK 0/GEOM normal-not-unit"},
          {[](auto& f) { ChunkOf(f, 1).tangents[1] = {}; }, "QIRF/CHNK 1/GEOM tangent-not-unit"},
          {[](auto& f) { ChunkOf(f).faceNormals[0].z = 2; }, "QIRF/CHNK 0/GEOM face-normal-wrong"},
          {[](auto& f) { ChunkOf(f).faceNormals[0].z = -1; }, "QIRF/CHNK 0/GEOM face-normal-wrong"},
          {[](auto& f) { ChunkOf(f, 1).tangents.clear(); }, "QIRF/CHNK 1/GEOM tangents-missing"},
          {[](auto& f) { ChunkOf(f).tangents.assign(3, Vec3{1}); },
           "QIRF/CHNK 0/GEOM tangents-unexpected"},
          {[](auto& f) { ChunkOf(f).surfaceArea = 0.51f; }, "QIRF/CHNK 0/GEOM area-mismatch"},
          {[](auto& f) { f.boundingBox->maximum.x = 0.5f; }, "QIRF/INFO box-too-small"},
          {[](auto& f) { f.boundingBox->minimum.z = -1; }, "QIRF/INFO box-too-large"},
          {[](auto& f) { f.chunks[0].maxInfluencesPerVertex = 1; },
           "QIRF/CHNK 0/GEOM maximum-too-small"},
          {[](auto& f) { f.chunks[0].maxInfluencesPerVertex = 3; },
           "QIRF/CHNK 0/GEOM maximum-too-large"},
          {[](auto& f) { f.maxInfluencesPerVertex = 1; }, "QIRF/INFO maximum-too-small"},
          {[](auto& f) { f.maxBonesPerChunk = 3; }, "QIRF/INFO maximum-too-large"},
          {[](auto& f) { WeightsOf(f, 1).emplace_back().vertex = 3; }, "QIRF/INFL weight-vertex"},
          {[](auto& f) { f.chunks[0].boneName = "b.arm"; }, "QIRF/CHNK 0/GEOM chunk-bone-missing"},
          {[](auto& f) {
             ChunkOf(f).neighbours.push_back({0x10000, 0x20000, 0});
           },
           "QIRF/CHNK 0/NINF neighbour-range"},
          {[](auto& f) { RepeatTriangle(f); }, ""},  // yet in order
          {[](auto& f) {
             ChunkOf(f).triangles[0] = Triangle{1, 2, 0};
             RepeatTriangle(f);
           },
           "QIRF/CHNK 0/GEOM repeated-triangle"},
          {[](auto& f) {
             ChunkOf(f).triangles[0] = Triangle{1, 2, 0};
           },
           "QIRF/CHNK 0/GEOM index-order"},
      });
}

TEST(StructureChecks, EachDamageToASkeletonIsFoundInItsPlace) {
  ExpectFound<IndexedMeshFile>(
      GoodRigidFile,
      {
          {[](auto&) {}, ""},
          {[](auto& f) { f.bonePoses[1].rotation.w = 2; }, "QIRF/SKEL rotation-not-unit"},
          {[](auto& f) { f.bonePoses[0].position.x = NAN; }, "QIRF/SKEL not-finite"},
          {[](auto& f) { f.bones[1].name = "B.ROOT"; },
           "QIRF/SKEL bone-twice; QIRF/CHNK 0/GEOM chunk-bone-missing"},
          // The weights that a skeleton keeps out of the file are counted all the same.
          {[](auto& f) { f.maxInfluencesPerVertex = f.maxBonesPerChunk = 2; }, ""},
      });
}

// Vertices that no triangle names have lost their places, and with them the box and the maxima what
// they were computed from. Their weights are gathered in the last place.
TEST(StructureChecks, UnusedVerticesExcuseTheStatistics) {
  ExpectFound<IndexedMeshFile>(
      GoodSkinFile, {
                        {[](auto& f) {
                           ChunkOf(f).vertices.push_back(ChunkOf(f).vertices[0]);
                           ChunkOf(f).normals.push_back(ChunkOf(f).normals[0]);
                           f.boundingBox->maximum.z = 4;
                           f.chunks[0].maxInfluencesPerVertex = 9;
                           f.maxInfluencesPerVertex = 9;
                         },
                         "QIRF/CHNK 0/GEOM unused-vertex"},
                        {[](auto& f) {
                           ChunkOf(f, 1).vertices.push_back(ChunkOf(f).vertices[0]);
                           ChunkOf(f, 1).normals.push_back(ChunkOf(f).normals[0]);
                           ChunkOf(f, 1).tangents.push_back(ChunkOf(f, 1).tangents[0]);
                           f.mesh.influences[1]->m_bones[0]->m_weights.push_back({3, 1, {}});
                           AddInfluence(*f.mesh.influences[1], "b.toe", {{3, 1, {}}});
                           f.maxInfluencesPerVertex = 2;
                           f.chunks[1].maxInfluencesPerVertex = 1;
                         },
                         "QIRF/CHNK 1/GEOM unused-vertex"},
                        {[](auto& f) {
                           ChunkOf(f).vertices.resize(0x10001);
                           ChunkOf(f).normals.resize(0x10001, {0, 0, 1});
                         },
                         "QIRF/CHNK 0/GEOM too-many-vertices; QIRF/CHNK 0/GEOM unused-vertex; "
                         "QIRF/CHNK 0/GEOM chunk-too-large"},
                    });
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
            Lines({"4 bytes follow the last chunk (at byte " + std::to_string(bytes.size()) +
                   ") [bytes-left-over]"}));

  bytes[bytes.rfind("ATCH") + 8] = 9;
  const Lines lines = LinesOfBytes(bytes);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[0].starts_with("QIRF/ATCH: version 9 is unknown (at byte ")) << lines[0];

  mesh.chunks[0].material.maps.assign(2, {.channel = kOpacity, .fileName = "a.texture"});
  EXPECT_EQ(
      LinesOfBytes(Written(mesh).bytes),
      Lines({"QIRF/CHNK 0/MATL: map count 1, but one less follows (at byte 204) [map-count]"}));
}

}  // namespace
}  // namespace orv::inspect
