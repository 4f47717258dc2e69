#include <gtest/gtest.h>

#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
#include "scene/MaxExNodes.h"
#include "scene/MaxExSkeleton.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

// "parent(child child(grandchild))"
std::string TreeText(const GenericSkeleton::Node& bone) {
  std::string text = bone.Name();
  if (bone.m_children.empty()) return text;
  for (size_t i = 0; i < bone.m_children.size(); ++i) {
    text += (i == 0 ? "(" : " ") + TreeText(*bone.m_children[i]);
  }
  return text + ")";
}

std::string TreeText(const GenericSkeleton& skeleton) {
  return skeleton.m_root ? TreeText(*skeleton.m_root) : "";
}

class SkeletonTest : public testing::Test {
 protected:
  host::MemoryNode& Add(const char* name, const char* parent = nullptr) {
    return scene.AddNode(name, parent ? scene.FindNode(parent) : nullptr);
  }
  // Of the named nodes in this order.
  MaxExGenericSkeleton Of(std::initializer_list<const char*> names) {
    std::vector<INode*> bones;
    for (const char* name : names) bones.push_back(scene.FindNode(name));
    return MaxExGenericSkeleton(bones);
  }
  Lines StrayWarnings(const MaxExGenericSkeleton& skeleton) {
    RecordingUserInterface ui;
    skeleton.ReportStrayRoots(ui);
    return ui.log;
  }

  host::Scene scene;
};

TEST_F(SkeletonTest, ParentsAreTheNearestBonesAbove) {
  Add("b.hip");
  Add("group", "b.hip");
  Add("b.knee", "group");
  Add("b.spine", "b.hip");
  Add("empty", "b.knee");
  Add("empty below", "empty");
  Add("b.foot", "empty below");
  Add("b.toe", "b.foot");
  EXPECT_EQ(TreeText(Of({"b.hip", "b.knee", "b.foot", "b.toe", "b.spine"})),
            "b.hip(b.knee(b.foot(b.toe)) b.spine)");
  // In the order of the hand-over, parents or children first; who is not handed over is no bone.
  EXPECT_EQ(TreeText(Of({"b.spine", "b.toe", "b.knee", "b.hip"})), "b.hip(b.spine b.knee(b.toe))");
  EXPECT_EQ(TreeText(Of({"b.hip", "b.hip", "b.spine"})), "b.hip(b.spine)");
  EXPECT_EQ(TreeText(Of({})), "");
}

TEST_F(SkeletonTest, FurtherRootsAreLeftOutWithAllBelow) {
  Add("b.first");
  Add("b.stray");
  Add("b.below stray", "b.stray");
  Add("b.other");
  const MaxExGenericSkeleton skeleton = Of({"b.first", "b.below stray", "b.stray", "b.other"});
  EXPECT_EQ(TreeText(skeleton), "b.first");
  EXPECT_EQ(StrayWarnings(skeleton),
            (Lines{"warning: Ignoring bone - not below the first bone root:b.stray",
                   "warning: Ignoring bone - not below the first bone root:b.other"}));
  EXPECT_NE(skeleton.FindBone(scene.FindNode("b.first")), nullptr);
  EXPECT_EQ(skeleton.FindBone(scene.FindNode("b.stray")), nullptr);
  EXPECT_EQ(skeleton.FindBone(scene.FindNode("b.below stray")), nullptr);
  EXPECT_EQ(StrayWarnings(Of({"b.first"})), Lines());
}

TEST_F(SkeletonTest, AllBonesAnswerAtTheFrameThatAnySkeletonWasSetTo) {
  host::MemoryHost memoryHost(scene);
  SetHostCore(&memoryHost);
  Add("b.a").SetMotion([](double seconds) {
    return ScaledBy(2, 3, 4) *
           QuarterTurnAt(static_cast<float>(seconds) * 30, 0, 0);  // a unit a frame
  });
  MaxExGenericSkeleton skeleton = Of({"b.a"}), other = Of({"b.a"});
  skeleton.SetFrame(7);
  EXPECT_EQ(skeleton.m_root->Position(), (Vec3{7, 0, 0}));
  EXPECT_EQ(other.m_root->Position(), (Vec3{7, 0, 0}));
  other.SetFrame(-2);
  EXPECT_EQ(skeleton.m_root->Position(), (Vec3{-2, 0, 0}));
  const Quaternion rotation = skeleton.m_root->Rotation();
  EXPECT_NEAR(rotation.z, -0.70710678, 1e-7);
  EXPECT_NEAR(rotation.w, 0.70710678, 1e-7);
  skeleton.SetFrame(0);
  SetHostCore(nullptr);
}

TEST_F(SkeletonTest, NamesAndObjectsDecideTheRole) {
  const struct {
    const char* name;
    bool pointHelper;
    NodeRole role;
    bool bindsItsChildren;
  } cases[] = {
      {"B.Spine", false, NodeRole::Bone, false},
      {"b.", false, NodeRole::Bone, false},
      {"xb.spine", false, NodeRole::MeshSource, false},
      {"b", false, NodeRole::MeshSource, false},
      {"", false, NodeRole::MeshSource, false},
      {"b.hook", true, NodeRole::AttachmentPoint, false},
      {"arm r.1", false, NodeRole::MeshSource, true},
      {"b.arm r.", false, NodeRole::Bone, true},
      {"R.arm", false, NodeRole::MeshSource, false},
  };
  for (const auto& c : cases) {
    host::MemoryNode& node = Add(c.name);
    if (c.pointHelper) node.MakePointHelper();
    EXPECT_EQ(RoleOf(&node), c.role) << c.name;
    EXPECT_EQ(IsBone(&node), c.role == NodeRole::Bone) << c.name;
    EXPECT_EQ(BindsItsChildren(&node), c.bindsItsChildren) << c.name;
  }
}

TEST(NodeList, NodesAreTakenAgainUnlessOnlyOnce) {
  host::Scene scene;
  INode *a = &scene.AddNode("a"), *b = &scene.AddNode("b");
  MaxExNodeList list;
  list.Add(a, true);
  list.Add(b, false);
  list.Add(a, true);
  list.Add(b, true);
  list.Add(a, false);
  EXPECT_EQ(std::vector(list.Nodes().begin(), list.Nodes().end()), (std::vector{a, b, a}));
  list.Clear();
  list.Add(a, true);
  EXPECT_EQ(list.Nodes().size(), 1u);
}

}  // namespace
}  // namespace orv
