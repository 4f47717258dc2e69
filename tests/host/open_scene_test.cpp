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

TEST_F(OpenedScene, TurnsEachNodesSpaceFromYUpToZUp) {
  const Gltf file =
      OneTriangle(R"({"name":"mast","children":[1],"translation":[1,2,3]},)"
                  R"({"name":"mirrored","mesh":0,"translation":[0,10,0],"scale":[1,1,-2]})");
  Open(file, "0");
  const Matrix3 mast = m_scene->FindNode("mast")->GetNodeTM(0);
  ExpectNear(mast, Matrix3({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, -3, 2}));
  const Matrix3 mirrored = m_scene->FindNode("mirrored")->GetNodeTM(0);
  ExpectNear(mirrored, Matrix3({1, 0, 0}, {0, -2, 0}, {0, 0, 1}, {1, -3, 12}));
  Mesh& mesh = MeshOf("mirrored");
  EXPECT_EQ(mesh.verts[1], Point3(1, 0, 0));
  EXPECT_EQ(mesh.verts[2], Point3(0, 0, 1));
  EXPECT_EQ(LookUpNormal(mesh, 0, 0), Point3(0, -1, 0));
  EXPECT_FALSE(std::signbit(mesh.verts[1].y)) << "-0 where nothing is";

  SceneSettings asItIs;
  asItIs.upAxis = "z";
  Open(file, "0", asItIs);
  ExpectNear(m_scene->FindNode("mast")->GetNodeTM(0).GetTrans(), {1, 2, 3});
  EXPECT_EQ(MeshOf("mirrored").verts[2], Point3(0, 1, 0));
}

