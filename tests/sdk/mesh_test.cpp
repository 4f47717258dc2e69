#include "mesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace {

struct Triangle {
  DWORD a, b, c;
  DWORD smGroup;
};

Mesh MakeMesh(const std::vector<Point3>& points, const std::vector<Triangle>& triangles) {
  Mesh mesh;
  mesh.setNumVerts(static_cast<int>(points.size()));
  std::copy(points.begin(), points.end(), mesh.verts);
  mesh.setNumFaces(static_cast<int>(triangles.size()));
  for (size_t i = 0; i < triangles.size(); ++i) {
    mesh.faces[i].setVerts(triangles[i].a, triangles[i].b, triangles[i].c);
    mesh.faces[i].setSmGroup(triangles[i].smGroup);
  }
  return mesh;
}

// `count` triangles around vertex 0, climbing like a tent roof.
Mesh OpenFan(const std::vector<DWORD>& groups) {
  std::vector<Point3> points = {{0, 0, 0}};
  std::vector<Triangle> triangles;
  for (DWORD i = 0; i <= groups.size(); ++i) {
    points.emplace_back(std::cos(static_cast<float>(i)), std::sin(static_cast<float>(i)),
                        0.1f * static_cast<float>(i * i));
    if (i < groups.size()) triangles.push_back({0, i + 1, i + 2, groups[i]});
  }
  return MakeMesh(points, triangles);
}

std::vector<RNormal> NormalsOf(const Mesh& mesh, int vertex) {
  const RVertex& record = mesh.getRVert(vertex);
  const DWORD count = record.rFlags & NORCT_MASK;
  if (count == 1) return {record.rn};
  return {record.ern, record.ern + count};
}

std::vector<DWORD> GroupsOf(const Mesh& mesh, int vertex) {
  std::vector<DWORD> groups;
  for (const RNormal& normal : NormalsOf(mesh, vertex)) groups.push_back(normal.getSmGroup());
  return groups;
}

void ExpectNear(const Point3& actual, const Point3& expected) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], 1e-6) << "component " << i;
}

TEST(MeshNormals, SharedGroupsJoinFaces) {
  const struct {
    std::vector<DWORD> faceGroups;
    std::vector<DWORD> expected;  // groups of the normals at the fan's centre
  } cases[] = {
      {{1, 2}, {1, 2}},
      {{1, 1, 2, 2}, {1, 2}},
      {{1, 2, 3}, {3}},        // the last joins the first two
      {{1, 4, 2, 3}, {3, 4}},  // in the place of the first of them
      {{1, 4, 2, 7, 8}, {7, 8}},
      {{0, 1, 0}, {1}},
      {{0x80000000, 1}, {0x80000000, 1}},
  };
  for (const auto& c : cases) {
    Mesh fan = OpenFan(c.faceGroups);
    fan.buildNormals();
    EXPECT_EQ(GroupsOf(fan, 0), c.expected) << testing::PrintToString(c.faceGroups);
  }
}

TEST(MeshNormals, FaceWithoutAreaCountsForNothing) {
  Mesh mesh = MakeMesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {2, 0, 0}}, {{0, 1, 2, 1}, {0, 1, 3, 1}});
  mesh.buildNormals();
  ExpectNear(NormalsOf(mesh, 0)[0].getNormal(), {0, 0, 1});
  EXPECT_EQ(mesh.FaceNormal(1, TRUE), Point3(0, 0, 0));
  EXPECT_EQ(mesh.FaceNormal(0), Point3(0, 0, 1));
}

class SpecifiedNormals : public testing::Test {
 protected:
  SpecifiedNormals() : m_mesh(OpenFan({1, 2})) {
    EXPECT_TRUE(m_mesh.specifyNormals(m_counts, m_normals));
  }
  static void ExpectGiven(const Mesh& mesh) {
    EXPECT_EQ(GroupsOf(mesh, 0), (std::vector<DWORD>{1, 2}));
    EXPECT_EQ(NormalsOf(mesh, 0)[1].getNormal(), Point3(0, 1, 0));
    EXPECT_EQ(GroupsOf(mesh, 1), (std::vector<DWORD>{1}));
    EXPECT_TRUE(NormalsOf(mesh, 2).empty());
    EXPECT_EQ(NormalsOf(mesh, 3)[2].getNormal(), Point3(0, 0, -1));
  }

  const std::vector<uint8_t> m_counts = {2, 1, 0, 3};
  const std::vector<RNormal> m_normals = {{{1, 0, 0}, 1},  {{0, 1, 0}, 2},  {{0, 0, 1}, 1},
                                          {{-1, 0, 0}, 1}, {{0, -1, 0}, 2}, {{0, 0, -1}, 4}};
  Mesh m_mesh;
};

TEST_F(SpecifiedNormals, SurviveCopiesAndMoves) {
  Mesh copy(m_mesh);
  m_mesh.getRVert(0).ern[1].setNormal({5, 5, 5});
  m_mesh.verts[0] = {5, 5, 5};
  ExpectGiven(copy);
  EXPECT_EQ(copy.verts[0], Point3(0, 0, 0));

  const Point3* where = copy.verts;
  Mesh moved(std::move(copy));
  moved.buildNormals();
  ExpectGiven(moved);
  EXPECT_EQ(moved.verts, where);
  EXPECT_EQ(moved.getNumFaces(), 2);

  m_mesh = moved;
  ExpectGiven(m_mesh);
}

TEST_F(SpecifiedNormals, AreRefusedWhenTheyDoNotFit) {
  const std::vector<uint8_t> tooFewVertices = {2, 1, 3}, tooManyNormals = {2, 1, 0, 4};
  EXPECT_FALSE(m_mesh.specifyNormals(tooFewVertices, m_normals));
  EXPECT_FALSE(m_mesh.specifyNormals(tooManyNormals, m_normals));
  ExpectGiven(m_mesh);
}

}  // namespace
