#include "mesh.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

// The normals' smoothing groups at a vertex.
std::vector<DWORD> GroupsOf(const Mesh& mesh, int vertex) {
  const RVertex& record = mesh.getRVert(vertex);
  const DWORD count = record.rFlags & NORCT_MASK;
  std::vector<DWORD> groups(count, record.rn.getSmGroup());
  for (DWORD i = 0; count > 1 && i < count; ++i) groups[i] = record.ern[i].getSmGroup();
  return groups;
}

// The top, the front and the side of a cube around vertex 0, of these groups; the side is cut into
// up to three triangles.
Mesh Corner(const std::vector<DWORD>& groups) {
  Mesh mesh;
  mesh.setNumVerts(6);
  const Point3 points[] = {{}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 1, 1}, {0, 2, 1}};
  std::copy(std::begin(points), std::end(points), mesh.verts);
  mesh.setNumFaces(static_cast<int>(groups.size()));
  const DWORD rims[3][6] = {{3, 1, 2, 3}, {3, 1, 2, 4, 3}, {3, 1, 2, 5, 4, 3}};
  for (size_t f = 0; f < groups.size(); ++f) {
    const DWORD* rim = rims[groups.size() - 3] + f;
    mesh.faces[f].setVerts(rim[1], 0, rim[0]);
    mesh.faces[f].setSmGroup(groups[f]);
  }
  mesh.buildNormals();
  return mesh;
}

TEST(MeshNormals, SharedGroupsJoinFacesHoweverTheseAreCut) {
  const struct {
    std::vector<DWORD> groups, joined;  // of the faces, of the normals
    Point3 last;                        // the last normal, not yet of unit length
  } cases[] = {
      {{1, 2, 4}, {1, 2, 4}, {1, 0, 0}},    {{1, 1, 1, 1, 1}, {1}, {1, 1, 1}},
      {{1, 2, 3}, {3}, {1, 1, 1}},           // the last joins the first two
      {{1, 4, 2, 3}, {3, 4}, {0, 0, 1}},     // in the place of the first of them
      {{8, 1, 2, 7, 4}, {8, 7}, {1, 0, 1}},  // whose groups it shares from then on
      {{0, 1, 0}, {1}, {0, 0, 1}},          {{0x80000000, 1, 1}, {0x80000000, 1}, {1, 0, 1}},
  };
  for (const auto& c : cases) {
    Mesh mesh = Corner(c.groups);
    EXPECT_EQ(GroupsOf(mesh, 0), c.joined) << testing::PrintToString(c.groups);
    const RVertex& corner = mesh.getRVert(0);
    const RNormal& last = c.joined.size() > 1 ? corner.ern[c.joined.size() - 1] : corner.rn;
    EXPECT_LT(Length(last.getNormal() - Normalize(c.last)), 1e-6);
  }
}

TEST(MeshNormals, SpecifiedOnesSurviveCopiesAndAreRefusedWhenTheyDoNotFit) {
  Mesh mesh = Corner({1, 1, 4});
  EXPECT_EQ(mesh.FaceNormal(1), Point3(0, 0, 1));
  mesh.faces[2].setMatID(4);
  mesh.faces[2].setMatID(3);
  EXPECT_EQ(mesh.faces[2].getMatID(), 3);
  mesh.setNumVerts(4);
  mesh.verts[2] = {2, 0, 0};
  EXPECT_EQ(mesh.FaceNormal(1, TRUE), Point3());
  mesh.buildNormals();
  EXPECT_EQ(mesh.getRVert(1).rn.getNormal(), Point3(0, 1, 0)) << "of the other face";
  const std::vector<RNormal> normals = {{{1, 0, 0}, 1},  {{0, 1, 0}, 2},  {{0, 0, 1}, 1},
                                        {{-1, 0, 0}, 1}, {{0, -1, 0}, 2}, {{0, 0, -1}, 4}};
  EXPECT_FALSE(mesh.specifyNormals(std::vector<uint8_t>{2, 1, 3}, normals));
  EXPECT_FALSE(mesh.specifyNormals(std::vector<uint8_t>{2, 1, 0, 4}, normals));
  EXPECT_TRUE(mesh.specifyNormals(std::vector<uint8_t>{2, 1, 0, 3}, normals));
  mesh.setNumVerts(4);
  mesh.buildNormals();
  EXPECT_EQ(GroupsOf(mesh, 0), (std::vector<DWORD>{1, 4})) << "other vertices, other normals";
  mesh.specifyNormals(std::vector<uint8_t>{2, 1, 0, 3}, normals);
  Mesh copy(mesh);
  mesh.getRVert(0).ern[1].setNormal({5, 5, 5});
  mesh = std::move(copy);
  mesh.buildNormals();  // has them already
  EXPECT_EQ(mesh.getRVert(0).ern[1].getNormal(), Point3(0, 1, 0));
  EXPECT_EQ(GroupsOf(mesh, 3), (std::vector<DWORD>{1, 2, 4}));
  mesh.setNumFaces(1);
  mesh.buildNormals();
  EXPECT_EQ(GroupsOf(mesh, 0), std::vector<DWORD>{1}) << "other faces, other normals";
}

}  // namespace
