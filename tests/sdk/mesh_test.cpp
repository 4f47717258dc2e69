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
  EXPECT_EQ(NormalsOf(mesh, 0)[0].getNormal(), Point3(0, 0, 1));
  EXPECT_EQ(mesh.FaceNormal(1, TRUE), Point3(0, 0, 0));
  EXPECT_EQ(mesh.FaceNormal(0), Point3(0, 0, 1));
}

TEST(SpecifiedNormals, SurviveCopiesAndAreRefusedWhenTheyDoNotFit) {
  Mesh mesh = OpenFan({1, 2});
  const std::vector<RNormal> normals = {{{1, 0, 0}, 1},  {{0, 1, 0}, 2},  {{0, 0, 1}, 1},
                                        {{-1, 0, 0}, 1}, {{0, -1, 0}, 2}, {{0, 0, -1}, 4}};
  const auto specify = [&](const std::vector<uint8_t>& counts) {
    return mesh.specifyNormals(counts, normals);
  };
  EXPECT_TRUE(specify({2, 1, 0, 3}));
  EXPECT_FALSE(specify({2, 1, 3}));
  EXPECT_FALSE(specify({2, 1, 0, 4}));
  Mesh copy(mesh);
  mesh.getRVert(0).ern[1].setNormal({5, 5, 5});
  mesh.verts[0] = {5, 5, 5};
  Mesh moved(std::move(copy));
  moved.buildNormals();  // has them already
  mesh = moved;
  EXPECT_EQ(GroupsOf(mesh, 0), (std::vector<DWORD>{1, 2}));
  EXPECT_EQ(NormalsOf(mesh, 0)[1].getNormal(), Point3(0, 1, 0));
  EXPECT_TRUE(NormalsOf(mesh, 2).empty());
  EXPECT_EQ(NormalsOf(mesh, 3)[2].getNormal(), Point3(0, 0, -1));
  EXPECT_EQ(mesh.verts[0], Point3(0, 0, 0));
}

}  // namespace
