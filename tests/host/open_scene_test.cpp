#include "host/scene/OpenScene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "TemporaryFolder.h"
#include "host/Gltf.h"
#include "host/HostTesting.h"
#include "host/scene/MemoryHost.h"

namespace orv::host {
namespace {

class OpenedScene : public testing::Test {
 protected:
  Scene& Open(const Gltf& file, const std::string& roots, const SceneSettings& settings = {}) {
    WriteContent(m_folder.File("crane.gltf"), file.Text(roots));
    return Open(m_folder.File("crane.gltf"), settings);
  }
  Scene& Open(const std::string& path, const SceneSettings& settings = {}) {
    m_scene = OpenScene(path, settings);
    return *m_scene;
  }
  std::string ReasonFor(const std::string& path, const SceneSettings& settings = {}) {
    try {
      OpenScene(path, settings);
    } catch (const SceneError& error) {
      return error.what();
    }
    return "";
  }
  Mesh& MeshOf(const char* node) {
    return static_cast<TriObject*>(m_scene->FindNode(node)->EvalWorldState(0).obj)->GetMesh();
  }
  StdMat2& MaterialOf(const char* node) {
    return *static_cast<StdMat2*>(m_scene->FindNode(node)->GetMtl());
  }

  TemporaryFolder m_folder;
  std::unique_ptr<Scene> m_scene;
};

// "parent>child:kind", a line each.
std::string TreeOf(Scene& scene) {
  std::string text;
  const std::function<void(MemoryNode&)> add = [&](MemoryNode& node) {
    for (MemoryNode* child : node.Children()) {
      const Class_ID kind = child->EvalWorldState(0).obj->ClassID();
      const bool mesh = kind == Class_ID(TRIOBJ_CLASS_ID, 0);
      const bool point = kind == Class_ID(POINTHELP_CLASS_ID, 0);
      text += (node.IsRootNode() ? "" : node.Name()) + ">" + child->Name() +
              (mesh    ? ":mesh "
               : point ? ":point "
                       : " ");
      add(*child);
    }
  };
  add(scene.Root());
  return text;
}

Gltf OneTriangle(const std::string& nodes) {
  Gltf file;
  file.meshes = Gltf::Mesh(file.TrianglePrimitive());
  file.nodes = nodes;
  return file;
}

TEST_F(OpenedScene, TheRootOfTheFileIsANodeWhenItSaysSomething) {
  const struct {
    const char *nodes, *roots, *tree;
  } cases[] = {
      {R"({"name":"a","mesh":0},{"name":"b","mesh":0})", "0,1", ">a:mesh >b:mesh "},
      {R"({"name":"a","mesh":0})", "0", ">a:mesh "},
      {R"({"name":"top","children":[1]},{"name":"a","mesh":0})", "0", ">top top>a:mesh "},
      {R"({"name":"ROOT","children":[1]},{"name":"a","mesh":0})", "0", ">a:mesh "},
      {R"({"name":"ROOT","children":[1],"scale":[2,2,2]},{"name":"a","mesh":0})", "0",
       ">ROOT ROOT>a:mesh "},
      {R"({"name":"ROOT","children":[1],"mesh":0},{"name":"a","mesh":0})", "0",
       ">ROOT:mesh ROOT>a:mesh "},
  };
  for (const auto& c : cases) EXPECT_EQ(TreeOf(Open(OneTriangle(c.nodes), c.roots)), c.tree);
}

Gltf PartsOf(const std::vector<int>& materials) {
  Gltf file;
  std::string primitives;
  for (const int material : materials) {
    primitives += (primitives.empty() ? "" : ",") + file.TrianglePrimitive(material);
  }
  file.meshes = Gltf::Mesh(primitives);
  file.materials = R"({"name":"red"},{"name":"Blue"},{})";
  file.nodes = R"({"name":"a","mesh":0})";
  return file;
}

// Just the head of one, of colour with or without alpha.
std::string PngHead(bool withAlpha) {
  std::string png = "\x89PNG\r\n\x1A\n";
  png += std::string("\0\0\0\x0DIHDR\0\0\0\1\0\0\0\1\x08", 17);
  png += withAlpha ? '\x06' : '\x02';
  return png + std::string("\0\0\0\0\0\0\0\0\0\0\0IDAT", 15);
}

TEST_F(OpenedScene, AlphaComesFromTheFileWhenTheModeAsksAndTheImageHasSome) {
  const struct {
    const char* mode;
    const char* image;
    int source;
  } cases[] = {
      {"BLEND", "alpha.png", ALPHA_FILE},  {"MASK", "alpha.png", ALPHA_FILE},
      {"OPAQUE", "alpha.png", ALPHA_NONE}, {"BLEND", "plain.png", ALPHA_NONE},
      {"BLEND", "photo.jpg", ALPHA_NONE},  {"BLEND", "missing.png", ALPHA_FILE},
  };
  WriteContent(m_folder.File("alpha.png"), PngHead(true));
  WriteContent(m_folder.File("plain.png"), PngHead(false));
  WriteContent(m_folder.File("photo.jpg"), "\xFF\xD8\xFF\xE0");
  for (const auto& c : cases) {
    Gltf file = PartsOf({0});
    file.materials = std::string(R"({"name":"leaf","alphaMode":")") + c.mode +
                     R"(","pbrMetallicRoughness":{"baseColorFactor":[1,1,1,0.5],)"
                     R"("baseColorTexture":{"index":0}}})";
    file.textures = R"({"source":0})";
    file.images = std::string(R"({"uri":")") + c.image + "\"}";
    Open(file, "0");
    auto* map = static_cast<BitmapTex*>(MaterialOf("a").GetSubTexmap(ID_DI));
    EXPECT_EQ(map->GetAlphaSource(), c.source) << c.mode << " " << c.image;
    const bool opaque = std::string(c.mode) == "OPAQUE";
    EXPECT_EQ(MaterialOf("a").GetOpacity(0), opaque ? 1.0f : 0.5f);
  }
}

class EmbeddedTexture : public OpenedScene {
 protected:
  EmbeddedTexture() : m_file(PartsOf({0})) {
    m_file.materials = R"({"name":"m","pbrMetallicRoughness":{"baseColorTexture":{"index":0}},)"
                       R"("emissiveTexture":{"index":0}})";
    m_file.textures = R"({"source":0})";
    m_file.images =
        R"({"mimeType":"image/png","uri":"data:image/png;base64,)" + Base64(PngHead(true)) + "\"}";
    m_settings.exportFolder = m_folder.File("out");
    std::filesystem::create_directory(m_settings.exportFolder);
  }
  std::string MapName() {
    Open(m_file, "0", m_settings);
    return static_cast<BitmapTex*>(MaterialOf("a").GetSubTexmap(ID_DI))->GetMapName();
  }

