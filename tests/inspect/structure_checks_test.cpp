#include <cmath>

#include "inspect/GoodFiles.h"

namespace orv::inspect {
namespace {

using MeshCase = DamageCase<IndexedMeshFile>;

TEST(StructureChecks, GoodFilesAreFoundGood) {
  EXPECT_EQ(LinesAfter<IndexedMeshFile>(GoodSkinFile(), [](auto&) {}), Lines());
  EXPECT_EQ(LinesAfter<IndexedMeshFile>(GoodRigidFile(), [](auto&) {}), Lines());
}

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
      {[](auto& f) { f.chunks[1].index = 7; },
       {"QIRF/CHNK 1 (hide m.onetex.tbump): the chunk calls itself number 7 [chunk-number]"}},
      {[](auto& f) { f.chunks[0].indexCount = 4; },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the index count is 4 for 1 triangle [count-mismatch]"}},
      {[](auto& f) { f.chunks[0].triangleCountAgain = 2; },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the second triangle count is 2, the first 1 "
        "[count-mismatch]"}},
      {[](auto& f) {
         f.mesh.chunks[0].normals[1].y = NAN;
         f.mesh.chunks[0].normals[2].x = INFINITY;
       },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the normal of vertex 1 is not a finite number (2 such) "
        "[not-finite]"}},
      {[](auto& f) { f.mesh.chunks[0].vertices[2].v = NAN; },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the position or texture coordinate of vertex 2 is not a "
        "finite number [not-finite]"}},
      {[](auto& f) {
         f.mesh.chunks[1].tangents[0].x = NAN;
         f.mesh.chunks[1].faceNormals[0].x = NAN;
         f.mesh.chunks[1].surfaceArea = NAN;
       },
       {"QIRF/CHNK 1/GEOM (hide m.onetex.tbump): the tangent of vertex 0 is not a finite number "
        "(3 such) [not-finite]"}},
      {[](auto& f) {
         GenericMaterial& m = f.mesh.chunks[0].material;
         m.opacity = m.shininess = m.emissive.y = m.maps[0].amount = NAN;
       },
       {"QIRF/CHNK 0/MATL (skin m.onetex): the opacity is not a finite number (4 such) "
        "[not-finite]"}},
      {[](auto& f) { f.mesh.attachmentPoints[0].rotation[2].z = NAN; },
       {"QIRF/ATCH: the place of the attachment point hatch is not a finite number [not-finite]"}},
      {[](auto& f) { f.mesh.influences[0]->m_bones[0]->m_weights[2].offset.z = NAN; },
       {"QIRF/INFL, chunk 0 (skin m.onetex): the weight or offset of vertex 2 in bone b.hip is not "
        "a finite number [not-finite]"}},
      {[](auto& f) { f.mesh.influences[0]->m_bones[1]->m_rotation[0].x = NAN; },
       {"QIRF/INFL: the place of bone b.knee is not a finite number [not-finite]"}},
      {[](auto& f) {
         f.mesh.chunks[0].normals[1] = {0, 0, 0.5f};
       },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the normal of vertex 1 is 0.5 long instead of 1 "
        "[normal-not-unit]"}},
      {[](auto& f) { f.mesh.chunks[1].tangents[1] = {}; },
       {"QIRF/CHNK 1/GEOM (hide m.onetex.tbump): the tangent of vertex 1 is 0 long instead of 1 "
        "[tangent-not-unit]"}},
      {[](auto& f) {
         f.mesh.chunks[0].faceNormals[0] = {0, 0, 2};
       },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the face normal of triangle 0 is 2 long instead of 1 "
        "[face-normal-wrong]"}},
      {[](auto& f) {
         f.mesh.chunks[0].faceNormals[0] = {0, 0, -1};
       },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the face normal of triangle 0 does not stand upright on "
        "it [face-normal-wrong]"}},
      {[](auto& f) { f.mesh.chunks[1].tangents.clear(); },
       {"QIRF/CHNK 1/GEOM (hide m.onetex.tbump): the material asks for tangents, but there are "
        "none [tangents-missing]"}},
      {[](auto& f) {
         f.mesh.chunks[0].tangents.assign(3, Vec3{1, 0, 0});
       },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): there are tangents, but the material does not ask for "
        "them [tangents-unexpected]"}},
      {[](auto& f) { f.mesh.chunks[0].surfaceArea = 0.51f; },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the surface area is given as 0.51 m2, that of the "
        "triangles is 0.5 m2 [area-mismatch]"}},
      {[](auto& f) { f.boundingBox->maximum.x = 0.5f; },
       {"QIRF/INFO: the bounding box does not hold all vertices [box-too-small]"}},
      {[](auto& f) { f.boundingBox->minimum.x = NAN; },
       {"QIRF/INFO: the bounding box does not hold all vertices [box-too-small]"}},
      {[](auto& f) { f.boundingBox->minimum.z = -1; },
       {"QIRF/INFO: the bounding box is larger than the model [box-too-large]"}},
      {[](auto& f) { f.chunks[0].maxInfluencesPerVertex = 1; },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the most bones of any vertex is given as 1, but it is 2 "
        "[maximum-too-small]"}},
      {[](auto& f) { f.chunks[0].maxInfluencesPerVertex = 3; },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the most bones of any vertex is given as 3, but it is 2 "
        "[maximum-too-large]"}},
      {[](auto& f) { f.maxInfluencesPerVertex = 1; },
       {"QIRF/INFO: the most bones of any vertex is given as 1, but it is 2 [maximum-too-small]"}},
      {[](auto& f) { f.maxBonesPerChunk = 1; },
       {"QIRF/INFO: the most bones of any chunk is given as 1, but it is 2 [maximum-too-small]"}},
      {[](auto& f) { f.maxBonesPerChunk = 3; },
       {"QIRF/INFO: the most bones of any chunk is given as 3, but it is 2 [maximum-too-large]"}},
      {[](auto& f) {
         f.mesh.influences[0]->m_bones[1]->m_weights.push_back({0xFFFFFFFF, 0, {}});
         f.mesh.influences[0]->m_bones[1]->m_weights.push_back({3, 0, {}});
       },
       {"QIRF/INFL, chunk 0 (skin m.onetex): bone b.knee has a weight for vertex -1 of 3 (2 such) "
        "[weight-vertex]"}},
      {[](auto& f) { f.chunks[0].boneName = "b.arm"; },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the chunk is bound to the bone b.arm, which is not in "
        "the file [chunk-bone-missing]"}},
      {[](auto& f) {
         f.mesh.chunks[0].neighbours = {{0x10000, 0x20000, 0xFFFFFFFF}};
       },
       {"QIRF/CHNK 0/NINF (skin m.onetex): a neighbour of triangle 0 is in chunk 2, which is not "
        "there [neighbour-range]"}},
      {[](auto& f) {
         AddTriangle(f, {0, 1, 2});
       },
       {}},  // repeated, yet in order
      {[](auto& f) {
         f.mesh.chunks[0].triangles = {{1, 2, 0}};
         AddTriangle(f, {1, 2, 0});
       },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): a triangle is there twice, so the chunk has kept the "
        "scene's order and is slow to draw [repeated-triangle]"}},
      {[](auto& f) {
         f.mesh.chunks[0].triangles = {{1, 2, 0}};
       },
       {"QIRF/CHNK 0/GEOM (skin m.onetex): the vertices are not in the order in which the "
        "triangles use them, so the chunk is slow to draw [index-order]"}},
  };
  for (const MeshCase& c : cases) EXPECT_EQ(LinesAfter(GoodSkinFile(), c.damage), c.lines);
}

