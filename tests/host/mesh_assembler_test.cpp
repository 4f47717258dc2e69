#include "host/memory/MeshAssembler.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <random>
#include <vector>

namespace orv::host {
namespace {

// The normal that an exporter finds for a face's corner; none where it takes the face's own.
std::optional<Point3> LookUpNormal(const Mesh& mesh, int face, int corner) {
  const DWORD group = mesh.faces[face].getSmGroup();
  const RVertex& vertex = mesh.getRVert(static_cast<int>(mesh.faces[face].v[corner]));
  const DWORD count = vertex.rFlags & NORCT_MASK;
  if (group == 0) return std::nullopt;
  if (count == 1) return vertex.rn.getNormal();
  for (DWORD k = 0; k < count; ++k) {
    if ((vertex.ern[k].getSmGroup() & group) != 0) return vertex.ern[k].getNormal();
  }
  return std::nullopt;
}

struct Corner {
  Point3 position, normal;
};

// Three corners a triangle, with vertices of their own, as files without indices have them.
using Soup = std::vector<Corner>;

AssembledMesh Assemble(const Soup& soup) {
  MeshAssembler assembler(soup.size(), soup.size() / 3);
  assembler.BeginPart(0);
  for (const Corner& corner : soup) assembler.AddVertex({corner.position, &corner.normal});
  for (uint32_t i = 0; i < soup.size(); i += 3) assembler.AddTriangle(i, i + 1, i + 2);
  return assembler.Finish();
}

// `sides` triangles around the origin, each with a normal of its own.
Soup FlatCone(int sides) {
  Soup soup;
  const auto rim = [&](int i) {
    return Point3(static_cast<float>((i % sides) * (i % sides)), 1, -1);
  };
  for (int i = 0; i < sides; ++i) {
    const Point3 normal = Normalize(rim(i) + rim(i + 1));
    soup.insert(soup.end(), {{Point3(), normal}, {rim(i), normal}, {rim(i + 1), normal}});
  }
  return soup;
}

// A grid of triangles whose corners take one of a few normals each by chance.
TEST(MeshAssembler, LookUpGivesBackEveryNormal) {
  for (unsigned seed = 0; seed < 20; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    Soup soup;
    const auto add = [&](int x, int y) {
      const float pick = static_cast<float>(random() % (2 + seed % 4));
      soup.push_back(
          {Point3(static_cast<float>(x), static_cast<float>(y), 0), Normalize(Point3(pick, 1, 2))});
    };
    for (int cell = 0; cell < 144; ++cell) {
      const int x = cell % 12, y = cell / 12;
      add(x, y), add(x + 1, y), add(x + 1, y + 1);
    }
    const AssembledMesh result = Assemble(soup);
    EXPECT_EQ(result.flattenedFaces, 0u);
    for (int i = 0; i < static_cast<int>(soup.size()); ++i) {
      const auto& [position, normal] = soup[static_cast<size_t>(i)];
      EXPECT_EQ(result.mesh.verts[result.mesh.faces[i / 3].v[i % 3]], position) << "corner " << i;
      EXPECT_EQ(LookUpNormal(result.mesh, i / 3, i % 3), normal) << "corner " << i;
    }
  }
}

TEST(MeshAssembler, FacesBeyondTheGroupsAreFlatAndSpoilNoOther) {
  const Soup soup = FlatCone(40);
  const AssembledMesh result = Assemble(soup);
  EXPECT_EQ(result.flattenedFaces, 8u);
  size_t flat = 0;
  for (int i = 0; i < static_cast<int>(soup.size()); ++i) {
    const auto normal = LookUpNormal(result.mesh, i / 3, i % 3);
    EXPECT_EQ(normal.value_or(soup[static_cast<size_t>(i)].normal),
              soup[static_cast<size_t>(i)].normal);
    flat += !normal;
  }
  EXPECT_EQ(flat, 3 * 8u);
}

// One face can have one normal only at a position where it is twice.
TEST(MeshAssembler, FaceAtOnePositionTwiceLeavesTheOthersTheirNormals) {
  const Point3 up(0, 0, 1), side(1, 0, 0), front(0, 1, 0);
  const AssembledMesh result = Assemble({{{0, 0, 0}, up},
                                         {{0, 0, 0}, side},
                                         {{1, 0, 0}, up},
                                         {{0, 0, 0}, side},
                                         {{1, 0, 0}, side},
                                         {{0, 1, 0}, side},
                                         {{0, 0, 0}, front},
                                         {{1, 0, 0}, front},
                                         {{0, 1, 0}, front}});
  EXPECT_EQ(LookUpNormal(result.mesh, 0, 0), up);
  EXPECT_EQ(LookUpNormal(result.mesh, 0, 2), up);
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(LookUpNormal(result.mesh, 1, k), side);
    EXPECT_EQ(LookUpNormal(result.mesh, 2, k), front);
  }
}

// Bit by bit, and moved by the same bone or by none.
TEST(MeshAssembler, MergesEqualPositionsOfEqualWeights) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const std::vector<BoneWeight> none, first = {{0, 1}}, second = {{1, 1}};
  const struct {
    Point3 position;
    const std::vector<BoneWeight>& weights;
    DWORD merged;
  } vertices[] = {{{1, 2, 3}, none, 0},    {{1, 2, 3.0000002f}, none, 1}, {{0, 0, 0}, none, 2},
                  {{-0.f, 0, 0}, none, 3}, {{nan, 0, 0}, none, 4},        {{nan, 0, 0}, none, 4},
                  {{1, 2, 3}, first, 5},   {{1, 2, 3}, second, 6},        {{1, 2, 3}, first, 5},
                  {{1, 2, 3}, none, 0},    {{0, 0, 0}, none, 2},          {{0, 0, 0}, second, 7}};
  const uint32_t count = std::size(vertices);
  MeshAssembler assembler(count, count / 3);
  assembler.BeginPart(0);
  for (const auto& v : vertices) assembler.AddVertex({v.position, nullptr, nullptr, v.weights});
  for (uint32_t i = 0; i < count; i += 3) assembler.AddTriangle(i, i + 1, i + 2);
  const AssembledMesh result = assembler.Finish();
  for (uint32_t i = 0; i < count; ++i) {
    EXPECT_EQ(result.mesh.faces[i / 3].v[i % 3], vertices[i].merged) << i;
  }
  EXPECT_EQ(result.mesh.getNumVerts(), 8);
  EXPECT_EQ(result.skin.starts, (std::vector<uint32_t>{0, 0, 0, 0, 0, 0, 1, 2, 3}));
}

TEST(MeshAssembler, PartsWithoutTexCoordsShareTheOrigin) {
  const UVVert first(1, 2, 0), third(3, 4, 0);
  MeshAssembler assembler(9, 3);
  for (const UVVert* texCoord : {&first, static_cast<const UVVert*>(nullptr), &third}) {
    assembler.BeginPart(0);
    for (int i = 0; i < 3; ++i) assembler.AddVertex({Point3(), nullptr, texCoord});
    assembler.AddTriangle(0, 1, 2);
  }
  const Mesh mesh = assembler.Finish().mesh;
  EXPECT_EQ(mesh.tVerts[mesh.tvFace[1].t[0]], UVVert(0, 0, 0));
  EXPECT_EQ(mesh.tVerts[mesh.tvFace[2].t[0]], third);
}

}  // namespace
}  // namespace orv::host
