// Exports, converted to glTF, read by the importer and exported again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "e2e/Orv.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

// As coarse as the way is: what is even in the scene must not stand where rounding turns.
void Add(std::string& line, std::initializer_list<float> numbers) {
  for (const float number : numbers) {
    line += " " + std::to_string(std::lround(double{number} * 2e4 + 0.23));
  }
}

// By name: the order of the bones is not kept.
void AddBones(const GenericMeshInfluence& influence, Lines& corners) {
  std::map<std::string, const GenericBoneInfluence*> bones;
  for (const auto& bone : influence.m_bones) bones[bone->m_name] = bone.get();
  for (const auto& [name, bone] : bones) {
    for (const auto& [vertex, weight, offset] : bone->m_weights) {
      corners[vertex] += " " + name;
      Add(corners[vertex], {weight, offset.x, offset.y, offset.z});
    }
  }
}

// A line for each corner of a triangle, from the least one on: what is there and who moves it.
Lines TriangleLines(const IndexedMeshFile& file) {
  Lines lines;
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    const IndexedMesh::Chunk& chunk = file.mesh.chunks[i];
    Lines corners;
    for (size_t v = 0; v < chunk.vertices.size(); ++v) {
      const auto& [x, y, z, s, t] = chunk.vertices[v];
      const Vec3 n = chunk.normals[v];
      Add(corners.emplace_back(), {x, y, z, s, t, n.x, n.y, n.z});
    }
    if (!file.mesh.influences.empty()) AddBones(*file.mesh.influences[i], corners);
    for (const auto& [a, b, c] : chunk.triangles) {
      Lines triangle = {corners[a], corners[b], corners[c]};
      std::rotate(triangle.begin(), std::min_element(triangle.begin(), triangle.end()),
                  triangle.end());
      lines.push_back(chunk.material.name + triangle[0] + "," + triangle[1] + "," + triangle[2]);
    }
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

Lines AttachmentLines(const IndexedMesh& mesh) {
  Lines lines;
  for (const AttachmentPoint& point : mesh.attachmentPoints) {
    std::string& line = lines.emplace_back(point.name);
    for (const Vec3 v : {point.position, point.rotation[0], point.rotation[1], point.rotation[2]}) {
      Add(line, {v.x, v.y, v.z});
    }
  }
  return lines;
}

void ExpectSameMotion(const AnimationFile& a, const AnimationFile& b) {
  ASSERT_EQ(a.poses.size(), b.poses.size());
  EXPECT_EQ(a.frameRate, b.frameRate);
  for (size_t i = 0; i < a.poses.size(); ++i) {
    EXPECT_NEAR(std::abs(Dot(a.poses[i].rotation, b.poses[i].rotation)), 1, 1e-5) << i;
    const Vec3 moved = a.poses[i].position * a.masterScale - b.poses[i].position * b.masterScale;
    EXPECT_NEAR(Length(moved), 0, 1e-5) << i;
  }
}

TEST(RoundTrip, ConvertedModelIsTheSameWhenItIsExportedAgain) {
  for (const char* scene : {"moving.gltf", "skinned.gltf", "everything.gltf"}) {
    SCOPED_TRACE(scene);
    const Workplace place;
    place.Export(DataFile(scene), "a",
                 {"--unit", "0.0254", "--joints-as-bones", "--collect-textures"});
    const bool isAnimated = place.Files().contains("a.kin");
    const Outcome converted =
        place.Orv({"convert", "a.im", isAnimated ? "a.kin" : "--unit=0.0254", "-o", "b.glb"});
    EXPECT_EQ(converted.status, 0) << converted.err;
    place.Export("b.glb", "b");
    const IndexedMeshFile a = place.Mesh("a.im"), b = place.Mesh("b.im");
    EXPECT_EQ(TriangleLines(a), TriangleLines(b));
    EXPECT_EQ(AttachmentLines(a.mesh), AttachmentLines(b.mesh));
    if (isAnimated) ExpectSameMotion(place.Animation("a.kin"), place.Animation("b.kin"));
  }
}

}  // namespace
}  // namespace orv
