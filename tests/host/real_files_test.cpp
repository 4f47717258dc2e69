// Opens scene files made by others and compares with what the importer itself says of them.

#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/HostTesting.h"
#include "host/scene/OpenScene.h"

namespace orv::host {
namespace {

std::string ModelFolder() {
  const char* folder = std::getenv("ORV_TEST_MODELS");
  return folder ? folder : "/usr/share/assimp/models";
}

struct Sample {
  const char* file;
  bool zUp;  // as made, whatever the importer does about it
};

void PrintTo(const Sample& sample, std::ostream* out) { *out << sample.file; }

// The importer's scene, evaluated here: its nodes' animated places, and its triangles in the world
// at a time, in the order of nodes, meshes and faces.
class ImportedScene {
 public:
  explicit ImportedScene(const std::string& path) {
    m_importer.SetPropertyBool("IMPORT_NO_SKELETON_MESHES", true);
    m_scene = m_importer.ReadFile(path, aiProcess_Triangulate);
  }
  const aiScene* operator->() const { return m_scene; }

  aiMatrix4x4 WorldOf(const aiNode* node, double ticks) const {
    const aiMatrix4x4 local = LocalOf(*node, ticks);
    return node->mParent ? WorldOf(node->mParent, ticks) * local : local;
  }

  // `take(world, mesh, v)`: a corner in the world, and where the rest of it is.
  using Take = std::function<void(const aiVector3D&, const aiMesh&, unsigned)>;
  void ForEachCorner(double ticks, const Take& take) const {
    ForEachCorner(m_scene->mRootNode, ticks, take);
  }

 private:
  static aiVector3D Mix(const aiVector3D& a, const aiVector3D& b, float part) {
    return a + (b - a) * part;
  }
  static aiQuaternion Mix(const aiQuaternion& a, const aiQuaternion& b, float part) {
    aiQuaternion result;
    aiQuaternion::Interpolate(result, a, b, part);
    return result;
  }

  template <typename Key>
  static auto ValueAt(const Key* keys, unsigned count, double ticks) {
    unsigned i = 0;
    while (i + 1 < count && keys[i + 1].mTime <= ticks) ++i;
    if (i + 1 == count || ticks <= keys[i].mTime) return keys[i].mValue;
    const double part = (ticks - keys[i].mTime) / (keys[i + 1].mTime - keys[i].mTime);
    return Mix(keys[i].mValue, keys[i + 1].mValue, static_cast<float>(part));
  }

  aiMatrix4x4 LocalOf(const aiNode& node, double ticks) const {
    if (m_scene->mNumAnimations == 0) return node.mTransformation;
    const aiAnimation& animation = *m_scene->mAnimations[0];
    for (unsigned i = 0; i < animation.mNumChannels; ++i) {
      const aiNodeAnim& channel = *animation.mChannels[i];
      if (channel.mNodeName != node.mName) continue;
      aiMatrix4x4 scale, move;
      aiMatrix4x4::Scaling(ValueAt(channel.mScalingKeys, channel.mNumScalingKeys, ticks), scale);
      aiMatrix4x4::Translation(ValueAt(channel.mPositionKeys, channel.mNumPositionKeys, ticks),
                               move);
      aiQuaternion turn = ValueAt(channel.mRotationKeys, channel.mNumRotationKeys, ticks);
      return move * aiMatrix4x4(turn.Normalize().GetMatrix()) * scale;
    }
    return node.mTransformation;
  }

  void ForEachCorner(const aiNode* node, double ticks, const Take& take) const {
    for (unsigned m = 0; m < node->mNumMeshes; ++m) {
      const aiMesh& mesh = *m_scene->mMeshes[node->mMeshes[m]];
      const std::vector<aiVector3D> points = Points(mesh, WorldOf(node, ticks), ticks);
      for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
        if (mesh.mFaces[f].mNumIndices != 3) continue;
        for (unsigned k = 0; k < 3; ++k) {
          const unsigned v = mesh.mFaces[f].mIndices[k];
          take(points[v], mesh, v);
        }
      }
    }
    for (unsigned i = 0; i < node->mNumChildren; ++i)
      ForEachCorner(node->mChildren[i], ticks, take);
  }

  // In the world; skinned ones where their bones take them.
  std::vector<aiVector3D> Points(const aiMesh& mesh, const aiMatrix4x4& world, double ticks) const {
    std::vector<aiVector3D> result(mesh.mNumVertices);
    std::vector<float> sums(mesh.mNumVertices, 0);
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
      const aiBone& bone = *mesh.mBones[b];
      const aiNode* node = m_scene->mRootNode->FindNode(bone.mName);
      if (!node) continue;
      const aiMatrix4x4 pose = WorldOf(node, ticks) * bone.mOffsetMatrix;
      for (unsigned i = 0; i < bone.mNumWeights; ++i) {
        const auto& [vertex, weight] = bone.mWeights[i];
        result[vertex] += pose * mesh.mVertices[vertex] * weight;
        sums[vertex] += weight;
      }
    }
    for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
      result[v] = sums[v] > 0 ? result[v] / sums[v] : world * mesh.mVertices[v];
    }
    return result;
  }

  Assimp::Importer m_importer;
  const aiScene* m_scene = nullptr;
};

class RealFiles : public testing::TestWithParam<Sample> {
 protected:
  void SetUp() override {
    m_path = ModelFolder() + "/" + GetParam().file;
    if (!std::filesystem::exists(m_path)) GTEST_SKIP() << "the test models are not installed";
    m_scene = OpenScene(m_path, {});
  }

  // The importer has turned all of these Y-up.
  Point3 HostPoint(const aiVector3D& p) const { return Point3(p.x, -p.z, p.y); }

