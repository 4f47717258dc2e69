#include "host/import/OpenScene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <numbers>
#include <string>

#include "TemporaryFolder.h"
#include "host/HostTesting.h"
#include "host/import/PictureFiles.h"
#include "host/memory/MemoryHost.h"

namespace orv::host {
namespace {

// A right triangle with all that a vertex can have, and what three joints need.
constexpr char kBuffer[] =
    "AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAAAAAAAAAAAAAAAIA/AAAAAAAAAAAAAIA+AAEAAAABAA"
    "AAAQIAAACAPwAAAAAAAAAAAAAAAAAAgD4AAEA/AAAAAAAAAAAAAAAAAAAAPwAAAD8AAAAAAACAPwAAAAAAAAAAAAAA"
    "AAAAAAAAAIA/AAAAAAAAAAAAAAAAAAAAAAAAgD8AAAAAAAAAAAAAAAAAAAAAAACAPwAAgD8AAAAAAAAAAAAAAAAAAA"
    "AAAACAPwAAAAAAAAAAAAAAAAAAAAAAAIA/AAAAAAAAAAAAAAAAAAAAAAAAgD8AAIA/AAAAAAAAAAAAAAAAAAAAAAAA"
    "gD8AAAAAAAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAAAAAAIA/AAABAGMAAgABAAAA";

// A file with the buffer's accessors 0 to 5: positions, texture coordinates, joints, weights,
// matrices, and the indices 0, 1, 99, 2, 1, 0.
std::string Gltf(const std::string& roots, const std::string& lists) {
  return R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)" + roots + "]}]," + lists +
         R"(,"buffers":[{"byteLength":324,"uri":"data:application/octet-stream;base64,)" + kBuffer +
         R"("}],"bufferViews":[{"buffer":0,"byteLength":36},
             {"buffer":0,"byteOffset":36,"byteLength":24},
             {"buffer":0,"byteOffset":60,"byteLength":12},
             {"buffer":0,"byteOffset":72,"byteLength":48},
             {"buffer":0,"byteOffset":120,"byteLength":192},
             {"buffer":0,"byteOffset":312,"byteLength":12}],
           "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"},
             {"bufferView":1,"componentType":5126,"count":3,"type":"VEC2"},
             {"bufferView":2,"componentType":5121,"count":3,"type":"VEC4"},
             {"bufferView":3,"componentType":5126,"count":3,"type":"VEC4"},
             {"bufferView":4,"componentType":5126,"count":3,"type":"MAT4"},
             {"bufferView":5,"componentType":5123,"count":6,"type":"SCALAR"}]})";
}

std::string OneTriangle(const std::string& roots, const std::string& nodes,
                        const std::string& more = "") {
  return Gltf(roots, R"("meshes":[{"primitives":[{"attributes":{"POSITION":0,"TEXCOORD_0":1},)"
                     R"("material":0}]}],"nodes":[)" +
                         nodes + "]" + (more.empty() ? R"(,"materials":[{}])" : more));
}

class OpenedScene : public testing::Test {
 protected:
  Scene& OpenText(const std::string& text, const SceneSettings& settings = {}) {
    WriteContent(m_folder.File("crane.gltf"), text);
    return Open(m_folder.File("crane.gltf"), settings);
  }
  Scene& Open(const std::string& path, const SceneSettings& settings = {}) {
    m_scene = OpenScene(path, settings);
    return *m_scene;
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
  for (const auto& c : cases) EXPECT_EQ(TreeOf(OpenText(OneTriangle(c.roots, c.nodes))), c.tree);
}

std::string TexturedTriangle(const std::string& material, const std::string& image) {
  return OneTriangle("0", R"({"name":"a","mesh":0})",
                     R"(,"materials":[{"name":"m",)" + material +
                         R"("pbrMetallicRoughness":{"baseColorFactor":[1,1,1,0.5],)"
                         R"("baseColorTexture":{"index":0}}}],"textures":[{"source":0}],)"
                         R"("images":[{"uri":")" +
                         image + "\"}]");
}

TEST_F(OpenedScene, AlphaComesFromTheFileWhenTheModeAsks) {
  for (const bool asks : {true, false}) {
    OpenText(TexturedTriangle(asks ? R"("alphaMode":"BLEND",)" : "", "missing.png"));
    auto* map = static_cast<BitmapTex*>(MaterialOf("a").GetSubTexmap(ID_DI));
    EXPECT_EQ(map->GetAlphaSource(), asks ? ALPHA_FILE : ALPHA_NONE);
    EXPECT_EQ(MaterialOf("a").GetOpacity(0), asks ? 0.5f : 1.0f);
  }
}