  Gltf m_file;
  SceneSettings m_settings;
};

TEST_F(EmbeddedTexture, IsWrittenOnceUnderAStableName) {
  const std::string name = MapName();
  EXPECT_EQ(name, m_folder.File("out/crane_0.png"));
  EXPECT_EQ(ContentOf(name), PngHead(true));
  EXPECT_EQ(MapName(), name);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(m_settings.exportFolder), {}), 1);
  EXPECT_TRUE(m_scene->info.warnings.empty());
  MemoryHost host(*m_scene);
  char found[256];
  ASSERT_TRUE(host.FindBitmap(name.c_str(), found, sizeof found));
  EXPECT_EQ(found, name);
  EXPECT_FALSE(host.FindBitmap(name.c_str(), found, name.size()));
}

TEST_F(EmbeddedTexture, GoesBesideAnotherFileOfItsName) {
  WriteContent(m_folder.File("out/crane_0.png"), "somebody's own");
  const std::string name = MapName();
  EXPECT_EQ(name, m_folder.File("out/crane_0_2.png"));
  EXPECT_EQ(ContentOf(m_folder.File("out/crane_0.png")), "somebody's own");
  EXPECT_EQ(m_scene->info.warnings.size(), 1u);
  EXPECT_EQ(MapName(), name);
}

