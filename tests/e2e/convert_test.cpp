#include <gtest/gtest.h>

#include <cmath>

#include "Orv.h"

namespace orv {
namespace {

// A corner: position, texture coordinates, normal.
using Corner = std::array<float, 8>;
using Corners = std::array<Corner, 3>;

std::vector<Corners> TrianglesOf(const independent::MeshChunk& chunk) {
  std::vector<Corners> triangles;
  for (const auto& triangle : chunk.triangles) {
    Corners& corners = triangles.emplace_back();
    for (size_t i = 0; i < 3; ++i) {
      const auto& v = chunk.vertices[triangle[i]];
      const auto& n = chunk.normals[triangle[i]];
      corners[i] = {v[0], v[1], v[2], v[3], v[4], n[0], n[1], n[2]};
    }
  }
  return triangles;
}

float Distance(const Corners& a, const Corners& b, size_t turn) {
  float most = 0;
  for (size_t i = 0; i < 3; ++i)
    for (size_t k = 0; k < 8; ++k) most = std::max(most, std::abs(a[i][k] - b[(i + turn) % 3][k]));
  return most;
}

// Each triangle of one finds one of its own in the other, whatever their order.
void ExpectSameTriangles(const independent::MeshChunk& a, const independent::MeshChunk& b) {
  std::vector<Corners> left = TrianglesOf(b);
  ASSERT_EQ(a.triangles.size(), left.size());
  for (const Corners& triangle : TrianglesOf(a)) {
    const auto same = std::find_if(left.begin(), left.end(), [&](const Corners& other) {
      return Distance(triangle, other, 0) < 1e-5f || Distance(triangle, other, 1) < 1e-5f ||
             Distance(triangle, other, 2) < 1e-5f;
    });
    ASSERT_NE(same, left.end()) << a.materialName;
    left.erase(same);
  }
}

void ExpectSameMotion(const independent::AnimationFile& a, const independent::AnimationFile& b) {
  ASSERT_EQ(a.bones.size(), b.bones.size());
  ASSERT_EQ(a.frames.size(), b.frames.size());
  for (size_t frame = 0; frame < a.frames.size(); ++frame) {
    for (size_t bone = 0; bone < a.bones.size(); ++bone) {
      const auto& p = a.frames[frame][bone];
      const auto& q = b.frames[frame][bone];
      float same = 0;
      for (size_t i = 3; i < 7; ++i) same += p[i] * q[i];
      EXPECT_NEAR(std::abs(same), 1, 1e-5) << frame << ' ' << a.bones[bone].name;
      for (size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(p[i] * a.masterScale, q[i] * b.masterScale, 1e-5) << frame;
    }
  }
}

TEST(ConvertedModel, IsTheSameWhenItIsExportedAgain) {
  for (const char* scene : {"moving.gltf", "skinned.gltf"}) {
    SCOPED_TRACE(scene);
    const Workplace workplace;
    workplace.Export(DataFile(scene), "a", {"--unit", "0.0254", "--joints-as-bones"});
    const Outcome converted = workplace.Orv({"convert", "a.im", "a.kin", "-o", "b.glb"});
    EXPECT_EQ(converted.status, 0) << converted.err;
    workplace.Export("b.glb", "b");
    const independent::MeshFile a = workplace.Mesh("a.im"), b = workplace.Mesh("b.im");
    ASSERT_EQ(a.chunks.size(), b.chunks.size());
    for (const auto& chunk : a.chunks) {
      const auto same = std::find_if(b.chunks.begin(), b.chunks.end(), [&](const auto& other) {
        return other.materialName == chunk.materialName && other.boneName == chunk.boneName;
      });
      ASSERT_NE(same, b.chunks.end()) << chunk.materialName;
      ExpectSameTriangles(chunk, *same);
    }
    EXPECT_EQ(a.attachments.size(), b.attachments.size());
    EXPECT_EQ(a.influences.size(), b.influences.size());
    ExpectSameMotion(workplace.Animation("a.kin"), workplace.Animation("b.kin"));
  }
}

TEST(ConvertCommand, LeavesNothingBehindWhenItCannotConvert) {
  const Workplace workplace;
  WriteContent(workplace.Path("cut.im"), "QIRF");
  const Outcome outcome = workplace.Orv({"convert", "cut.im"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_TRUE(outcome.err.starts_with("orv: cut.im: ")) << outcome.err;
  EXPECT_EQ(workplace.Names(), std::set<std::string>{"cut.im"});
}

}  // namespace
}  // namespace orv