TEST_F(OpenedScene, RotationsKeepTheirSense) {
  const float h = std::sqrt(0.5f);
  const std::string turn =
      R"("rotation":[0,)" + std::to_string(h) + ",0," + std::to_string(h) + "]";
  Open(OneTriangle(R"({"name":"turned","mesh":0,)" + turn + "}"), "0");
  // A quarter about the file's upright axis is one about the host's.
  ExpectNear(m_scene->FindNode("turned")->GetNodeTM(0),
             Matrix3({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, 0}));
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

TEST_F(OpenedScene, LeavesThatShowNothingAreHelpersUnlessTheyAreBones) {
  const Gltf file =
      OneTriangle(R"({"name":"a","mesh":0,"children":[1,2,3]},{"name":"hook"},)"
                  R"({"name":"B.tip"},{"name":"group","children":[4]},{"name":"light"})");
  EXPECT_EQ(TreeOf(Open(file, "0")), ">a:mesh a>hook:point a>B.tip a>group group>light:point ");
  EXPECT_FALSE(m_scene->FindNode("group")->EvalWorldState(0).obj->CanConvertToType(
      Class_ID(TRIOBJ_CLASS_ID, 0)));
}

TEST_F(OpenedScene, NodesOfTheSameMeshShareTheirObject) {
  Open(OneTriangle(R"({"name":"a","mesh":0},{"name":"b","mesh":0})"), "0,1");
  EXPECT_EQ(m_scene->FindNode("a")->EvalWorldState(0).obj,
            m_scene->FindNode("b")->EvalWorldState(0).obj);
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

// "name name; face materials"; a dash for none.
std::string MaterialsOf(MemoryNode& node) {
  Mtl* material = node.GetMtl();
  if (!material) return "-";
  std::string text;
  if (material->ClassID() == Class_ID(DMTL_CLASS_ID, 0)) return material->GetName().data();
  for (int i = 0; i < material->NumSubMtls(); ++i) {
    Mtl* sub = material->GetSubMtl(i);
    text += sub ? "[" + std::string(sub->GetName()) + "]" : "-";
  }
  const Mesh& mesh = static_cast<TriObject*>(node.EvalWorldState(0).obj)->GetMesh();
  for (int face = 0; face < mesh.getNumFaces(); ++face) {
    text += " " + std::to_string(mesh.faces[face].getMatID());
  }
  return text;
}

TEST_F(OpenedScene, OneMaterialIsStandardAndSeveralAreSubMaterials) {
  const struct {
    std::vector<int> parts;
    const char *plain, *withDefault;
  } cases[] = {
      {{0}, "red", "red"},
      {{0, 0}, "red", "red"},
      {{1, 0, 1}, "[Blue][red] 0 1 0", "[Blue][red] 0 1 0"},
      {{-1}, "-", "rail.m.notex"},
      {{-1, -1}, "-", "rail.m.notex"},
      {{0, -1, 0}, "[red]- 0 1 0", "[red][rail.m.notex] 0 1 0"},
      {{2}, "", ""},  // nameless, but the file's own
      {{2, -1}, "[]- 0 1", "[][rail.m.notex] 0 1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.parts));
    SceneSettings settings;
    EXPECT_EQ(MaterialsOf(*Open(PartsOf(c.parts), "0").FindNode("a")), c.plain);
    settings.defaultMaterial = "rail.m.notex";
    EXPECT_EQ(MaterialsOf(*Open(PartsOf(c.parts), "0", settings).FindNode("a")), c.withDefault);
  }
}

TEST_F(OpenedScene, PartsWithoutTexCoordsUseOneAtTheOrigin) {
  Gltf file;
  const std::string with = file.TrianglePrimitive(0);
  file.meshes = Gltf::Mesh(with + "," + file.TrianglePrimitive(1, false));
  file.materials = R"({"name":"red"},{"name":"blue"})";
  file.nodes = R"({"name":"a","mesh":0})";
  Open(file, "0");
  const Mesh& mesh = MeshOf("a");
  ASSERT_EQ(mesh.getNumTVerts(), 4);
  EXPECT_EQ(mesh.tVerts[mesh.tvFace[0].t[2]], Point3(0, 0.75f, 0)) << "v runs up";
  for (const DWORD t : mesh.tvFace[1].t) EXPECT_EQ(mesh.tVerts[t], Point3(0, 0, 0));
}

TEST_F(OpenedScene, MaterialsTakeTheirValuesMapsAndTiling) {
  Gltf file = PartsOf({0});
  file.materials =
      R"({"name":"Wall","doubleSided":true,"emissiveFactor":[0.5,0.25,0],)"
      R"("pbrMetallicRoughness":{"baseColorFactor":[0.1,0.2,0.3,1],"baseColorTexture":{"index":0},)"
      R"("metallicRoughnessTexture":{"index":1}},"normalTexture":{"index":2,"scale":0.5}})";
  file.textures = R"({"source":0,"sampler":0},{"source":1},{"source":2,"sampler":1})";
  file.images = R"({"uri":"maps/wall.png"},{"uri":"rough.png"},{"uri":"bumps.png"})";
  file.samplers = R"({"wrapS":10497,"wrapT":33071},{"wrapS":33071,"wrapT":33648})";
  Open(file, "0");
  StdMat2& wall = MaterialOf("a");
  EXPECT_STREQ(wall.GetName(), "Wall");
  EXPECT_TRUE(wall.GetTwoSided());
  EXPECT_TRUE(wall.GetSelfIllumColorOn());
  EXPECT_EQ(wall.GetSelfIllumColor(), Color(0.5f, 0.25f, 0));
  EXPECT_EQ(wall.GetDiffuse(0), Color(0.1f, 0.2f, 0.3f));
  EXPECT_EQ(wall.GetOpacity(0), 1);
  EXPECT_EQ(wall.GetTexmapAmt(ID_DI, 0), 1);
  EXPECT_EQ(wall.GetTexmapAmt(ID_BU, 0), 0.5f);
  std::string maps;
  for (int slot = 0; slot < wall.NumSubTexmaps(); ++slot) {
    auto* map = static_cast<BitmapTex*>(wall.GetSubTexmap(slot));
    if (!map) continue;
    maps += std::to_string(slot) + map->GetMapName() + " " +
            std::to_string(map->GetUVGen()->GetTextureTiling()) +
            (map->GetAlphaSource() == ALPHA_FILE ? "a " : " ");
  }
  EXPECT_EQ(maps, "1maps/wall.png 1 3rough.png 3 8bumps.png 2 ");
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

TEST_F(EmbeddedTexture, StaysInTheFileWithoutAFolder) {
  m_settings.exportFolder.clear();
  EXPECT_EQ(MapName(), "crane_0.png");
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
  const std::string times = std::to_string(file.Floats("SCALAR", {0.5f, 1.5f}));
  const std::string moves = std::to_string(file.Floats("VEC3", {0, 1, 0, 0, 3, 4}));
  file.animations = R"({"name":"walk","samplers":[{"input":)" + times + R"(,"output":)" + moves +
                    R"(}],"channels":[{"sampler":0,"target":{"node":2,"path":"translation"}}]},)"
                    R"({"name":"idle","samplers":[{"input":)" +
                    times + R"(,"output":)" + moves +
                    R"(}],"channels":[{"sampler":0,"target":{"node":1,"path":"translation"}}]})";
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

TEST_F(OpenedScene, SkinsFollowTheirBonesWithWeightsThatSumToOne) {
  Open(SkinnedFile("1,2,4"), "0");
  MemoryNode& body = *m_scene->FindNode("body");
  ASSERT_NE(body.Skin(), nullptr);
  MemoryNode& hips = *m_scene->FindNode("hips");
  const auto pose = [&](TimeValue t) -> const Mesh& {
    return static_cast<TriObject*>(body.EvalWorldState(t).obj)->GetMesh();
  };
  // In the body's space, which stands at (9, 9, 9) in the file, the bones' places count alone.
  ExpectNear(pose(0).verts[0], {-9, 9, -9});
  ExpectNear(pose(0).verts[1], {1 - 9, 9, -9});
  // At 1.5 s the knee has moved by (0, 2, 4) in the file: three quarters of it here, all there.
  const TimeValue end = 45 * m_scene->TicksPerFrame();
  ExpectNear(pose(end).verts[0], {-9, 9, -9});
  ExpectNear(pose(end).verts[1], {1 - 9, 9 - 3, 1.5f - 9});
  ExpectNear(pose(end).verts[2], {-9, 9 - 4, 1 + 2 - 9});
  EXPECT_EQ(hips.GetNodeTM(end).GetTrans(), Point3(0, 0, 0));
}

TEST_F(OpenedScene, PlaysTheWantedAnimation) {
  Scene& walking = Open(SkinnedFile("1,2,4"), "0");
  EXPECT_EQ(walking.info.animations, (std::vector<std::string>{"walk", "idle"}));
  EXPECT_EQ(walking.info.framesPerSecond, 30);
  EXPECT_EQ(walking.info.lastFrame, 45);
  const auto kneeAt = [&](double frame) {
    const int ticks = static_cast<int>(frame * m_scene->TicksPerFrame());
    return m_scene->FindNode("knee")->GetNodeTM(ticks).GetTrans();
  };
  ExpectNear(kneeAt(0), {0, 0, 1});
  ExpectNear(kneeAt(30), {0, -2, 2});
  ExpectNear(kneeAt(500), {0, -4, 3});

  SceneSettings settings;
  settings.animation = "idle";
  settings.framesPerSecond = 10;
  settings.frames = {2, 8};
  Open(SkinnedFile("1,2,4"), "0", settings);
  EXPECT_EQ(m_scene->info.animation, "idle");
  EXPECT_EQ(m_scene->info.firstFrame, 2);
  EXPECT_EQ(m_scene->info.lastFrame, 8);
  ExpectNear(kneeAt(10), {0, -2, 3});

  settings.animation = "run";
  const std::string reason = ReasonFor(m_folder.File("crane.gltf"), settings);
  EXPECT_NE(reason.find("\"walk\", \"idle\""), std::string::npos) << reason;
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

TEST_F(OpenedScene, NamesThatAreNotAsciiWork) {
  const std::string path = m_folder.File("größe_列車.gltf");
  WriteContent(path, OneTriangle(R"({"name":"Räder","mesh":0})").Text("0"));
  EXPECT_EQ(Open(path).info.fileName, "größe_列車.gltf");
  EXPECT_TRUE(m_scene->Select("Räder"));
}

}  // namespace
}  // namespace orv::host