// hips > knee > ankle > toe, with the ankle no joint; "wheel" is a joint apart from them.
Gltf SkinnedFile(const std::string& joints) {
  Gltf file;
  const std::string positions = std::to_string(file.Floats("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0}));
  const std::string weights =
      std::to_string(file.Floats("VEC4", {1, 0, 0, 0, 2, 6, 0, 0, 0, 1, 0, 0}));
  const std::string bones = std::to_string(file.Joints({0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0}));
  file.meshes = Gltf::Mesh(R"({"attributes":{"POSITION":)" + positions + R"(,"JOINTS_0":)" + bones +
                           R"(,"WEIGHTS_0":)" + weights + "}}");
  std::vector<float> matrices;
  for (int joint = 0; joint < 3; ++joint) {
    const float move = static_cast<float>(-joint);
    matrices.insert(matrices.end(), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, move, 0, 1});
  }
  file.skins = R"({"joints":[)" + joints + R"(],"inverseBindMatrices":)" +
               std::to_string(file.Floats("MAT4", matrices)) + "}";
  file.nodes =
      R"({"name":"top","children":[1,5,6]},{"name":"hips","children":[2]},)"
      R"({"name":"knee","children":[3],"translation":[0,1,0]},{"name":"ankle","children":[4]},)"
      R"({"name":"toe"},{"name":"wheel"},{"name":"body","mesh":0,"skin":0,"translation":[9,9,9]})";
  return file;
}

TEST_F(OpenedScene, JointsAreCalledBonesWhenAsked) {
  const struct {
    const char *joints, *roots, *tree;
  } cases[] = {
      {"1,2,4", "0",
       ">top top>b.hips b.hips>b.knee b.knee>b.ankle b.ankle>b.toe top>wheel:point top>body:mesh "},
      {"2,4,5", "0",
       ">b.top b.top>hips hips>b.knee b.knee>b.ankle b.ankle>b.toe b.top>b.wheel "
       "b.top>body:mesh "},
      {"1,2,5", "0",
       ">b.top b.top>b.hips b.hips>b.knee b.knee>ankle ankle>toe:point b.top>b.wheel "
       "b.top>body:mesh "},
      // The importer's root is what these have in common.
      {"2,4,5", "1,5,6",
       ">b.ROOT b.ROOT>hips hips>b.knee b.knee>b.ankle b.ankle>b.toe b.ROOT>b.wheel "
       "b.ROOT>body:mesh "},
  };
  SceneSettings settings;
  settings.jointsAsBones = true;
  for (const auto& c : cases) {
    EXPECT_EQ(TreeOf(Open(SkinnedFile(c.joints), c.roots, settings)), c.tree);
    EXPECT_TRUE(m_scene->info.warnings.empty());
  }
  EXPECT_EQ(Open(SkinnedFile("1,2,6"), "0", settings).info.warnings.size(), 1u) << "a mesh's joint";
  EXPECT_EQ(Open(SkinnedFile("1,2,4"), "0").FindNode("b.hips"), nullptr);
}

// The importer makes a chain of nodes of such a node; the animation moves one in its middle.
TEST_F(OpenedScene, PivotsAreStepsOfOneNodesTransform) {
  Open(ORV_TEST_DATA "/pivot_animation.fbx");
  EXPECT_EQ(TreeOf(*m_scene), ">group group>door:mesh door>hook:point ");
  EXPECT_EQ(m_scene->info.metresPerUnit, 1);
  EXPECT_EQ(m_scene->info.framesPerSecond, 25);
  EXPECT_EQ(m_scene->info.lastFrame, 25);
  const double degree = std::numbers::pi / 180;
  const double tiltCosine = std::cos(30 * degree), tiltSine = std::sin(30 * degree);
  for (const int frame : {0, 5, 25}) {
    SCOPED_TRACE(frame);
    const double angle = 90 * degree * frame / 25;
    // The corner (2, 1, 0) turns about (2, 0.5, 0), is tilted about y, moved, scaled and moved.
    const double x = -0.5 * std::sin(angle), y = 0.5 * std::cos(angle);
    const Point3 expected(static_cast<float>(1 + 2 * (2 + x * tiltCosine)),
                          static_cast<float>(2 + 2 * (1 + 0.5 + y)),
                          static_cast<float>(3 + 2 * (-x * tiltSine)));
    MemoryNode& door = *m_scene->FindNode("door");
    ExpectNear(Point3(2, 1, 0) * door.GetNodeTM(frame * m_scene->TicksPerFrame()), expected);
  }
}

TEST_F(OpenedScene, UnreadableFilesAreNamedWithTheReason) {
  WriteContent(m_folder.File("empty.gltf"), "");
  WriteContent(m_folder.File("cut.gltf"), OneTriangle("{").Text("0").substr(0, 200));
  WriteContent(m_folder.File("notes.txt"), "no scene");
  for (const char* name : {"empty.gltf", "cut.gltf", "notes.txt", "missing.fbx", ""}) {
    const std::string path = m_folder.File(name);
    const std::string reason = ReasonFor(path);
    EXPECT_EQ(reason.find(path + ": "), 0u) << reason;
    EXPECT_GT(reason.size(), path.size() + 2);
  }
}

TEST_F(OpenedScene, GltfSkinsNeedTheirInverseBindMatrices) {
  std::string text = ContentOf(ORV_TEST_DATA "/skinned.gltf");
  const std::string key = "inverseBindMatrices";
  text.replace(text.find(key), key.size(), "extras");
  for (const char* name : {"skinned.gltf", "SKINNED.GLTF"}) {
    WriteContent(m_folder.File(name), text);
    const std::string reason = ReasonFor(m_folder.File(name));
    EXPECT_NE(reason.find("skin 0 has no inverse bind matrices"), std::string::npos) << reason;
  }
}

TEST_F(OpenedScene, FacesThatNameMissingVerticesAreLeftOut) {
  Gltf file;
  const std::string positions = std::to_string(file.Floats("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0}));
  const std::string indices = std::to_string(file.Indices({0, 1, 99, 2, 1, 0}));
  file.meshes =
      Gltf::Mesh(R"({"attributes":{"POSITION":)" + positions + R"(},"indices":)" + indices + "}");
  file.nodes = R"({"name":"a","mesh":0})";
  Open(file, "0");
  const Mesh& mesh = MeshOf("a");
  ASSERT_EQ(mesh.getNumFaces(), 1);
  EXPECT_EQ(mesh.faces[0].v[0], 2u);
}

TEST_F(OpenedScene, BonesWithoutNodesAreLeftOutWithAWarning) {
  const std::string path = "/usr/share/assimp/models/X/anim_test.x";
  if (!std::filesystem::exists(path)) GTEST_SKIP() << "the test models are not installed";
  Open(path);
  ASSERT_EQ(m_scene->info.warnings.size(), 2u);
  EXPECT_NE(m_scene->info.warnings[0].find("\"joint3\""), std::string::npos);
}

TEST_F(OpenedScene, NamesThatAreNotAsciiWork) {
  const std::string path = m_folder.File("größe_列車.gltf");
  WriteContent(path, OneTriangle(R"({"name":"Räder","mesh":0})").Text("0"));
  EXPECT_EQ(Open(path).info.fileName, "größe_列車.gltf");
  EXPECT_TRUE(m_scene->Select("Räder"));
}

}  // namespace
}  // namespace orv::host
