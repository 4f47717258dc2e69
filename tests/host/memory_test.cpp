#include <gtest/gtest.h>

#include <iterator>

#include "host/memory/MemoryHost.h"

namespace orv::host {
namespace {

Matrix3 MoveBy(float x, float y, float z) {
  return Matrix3({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {x, y, z});
}

// +90 degrees about z, twice as large, then moved.
Matrix3 TurnAt(float x, float y, float z) {
  return Matrix3({0, 2, 0}, {-2, 0, 0}, {0, 0, 2}, {x, y, z});
}

Matrix3 FrameMove(double seconds) { return MoveBy(static_cast<float>(seconds * 30), 0, 0); }

TEST(MemoryNode, StandsWhereOffsetNodeAndParentsPutIt) {
  Scene scene;
  MemoryNode& parent = scene.AddNode("parent");
  MemoryNode& child = scene.AddMeshNode("child", Mesh(), nullptr, &parent);
  parent.SetTransform(TurnAt(0, 0, 7));
  child.SetTransform(MoveBy(3, 0, 0));
  child.SetObjectOffset(TurnAt(0, 1, 0));
  for (const TimeValue t : {0, 160}) {
    EXPECT_EQ(Point3(1, 0, 0) * child.GetNodeTM(t), Point3(0, 8, 7));
    EXPECT_EQ(Point3(1, 0, 0) * child.GetObjectTM(t), Point3(-6, 6, 7));
    EXPECT_EQ(child.GetObjTMAfterWSM(t), child.GetObjectTM(t));
  }
  parent.SetMotion(FrameMove);
  EXPECT_EQ(child.GetNodeTM(320).GetTrans(), Point3(5, 0, 0));
  EXPECT_EQ(child.GetNodeTM(480).GetTrans(), Point3(6, 0, 0));
  parent.SetTransform(MoveBy(0, 1, 0));
  EXPECT_EQ(child.GetNodeTM(480).GetTrans(), Point3(3, 1, 0));
}

TEST(MemoryNode, DeepTreesAreWalkedWithoutRecursion) {
  Scene scene;
  MemoryNode* node = &scene.Root();
  for (int i = 0; i < 200000; ++i) {
    node = &scene.AddNode("link", node);
    node->SetTransform(MoveBy(1, 0, 0));
  }
  EXPECT_EQ(node->GetNodeTM(0).GetTrans().x, 200000);
}

// A triangle of which corner 0 follows no bone, 1 the first, 2 both; the second stands turned.
TEST(MemorySkin, IsPosedByItsBonesAtEachTime) {
  Scene scene;
  MemoryNode& first = scene.AddNode("first");
  MemoryNode& second = scene.AddNode("second");
  MemoryNode& skin = scene.AddNode("skin");
  first.SetMotion(FrameMove);
  Mesh mesh;
  mesh.setNumVerts(3);
  const Point3 points[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  std::copy(std::begin(points), std::end(points), mesh.verts);
  mesh.setNumFaces(1);
  mesh.faces[0].setVerts(0, 1, 2);
  const RNormal normals[] = {{{0, 0, 1}, 1}, {{0, 0, 1}, 1}, {{1, 0, 0}, 1}, {{0, 1, 0}, 2}};
  ASSERT_TRUE(mesh.specifyNormals(std::vector<uint8_t>{1, 1, 2}, normals));
  SkinnedObject& skinned =
      skin.SetSkinnedMesh(mesh, {{&first, MoveBy(0, 0, 4)}, {&second, Matrix3(TRUE)}},
                          {{0, 0, 1, 3}, {{0, 1}, {0, 0.25f}, {1, 0.75f}}});
  const auto posed = [&](TimeValue t) -> Mesh& {
    return static_cast<TriObject*>(skin.EvalWorldState(t).obj)->GetMesh();
  };
  EXPECT_EQ(posed(0).verts[1], Point3(1, 0, 4));
  second.SetTransform(TurnAt(0, 0, 0));
  EXPECT_EQ(posed(0).verts[2], Point3(-1.5f, 0.25f, 1)) << "posed anew";
  EXPECT_EQ(posed(1280).verts[0], Point3());
  EXPECT_EQ(posed(1280).verts[1], Point3(9, 0, 4));
  EXPECT_EQ(posed(1280).verts[2], Point3(0.5f, 0.25f, 1));
  skin.SetTransform(MoveBy(1, 1, 1));
  EXPECT_EQ(posed(1280).verts[1], Point3(8, -1, 3)) << "in the node's own space";
  const RNormal* turned = posed(1280).getRVert(2).ern;
  EXPECT_LT(Length(turned[0].getNormal() - Normalize({0.25f, 1.5f, 0})), 1e-6);
  EXPECT_LT(Length(turned[1].getNormal() - Normalize({-1.5f, 0.25f, 0})), 1e-6);
  auto* physique = static_cast<IPhysiqueExport*>(skinned.Physique().GetInterface(I_PHYINTERFACE));
  EXPECT_NE(physique->GetContextInterface(&skin), nullptr);
  EXPECT_EQ(physique->GetContextInterface(&first), nullptr) << "not on this node";
}

TEST(Scene, WholeFramesFallOnTheirSecondsAtAnyRate) {
  for (const int rate : {1, 7, 24, 25, 30, 60, 120, 4800, 10000}) {
    Scene scene;
    scene.info.framesPerSecond = rate;
    for (const int frame : {0, 1, 10, 333, -5}) {
      EXPECT_EQ(scene.SecondsAt(frame * scene.TicksPerFrame()), static_cast<double>(frame) / rate);
    }
  }
}

TEST(Scene, SelectsAndCountsNodes) {
  Scene scene;
  Mesh mesh;
  mesh.setNumVerts(4);
  mesh.setNumFaces(2);
  scene.AddMeshNode("twin", mesh);
  scene.AddPointHelper("twin");
  scene.AddNode("skin").SetSkinnedMesh(mesh, {}, {{0, 0, 0, 0, 0}, {}});
  EXPECT_TRUE(scene.Select("twin"));
  EXPECT_TRUE(scene.Select("twin"));
  EXPECT_FALSE(scene.Select("Scene Root"));
  EXPECT_EQ(scene.Selection().size(), 2u);
  const SceneStatistics count = scene.Statistics();
  EXPECT_EQ((std::vector{count.nodes, count.meshNodes, count.skinnedNodes, count.pointHelpers,
                         count.vertices, count.triangles}),
            (std::vector<size_t>{3, 2, 1, 1, 8, 4}));
}

TEST(MemoryCrop, AnswersByNumber) {
  MemoryCrop crop;
  crop.u = 1, crop.v = 2, crop.width = 3, crop.height = 4;
  for (ParamID id = 0; id < 8; ++id) EXPECT_EQ(crop.GetFloat(id), id < 4 ? id + 1 : 0);
  EXPECT_EQ(crop.GetInt(6), 0);
  crop.on = true;
  for (ParamID id = 0; id < 8; ++id) EXPECT_EQ(crop.GetInt(id), id == 6);
}

TEST(MemoryHost, AnswersWhatTheSceneSays) {
  Scene scene;
  scene.info.framesPerSecond = 24;
  scene.info.firstFrame = -2;
  scene.info.lastFrame = 2'000'000'000;
  scene.info.metresPerUnit = 0.01;
  scene.info.ownBitmaps = {"out/own.png"};
  std::vector<std::string> bar;
  MemoryHost host(scene, [&](int percent, const char* title) {
    bar.push_back(std::to_string(percent) + (title ? title : " gone"));
  });
  EXPECT_EQ(host.GetAnimRange().Start(), -400);
  EXPECT_GT(host.GetAnimRange().End(), 0);
  EXPECT_EQ(host.MasterScale(5), 0.01);
  EXPECT_EQ(host.MasterScale(4), 1);
  char found[12];
  EXPECT_TRUE(host.FindBitmap("out/own.png", found, 12));
  EXPECT_STREQ(found, "out/own.png");
  EXPECT_FALSE(host.FindBitmap("out/own.png", found, 11));
  host.ProgressStart(" begun", TRUE, nullptr, nullptr);
  host.ProgressUpdate(40);
  host.ProgressUpdate(50, TRUE, " on");
  host.ProgressEnd();
  EXPECT_EQ(bar, (std::vector<std::string>{"0 begun", "40 begun", "50 on", "100 gone"}));
}

}  // namespace
}  // namespace orv::host
