#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "host/HostTesting.h"
#include "host/scene/MemoryHost.h"
#include "host/scene/Scene.h"
#include "host/scene/TransformTrack.h"

namespace orv::host {
namespace {

Matrix3 MoveBy(float x, float y, float z) {
  return Matrix3({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {x, y, z});
}

const Matrix3 kQuarterTurnAboutZ({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, 0});

TEST(MemoryNode, WorldIsLocalThenParent) {
  Scene scene;
  MemoryNode& arm = scene.AddNode("arm");
  MemoryNode& hand = scene.AddNode("hand", &arm);
  arm.SetTransform(kQuarterTurnAboutZ * MoveBy(10, 0, 0));
  hand.SetTransform(MoveBy(2, 0, 0));
  hand.SetObjectOffset(MoveBy(0, 0, 5));
  ExpectNear(hand.GetNodeTM(0).GetTrans(), {10, 2, 0});
  ExpectNear(hand.GetObjectTM(0).GetTrans(), {10, 2, 5});
  ExpectNear(hand.GetObjTMAfterWSM(0).GetTrans(), {10, 2, 5});
  EXPECT_EQ(hand.GetParentNode(), &arm);
  EXPECT_TRUE(arm.GetParentNode()->IsRootNode());
}

TEST(MemoryNode, MovesWithTimeAndWithItsParentsChanges) {
  Scene scene;
  scene.info.framesPerSecond = 24;
  MemoryNode& train = scene.AddNode("train");
  MemoryNode& wheel = scene.AddNode("wheel", &train);
  train.SetMotion([](double s) { return MoveBy(static_cast<float>(s), 0, 0); });
  const int frame = scene.TicksPerFrame();
  EXPECT_EQ(frame, 200);
  EXPECT_EQ(wheel.GetNodeTM(12 * frame).GetTrans().x, 0.5f);
  EXPECT_EQ(wheel.GetNodeTM(0).GetTrans().x, 0);
  EXPECT_EQ(wheel.GetNodeTM(-24 * frame).GetTrans().x, -1);
  EXPECT_EQ(wheel.GetNodeTM(12 * frame).GetTrans().x, 0.5f);
  train.SetTransform(MoveBy(7, 0, 0));
  EXPECT_EQ(wheel.GetNodeTM(0).GetTrans().x, 7);
  EXPECT_EQ(wheel.GetNodeTM(12 * frame).GetTrans().x, 7);
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

TEST(MemoryNode, WholeFramesFallOnTheirSecondsAtAnyRate) {
  for (const int rate : {1, 7, 24, 25, 30, 60, 120, 4800, 10000}) {
    Scene scene;
    scene.info.framesPerSecond = rate;
    for (const int frame : {0, 1, 10, 333, -5}) {
      EXPECT_EQ(scene.SecondsAt(frame * scene.TicksPerFrame()), static_cast<double>(frame) / rate);
    }
  }
}

TEST(Scene, SelectsAndHidesByName) {
  Scene scene;
  scene.AddNode("a");
  MemoryNode& twin1 = scene.AddNode("twin");
  MemoryNode& twin2 = scene.AddNode("twin", &twin1);
  EXPECT_FALSE(scene.Select("missing"));
  EXPECT_FALSE(scene.Select("Scene Root"));
  EXPECT_TRUE(scene.Select("twin"));
  EXPECT_TRUE(scene.Select("a"));
  EXPECT_TRUE(scene.Select("twin"));
  EXPECT_TRUE(scene.Hide("a"));
  MemoryHost host(scene);
  ASSERT_EQ(host.GetSelNodeCount(), 3);
  EXPECT_EQ(host.GetSelNode(1), &twin2);
  EXPECT_STREQ(host.GetSelNode(2)->GetName(), "a");
  EXPECT_TRUE(host.GetSelNode(2)->IsHidden());
  EXPECT_TRUE(twin1.Selected());
  EXPECT_FALSE(twin1.IsHidden());
  EXPECT_EQ(scene.FindNode("twin"), &twin1);
}

TEST(MemoryHost, AnswersForTheScene) {
  Scene scene;
  scene.info.fileName = "crane.gltf";
  scene.info.metresPerUnit = 0.0254;
  scene.info.framesPerSecond = 25;
  scene.info.firstFrame = -2;
  scene.info.lastFrame = 40;
  std::vector<std::string> progress;
  MemoryHost host(scene, [&](int percent, const char* title) {
    progress.push_back(std::to_string(percent) + (title ? title : "-"));
  });
  EXPECT_EQ(host.GetTime(), 0);
  EXPECT_EQ(host.GetAnimRange().Start(), -2 * 192);
  EXPECT_EQ(host.GetAnimRange().End(), 40 * 192);
  EXPECT_EQ(host.MasterScale(5), 0.0254);
  EXPECT_STREQ(host.GetCurFileName(), "crane.gltf");
  host.ProgressStart("Exporting", TRUE, nullptr, nullptr);
  host.ProgressUpdate(40, FALSE, "Reading");
  host.ProgressUpdate(50);
  host.ProgressEnd();
  EXPECT_EQ(progress, (std::vector<std::string>{"0Exporting", "40Reading", "50Reading", "100-"}));

  scene.info.lastFrame = 2'000'000'000;
  EXPECT_GT(host.GetAnimRange().End(), 0);
}

TEST(TransformTrack, InterpolatesBetweenKeysAndStandsStillOutside) {
  const double half = std::sqrt(0.5);
  TransformTrack track;
  track.scales = {{0, {1, 1, 1}}, {2, {3, 1, 1}}};
  track.rotations = {{0, {}}, {1, {0, 0, -half, -half}}};  // a quarter turn, the other sign
  track.translations = {{1, {0, 0, 0}}, {1, {5, 0, 0}}, {3, {7, 0, 0}}};
  const float cosine = static_cast<float>(std::cos(0.785398163397)), sine = cosine;
  const struct {
    double seconds;
    Point3 xAxis, yAxis, position;
  } cases[] = {
      {-1, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}},
      {0.5, {1.5f * cosine, 1.5f * sine, 0}, {-sine, cosine, 0}, {0, 0, 0}},
      {1, {0, 2, 0}, {-1, 0, 0}, {5, 0, 0}},
      {2, {0, 3, 0}, {-1, 0, 0}, {6, 0, 0}},
      {9, {0, 3, 0}, {-1, 0, 0}, {7, 0, 0}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.seconds);
    ExpectNear(track.At(c.seconds), Matrix3(c.xAxis, c.yAxis, {0, 0, 1}, c.position));
  }
}

// A triangle in a node away from the origin, whose vertices follow no bone, one, and two.
class SkinnedTriangle : public testing::Test {
 protected:
  SkinnedTriangle()
      : m_left(m_scene.AddNode("b.left")),
        m_right(m_scene.AddNode("b.right", &m_left)),
        m_node(m_scene.AddNode("body")) {
    m_node.SetTransform(kNodePlace);
    m_left.SetMotion([](double s) {
      return ComposeTransform({1, 1, 1}, {0, 0, std::sin(s), std::cos(s)}, {0, 0, 1});
    });
    m_right.SetTransform(MoveBy(3, 0, 0));
    MeshAssembler assembler(3, 1);
    assembler.BeginPart(0);
    const Point3 normal(0, 0.6f, 0.8f);
    const BoneWeight one[] = {{0, 1}}, two[] = {{0, 0.25f}, {1, 0.75f}};
    const std::span<const BoneWeight> weights[] = {{}, one, two};
    for (size_t v = 0; v < 3; ++v) assembler.AddVertex({kRest[v], &normal, nullptr, weights[v]});
    assembler.AddTriangle(0, 1, 2);
    AssembledMesh made = assembler.Finish();
    m_skin = &m_node.SetSkinnedMesh(
        std::move(made.mesh), {{&m_left, kToLeft}, {&m_right, kToRight}}, std::move(made.skin));
  }

  // Vertex 2 by hand: each bone's placing of it, mixed in world space.
  Point3 ExpectedBlend(TimeValue t) {
    const Point3 byLeft = kRest[2] * kToLeft * m_left.GetNodeTM(t);
    const Point3 byRight = kRest[2] * kToRight * m_right.GetNodeTM(t);
    return (byLeft * 0.25f + byRight * 0.75f) * Inverse(kNodePlace);
  }

  const Point3 kRest[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  const Matrix3 kNodePlace = kQuarterTurnAboutZ * MoveBy(5, 5, 0);
  const Matrix3 kToLeft = MoveBy(0, 0, -1);
  const Matrix3 kToRight = kQuarterTurnAboutZ * MoveBy(-3, 0, -1);
  Scene m_scene;
  MemoryNode& m_left;
  MemoryNode& m_right;
  MemoryNode& m_node;
  SkinnedObject* m_skin;
};

TEST_F(SkinnedTriangle, FollowsItsBonesInTheNodesSpace) {
  for (const TimeValue t : {0, 4800, 2400, 0}) {
    SCOPED_TRACE(t);
    Object* object = m_node.EvalWorldState(t).obj;
    ASSERT_TRUE(object->CanConvertToType(Class_ID(TRIOBJ_CLASS_ID, 0)));
    const Mesh& mesh = static_cast<TriObject*>(object)->GetMesh();
    EXPECT_EQ(mesh.verts[0], kRest[0]);
    ExpectNear(mesh.verts[1], kRest[1] * kToLeft * m_left.GetNodeTM(t) * Inverse(kNodePlace));
    ExpectNear(mesh.verts[2], ExpectedBlend(t));
    EXPECT_NEAR(Length(mesh.getRVert(2).rn.getNormal()), 1, 1e-6);
    const Matrix3 leftPose = kToLeft * m_left.GetNodeTM(t) * Inverse(kNodePlace);
    ExpectNear(mesh.getRVert(1).rn.getNormal(), VectorTransform(leftPose, {0, 0.6f, 0.8f}));
  }
}

TEST_F(SkinnedTriangle, IsPosedAnewWhenABoneIsMoved) {
  m_node.EvalWorldState(0);
  m_left.SetTransform(MoveBy(0, 0, 9));
  const Mesh& mesh = static_cast<TriObject*>(m_node.EvalWorldState(0).obj)->GetMesh();
  ExpectNear(mesh.verts[2], ExpectedBlend(0));
}

TEST_F(SkinnedTriangle, ShowsItsModifierAndTheMeshBelow) {
  m_node.EvalWorldState(4800);
  ASSERT_EQ(m_node.GetObjectRef()->SuperClassID(), GEN_DERIVOB_CLASS_ID);
  auto* derived = static_cast<IDerivedObject*>(m_node.GetObjectRef());
  ASSERT_EQ(derived->NumModifiers(), 1);
  EXPECT_EQ(derived->GetModifier(0)->ClassID(), Class_ID(PHYSIQUE_CLASS_ID_A, PHYSIQUE_CLASS_ID_B));
  Object* rest = derived->GetObjRef()->ConvertToType(0, Class_ID(TRIOBJ_CLASS_ID, 0));
  ASSERT_NE(rest, derived->GetObjRef());
  EXPECT_EQ(static_cast<TriObject*>(rest)->GetMesh().verts[1], kRest[1]);
  EXPECT_EQ(static_cast<TriObject*>(rest)->GetMesh().getRVert(2).rn.getNormal(),
            Point3(0, 0.6f, 0.8f));
  rest->DeleteThis();
}

TEST_F(SkinnedTriangle, PhysiqueTellsRigidFromBlended) {
  auto* physique = static_cast<IPhysiqueExport*>(m_skin->Physique().GetInterface(I_PHYINTERFACE));
  EXPECT_EQ(physique->GetContextInterface(&m_left), nullptr);
  IPhyContextExport* context = physique->GetContextInterface(&m_node);
  ASSERT_EQ(context->GetNumberVertices(), 3);
  EXPECT_NE(context->GetVertexInterface(1)->GetVertexType(), RIGID_TYPE);
  context->ConvertToRigid(TRUE);
  ASSERT_EQ(context->GetVertexInterface(0)->GetVertexType(), RIGID_BLENDED_TYPE);
  EXPECT_EQ(static_cast<IPhyBlendedRigidVertex*>(context->GetVertexInterface(0))->GetNumberNodes(),
            0);
  ASSERT_EQ(context->GetVertexInterface(1)->GetVertexType(), RIGID_TYPE);
  EXPECT_EQ(static_cast<IPhyRigidVertex*>(context->GetVertexInterface(1))->GetNode(), &m_left);
  ASSERT_EQ(context->GetVertexInterface(2)->GetVertexType(), RIGID_BLENDED_TYPE);
  auto* blended = static_cast<IPhyBlendedRigidVertex*>(context->GetVertexInterface(2));
  ASSERT_EQ(blended->GetNumberNodes(), 2);
  EXPECT_EQ(blended->GetNode(1), &m_right);
  EXPECT_EQ(blended->GetWeight(1), 0.75f);
}

}  // namespace
}  // namespace orv::host