TEST(PictureAlpha, ComesFromTheFirstBytes) {
  const auto png = [](char colourType, const std::string& tag) {
    return "\x89PNG\r\n\x1A\n" + std::string("\0\0\0\x0DIHDR\0\0\0\1\0\0\0\1\x08", 17) +
           colourType + std::string("\0\0\0\0\0\0\0\0\0\0\0", 11) + tag + "\0\0\0\0";
  };
  const std::string tga(16, '\0');
  EXPECT_TRUE(PictureCarriesAlpha(png(6, "IDAT"), "a.png"));
  EXPECT_TRUE(PictureCarriesAlpha(png(2, "tRNS"), "a.png"));
  EXPECT_FALSE(PictureCarriesAlpha(png(2, "IDAT"), "a.png"));
  EXPECT_FALSE(PictureCarriesAlpha("\xFF\xD8\xFF\xE0", "a.jpg"));
  EXPECT_TRUE(PictureCarriesAlpha(tga + '\x20', "a.TGA"));
  EXPECT_FALSE(PictureCarriesAlpha(tga + '\x18', "a.TGA"));
}

class EmbeddedTexture : public OpenedScene {
 protected:
  EmbeddedTexture() {
    m_settings.exportFolder = m_folder.File("out");
    std::filesystem::create_directory(m_settings.exportFolder);
  }
  std::string MapName() {
    OpenText(TexturedTriangle(R"("emissiveTexture":{"index":0},)", "data:image/png;base64,AAAA"),
             m_settings);
    return static_cast<BitmapTex*>(MaterialOf("a").GetSubTexmap(ID_DI))->GetMapName();
  }

  SceneSettings m_settings;
};

TEST_F(EmbeddedTexture, IsWrittenOnceUnderAStableName) {
  const std::string name = MapName();
  EXPECT_EQ(name, m_folder.File("out/crane_0.png"));
  EXPECT_EQ(ContentOf(name), std::string(3, '\0'));
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
std::string SkinnedFile(const std::string& joints, const std::string& roots) {
  return Gltf(roots, R"("meshes":[{"primitives":[{"attributes":{"POSITION":0,"JOINTS_0":2,)"
                     R"("WEIGHTS_0":3}}]}],"skins":[{"inverseBindMatrices":4,"joints":[)" +
                         joints + R"(]}],"nodes":[{"name":"top","children":[1,5,6]},
      {"name":"hips","children":[2]},{"name":"knee","children":[3]},
      {"name":"ankle","children":[4]},{"name":"toe"},{"name":"wheel"},
      {"name":"body","mesh":0,"skin":0}])");
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
    EXPECT_EQ(TreeOf(OpenText(SkinnedFile(c.joints, c.roots), settings)), c.tree);
    EXPECT_TRUE(m_scene->info.warnings.empty());
  }
  EXPECT_EQ(OpenText(SkinnedFile("1,2,6", "0"), settings).info.warnings.size(), 1u)
      << "a mesh's joint";
  EXPECT_EQ(OpenText(SkinnedFile("1,2,4", "0")).FindNode("b.hips"), nullptr);
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

TEST_F(OpenedScene, GltfSkinsNeedTheirInverseBindMatrices) {
  std::string text = ContentOf(ORV_TEST_DATA "/skinned.gltf");
  const std::string key = "inverseBindMatrices";
  text.replace(text.find(key), key.size(), "extras");
  for (const char* name : {"skinned.gltf", "SKINNED.GLTF"}) {
    WriteContent(m_folder.File(name), text);
    try {
      Open(m_folder.File(name));
      ADD_FAILURE() << "accepted";
    } catch (const SceneError& error) {
      EXPECT_NE(std::string(error.what()).find("skin 0 has no inverse bind matrices"),
                std::string::npos);
    }
  }
}

TEST_F(OpenedScene, FacesThatNameMissingVerticesAreLeftOut) {
  OpenText(Gltf("0", R"("meshes":[{"primitives":[{"attributes":{"POSITION":0},"indices":5}]}],)"
                     R"("nodes":[{"name":"a","mesh":0}])"));
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

}  // namespace
}  // namespace orv::host