  // In a node's own space.
  Point3 OwnDirection(const aiVector3D& v) const {
    return GetParam().zUp ? Point3(v.x, v.y, v.z) : Point3(v.x, -v.z, v.y);
  }

  std::string m_path;
  std::unique_ptr<Scene> m_scene;
};

struct HostCorner {
  Point3 world;
  Point3 texCoord;
  std::optional<Point3>
      normal;  // as found by smoothing group; of whole faces of unskinned meshes only
};

bool IsAtOnePositionTwice(const Face& face) {
  return face.v[0] == face.v[1] || face.v[1] == face.v[2] || face.v[2] == face.v[0];
}

std::vector<HostCorner> CornersOf(MemoryNode& node, TimeValue t) {
  std::vector<HostCorner> corners;
  Object* object = node.EvalWorldState(t).obj;
  if (object && object->CanConvertToType(Class_ID(TRIOBJ_CLASS_ID, 0))) {
    const Mesh& mesh = static_cast<TriObject*>(object)->GetMesh();
    const Matrix3 world = node.GetObjectTM(t);
    for (int f = 0; f < mesh.getNumFaces(); ++f) {
      for (int k = 0; k < 3; ++k) {
        HostCorner corner{mesh.verts[mesh.faces[f].v[k]] * world, {}, {}};
        if (mesh.getNumTVerts() > 0) corner.texCoord = mesh.tVerts[mesh.tvFace[f].t[k]];
        if (!node.Skin() && !IsAtOnePositionTwice(mesh.faces[f])) {
          corner.normal = LookUpNormal(mesh, f, k);
        }
        corners.push_back(corner);
      }
    }
  }
  for (MemoryNode* child : node.Children()) {
    const std::vector<HostCorner> below = CornersOf(*child, t);
    corners.insert(corners.end(), below.begin(), below.end());
  }
  return corners;
}

TEST_P(RealFiles, StandInTheWorldAsTheImporterSays) {
  const ImportedScene imported(m_path);
  for (const int frame : {0, 3, m_scene->info.lastFrame}) {
    SCOPED_TRACE("frame " + std::to_string(frame));
    double ticks = 0;
    if (imported->mNumAnimations > 0) {
      ticks = imported->mAnimations[0]->mTicksPerSecond * frame / m_scene->info.framesPerSecond;
    }
    const std::vector<HostCorner> corners =
        CornersOf(m_scene->Root(), frame * m_scene->TicksPerFrame());
    float size = 1;
    for (const HostCorner& corner : corners) size = std::max(size, Length(corner.world));
    size_t next = 0, displaced = 0, otherTexCoord = 0, otherNormal = 0;
    imported.ForEachCorner(ticks, [&](const aiVector3D& world, const aiMesh& mesh, unsigned v) {
      if (next >= corners.size()) return;
      const HostCorner& corner = corners[next++];
      displaced += !(Length(corner.world - HostPoint(world)) <= 2e-5f * size);
      if (const aiVector3D* uv = mesh.mTextureCoords[0]) {
        otherTexCoord += corner.texCoord != Point3(uv[v].x, uv[v].y, uv[v].z);
      }
      if (corner.normal) otherNormal += *corner.normal != OwnDirection(mesh.mNormals[v]);
    });
    EXPECT_EQ(next, corners.size());
    EXPECT_GT(next, 0u);
    EXPECT_EQ(displaced, 0u);
    EXPECT_EQ(otherTexCoord, 0u);
    EXPECT_EQ(otherNormal, 0u);
  }
}

constexpr Sample kSamples[] = {{"FBX/cubes_with_mirroring_and_pivot.fbx", false},
                               {"FBX/animation_with_skeleton.fbx", false},
                               {"FBX/huesitos.fbx", false},
                               {"3DS/cubes_with_alpha.3DS", true},
                               {"ASE/ThreeCubesGreen.ASE", true},
                               {"ASE/RotatingCube.ASE", true},
                               {"Collada/duck.dae", false},
                               {"OBJ/spider.obj", false},
                               {"X/Testwuson.X", false},
                               {"X/BCN_Epileptic.X", false},
                               {"glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb", false},
                               {"glTF2/simple_skin/simple_skin.gltf", false}};

INSTANTIATE_TEST_SUITE_P(Samples, RealFiles, testing::ValuesIn(kSamples));

TEST(RealFile, SaysItsUnitAndRate) {
  const struct {
    const char* file;
    double metres;
    int rate, last;
  } cases[] = {
      {"FBX/spider.fbx", 0.01, 24, 0},      {"FBX/huesitos.fbx", 0.01, 25, 39},
      {"Collada/duck.dae", 1, 30, 0},       {"BVH/01_01.bvh", 1, 120, 2751},
      {"ASE/RotatingCube.ASE", 1, 30, 180},
  };
  for (const auto& c : cases) {
    const std::string path = ModelFolder() + "/" + c.file;
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "the test models are not installed";
    const auto scene = OpenScene(path, {});
    EXPECT_EQ(scene->info.metresPerUnit, c.metres) << c.file;
    EXPECT_EQ(scene->info.framesPerSecond, c.rate) << c.file;
    EXPECT_EQ(scene->info.lastFrame, c.last) << c.file;
  }
}

TEST(RealFile, BonesWithoutNodesAreLeftOutWithAWarning) {
  const std::string path = ModelFolder() + "/X/anim_test.x";
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "the test models are not installed";
  const auto scene = OpenScene(path, {});
  ASSERT_EQ(scene->info.warnings.size(), 2u);
  EXPECT_NE(scene->info.warnings[0].find("\"joint3\""), std::string::npos);
}

}  // namespace
}  // namespace orv::host
