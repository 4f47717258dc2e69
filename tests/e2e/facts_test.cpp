// A few facts about scenes that nothing of ours has computed.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "e2e/Orv.h"

namespace orv {
namespace {

const std::vector<std::string> kEverythingInIt = {"--joints-as-bones", "--default-material",
                                                  "plain m.notex"};

struct Box {
  Vec3 low{1e30f, 1e30f, 1e30f}, high{-1e30f, -1e30f, -1e30f};

  void Add(Vec3 p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
  }
};

void ExpectNear(Vec3 actual, Vec3 expected, float size, const std::string& what) {
  EXPECT_LE(Length(actual - expected), 1e-5f * size)
      << what << ": " << actual.x << ", " << actual.y << ", " << actual.z;
}

void ExpectNear(const Box& actual, const Box& expected, const std::string& what) {
  const float size = Length(expected.high - expected.low);
  ExpectNear(actual.low, expected.low, size, what);
  ExpectNear(actual.high, expected.high, size, what);
}

// The area and the bounds of the importer's own STL (`assimp export`), turned to Z-up and brought
// to metres, and its triangles but those with two corners in one place.
TEST(Scenes, HaveTheSizeTheyHaveElsewhere) {
  const struct {
    std::string scene;
    size_t triangles;
    double area;
    Box box;
  } cases[] = {
      {DataFile("everything.gltf"),
       48,
       130.120445,
       {{-6.5f, -10.1258335f, -3.74800014f}, {5.5f, 3.5f, 5.08388853f}}},
      {ModelFile("FBX/spider.fbx"),
       1312,
       33275.8523,
       {{-92.6552353f, -86.6912012f, -42.2338281f}, {57.9362207f, 106.691201f, 37.5039526f}}},
      {ModelFile("FBX/cubes_with_mirroring_and_pivot.fbx"),
       420,
       0.265385192,
       {{-0.0606711768f, -0.267273486f, -0.145149708f},
        {0.148656428f, 0.0604375973f, 0.159811765f}}},
      {ModelFile("3DS/cubes_with_alpha.3DS"),
       60,
       3300000.1,
       {{-856.310974f, -55.1008835f, -268.159119f}, {98.8105011f, 1227.14087f, 248.437958f}}},
      {ModelFile("Collada/duck.dae"),
       4212,
       7.02556199,
       {{-0.692984998f, -0.539251983f, 0.0992936939f}, {0.961798966f, 0.613282025f, 1.63969994f}}},
  };
  for (const auto& [scene, triangles, area, expected] : cases) {
    const Workplace place;
    place.Export(scene, "out", {"--no-animation"});
    const IndexedMeshFile file = place.Mesh("out.im");
    double sum = 0;
    size_t count = 0;
    Box box;
    for (const IndexedMesh::Chunk& chunk : file.mesh.chunks) {
      for (const Triangle& triangle : chunk.triangles) {
        Vec3 corners[3];
        for (int i = 0; i < 3; ++i) box.Add(corners[i] = chunk.vertices.at(triangle[i]).Position());
        sum += Length(Cross(corners[1] - corners[0], corners[2] - corners[0])) / 2;
      }
      count += chunk.triangles.size();
    }
    EXPECT_EQ(count, triangles) << scene;
    EXPECT_NEAR(sum, area, 1e-5 * area) << scene;
    ExpectNear(box, expected, scene);
  }
}

const BonePose& PoseOf(const AnimationFile& file, const std::string& bone, size_t frame) {
  const auto found = std::ranges::find(file.bones, bone, &BoneNode::name);
  if (found == file.bones.end()) throw std::runtime_error("no bone " + bone);
  return file.Frame(frame)[static_cast<size_t>(found - file.bones.begin())];
}

// Where an evaluation of the files that shared nothing with our host, in double precision, saw the
// bones: one frame inside the motion and one at its end.
TEST(Bones, StandWhereTheirNodesDo) {
  const struct {
    std::string scene;
    uint32_t frameRate, frameCount;
    struct {
      std::string bone;
      size_t frame;
      Vec3 position;  // in the file's units
      Quaternion rotation;
    } poses[3];
  } cases[] = {
      {ExampleFile("railcar/railcar.gltf"),
       30,
       121,
       {{"b.r.door front left", 40, {1.45f, -4.03571f, 1}, {0, 0, 0, 1}},
        {"b.r.pantograph.lower",
         120,
         {-0.0582481f, -2.1f, 3.86182f},
         {-0.31841f, 0.00948779f, -0.00318705f, 0.9479f}},
        {"b.r.axle 4",
         120,
         {-0.0610485f, 5.59813f, 0.42f},
         {-0.998309f, -0.0305011f, 0.00151152f, -0.0494725f}}}},
      {DataFile("moving.gltf"),
       30,
       61,
       {{"b.root", 60, {5, -3, 2}, {0, 0, 0, 1}},
        {"b.hand", 20, {1.99131f, -2.06031f, 4}, {0, 0, -0.819152f, 0.573576f}},
        {"b.hand", 60, {4.13397f, -2.5f, 4}, {0, 0, -0.965926f, 0.258819f}}}},
      {ModelFile("FBX/huesitos.fbx"),
       25,
       40,
       {{"b.Bone", 39, {-4.02399f, 307.135f, 0}, {-0.136799f, 0, 0, 0.990599f}},
        {"b.Bone.004",
         13,
         {65.0599f, 341.173f, 223.915f},
         {0.611684f, -0.422487f, 0.354742f, 0.567014f}},
        {"b.Bone.006",
         39,
         {324.013f, 172.96f, 82.489f},
         {-0.139969f, -0.899269f, -0.0853244f, 0.405517f}}}},
      {ModelFile("X/Testwuson.X"),
       30,
       30,
       {{"b.Root", 10, {0, 0.009935f, 0.5386f}, {-0.496592f, 0.496592f, -0.503385f, 0.503385f}},
        {"b.Tail02",
         10,
         {-0.000971804f, 0.889023f, 1.27627f},
         {0.146055f, -0.146226f, -0.693648f, 0.690028f}},
        {"b.HindLeg_R_04",
         29,
         {-0.223736f, 0.735959f, 0.201582f},
         {0.524783f, 0.462917f, -0.542202f, -0.465111f}}}},
  };
  for (const auto& [scene, frameRate, frameCount, poses] : cases) {
    const Workplace place;
    place.Export(scene, "out", kEverythingInIt);
    const AnimationFile file = place.Animation("out.kin");
    EXPECT_EQ(file.frameRate, frameRate) << scene;
    EXPECT_EQ(file.frameCount, frameCount) << scene;
    for (const auto& [name, frame, position, rotation] : poses) {
      const BonePose& pose = PoseOf(file, name, frame);
      ExpectNear(pose.position, position, 1 + Length(position), name);
      EXPECT_NEAR(std::abs((pose.rotation * Conjugate(rotation)).w), 1, 1e-6) << name;
    }
  }
}

Vec3 Turned(Vec3 v, const Quaternion& q) {  // by what stands for the opposite turn elsewhere
  const Vec3 axis{-q.x, -q.y, -q.z};
  const Vec3 across = Cross(axis, v) * 2;
  return v + across * q.w + Cross(axis, across);
}

// The same evaluation's bounds of a skin, as an engine shows it: offsets in the spaces of bones.
TEST(Skins, FollowTheirBones) {
  const struct {
    std::string scene;
    size_t frame;
    Box box;
  } cases[] = {
      {ExampleFile("bellows/bellows.gltf"),
       20,
       {{-0.837484f, -0.714136f, 0.507251f}, {0.692329f, 0.54f, 3.12668f}}},
      {DataFile("skinned.gltf"), 7, {{0, -0.716736f, 0}, {1, 0, 3.86716f}}},
      {ModelFile("FBX/animation_with_skeleton.fbx"),
       10,
       {{-36.4201f, -0.916709f, -1.93794f}, {34.7913f, 0.916663f, 4.17705f}}},
      {ModelFile("FBX/huesitos.fbx"),
       20,
       {{-1.03499f, 2.0733f, 0.00349109f}, {3.54659f, 4.2537f, 4.38653f}}},
  };
  for (const auto& [scene, frame, expected] : cases) {
    const Workplace place;
    place.Export(scene, "out", kEverythingInIt);
    const IndexedMeshFile file = place.Mesh("out.im");
    const AnimationFile animation = place.Animation("out.kin");
    Box box;
    for (size_t chunk = 0; chunk < file.chunks.size(); ++chunk) {
      std::vector<Vec3> positions(file.mesh.chunks[chunk].vertices.size());
      for (const auto& bone : file.mesh.influences.at(chunk)->m_bones) {
        const BonePose& pose = PoseOf(animation, bone->m_name, frame);
        for (const VertexWeight& weight : bone->m_weights) {
          Vec3& position = positions.at(weight.vertex);
          position = position + (Turned(weight.offset, pose.rotation) +
                                 pose.position * animation.masterScale) *
                                    weight.weight;
        }
      }
      for (const Vec3& position : positions) box.Add(position);
    }
    ExpectNear(box, expected, scene);
  }
}

}  // namespace
}  // namespace orv