TEST(StructureChecks, EachDamageToASkeletonIsFoundInItsPlace) {
  const MeshCase cases[] = {
      {[](auto& f) {
         f.bonePoses[1].rotation = {0, 0, 0, 2};
       },
       {"QIRF/SKEL: the rotation of bone b.arm is 2 long instead of 1 [rotation-not-unit]"}},
      {[](auto& f) { f.bonePoses[0].position.x = NAN; },
       {"QIRF/SKEL: the place of bone b.root is not a finite number [not-finite]"}},
      {[](auto& f) {
         f.bones.push_back({"B.ROOT", 0}), f.bonePoses.emplace_back();
       },
       {"QIRF/SKEL: two bones are called B.ROOT [bone-twice]"}},
      {[](auto& f) { f.bones[1].name = "b.leg"; },
       {"QIRF/CHNK 0/GEOM (steel m.notex): the chunk is bound to the bone b.arm, which is not in "
        "the file [chunk-bone-missing]"}},
      // The weights that a skeleton keeps out of the file are counted all the same.
      {[](auto& f) { f.maxInfluencesPerVertex = f.maxBonesPerChunk = 2; }, {}},
  };
  for (const MeshCase& c : cases) EXPECT_EQ(LinesAfter(GoodRigidFile(), c.damage), c.lines);
}

// Vertices that no triangle names have lost their places, and with them the box and the maxima what
// they were computed from.
TEST(StructureChecks, UnusedVerticesExcuseLargeStatistics) {
  const auto addUnused = [](IndexedMeshFile& f) {
    f.mesh.chunks[0].vertices.push_back(f.mesh.chunks[0].vertices[0]);
    f.mesh.chunks[0].normals.push_back({0, 0, 1});
    f.boundingBox->maximum.z = 4;
    f.chunks[0].maxInfluencesPerVertex = 9;
    *f.maxInfluencesPerVertex = 9;
  };
  EXPECT_EQ(LinesAfter<IndexedMeshFile>(GoodSkinFile(), addUnused),
            Lines({"QIRF/CHNK 0/GEOM (skin m.onetex): 1 vertex belongs to no triangle "
                   "[unused-vertex]"}));
}

// The weights of all unused vertices are gathered in the last place, which may be more than any
// maximum.
TEST(StructureChecks, WeightsOfUnusedVerticesDoNotRaiseTheMaxima) {
  const auto addUnused = [](IndexedMeshFile& f) {
    f.mesh.chunks[1].vertices.push_back(f.mesh.chunks[1].vertices[0]);
    f.mesh.chunks[1].normals.push_back({0, 0, 1});
    f.mesh.chunks[1].tangents.push_back({1, 0, 0});
    f.mesh.influences[1]->m_bones[0]->m_weights.push_back({3, 1, {}});
    AddInfluence(*f.mesh.influences[1], "b.toe", {{3, 1, {}}});
    f.maxInfluencesPerVertex = 2;
    f.chunks[1].maxInfluencesPerVertex = 1;
  };
  EXPECT_EQ(LinesAfter<IndexedMeshFile>(GoodSkinFile(), addUnused),
            Lines({"QIRF/CHNK 1/GEOM (hide m.onetex.tbump): 1 vertex belongs to no triangle "
                   "[unused-vertex]"}));
}

TEST(StructureChecks, MoreVerticesThanIndicesCanNameAreAnError) {
  const auto grow = [](IndexedMeshFile& f) {
    IndexedMesh::Chunk& chunk = f.mesh.chunks[0];
    chunk.vertices.resize(0x10001);
    chunk.normals.resize(0x10001, {0, 0, 1});
  };
  const Lines lines = LinesAfter<IndexedMeshFile>(GoodSkinFile(), grow);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0],
            "QIRF/CHNK 0/GEOM (skin m.onetex): 65537 vertices are more than 16-bit "
            "indices can name [too-many-vertices]");
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
