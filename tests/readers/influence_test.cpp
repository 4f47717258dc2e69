#include <gtest/gtest.h>

#include "SceneBuilders.h"
#include "scene/MaxExInfluence.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

std::string Text(Vec3 v) {
  char text[100];
  std::snprintf(text, sizeof(text), "(%g %g %g)", v.x + 0, v.y + 0, v.z + 0);  // no "-0"
  return text;
}

// "bone < parent at position: vertex x weight at offset, ..."
Lines LinesOf(const GenericMeshInfluence& influence) {
  Lines lines;
  for (const auto& bone : influence.m_bones) {
    std::string line = bone->m_name + " < " + bone->m_parentName + " at " + Text(bone->m_position);
    for (const VertexWeight& w : bone->m_weights) {
      char text[40];
      std::snprintf(text, sizeof(text), ": %u x %g at ", w.vertex, w.weight);
      line += text + Text(w.offset);
    }
    lines.push_back(line);
  }
  return lines;
}

// A triangle skinned to its bones, with vertices at (0,0,0), (1,0,0) and (0,1,0) of its node.
class PhysiqueTest : public testing::Test {
 protected:
  Lines Read(const std::vector<INode*>& bones,
             const std::vector<std::vector<host::BoneWeight>>& vertices, float scale = 1) {
    std::vector<host::SkinBone> skin;
    for (INode* bone : bones) skin.push_back({bone, Matrix3(TRUE)});
    physique = &node.SetSkinnedMesh(TriangleMesh(), skin, Weights(vertices)).Physique();
    return LinesOf(MaxExGenericMeshInfluence(FindPhysique(&node), TriangleMesh(), &node, scale));
  }

  host::Scene scene;
  host::MemoryNode& node = scene.AddNode("skin");
  host::MemoryNode& body = scene.AddNode("b.body");
  host::MemoryNode& arm = scene.AddNode("b.arm", &body);
  host::MemoryPhysique* physique = nullptr;
};

// Scale counts in where the vertices are, and not in the space of a bone.
TEST_F(PhysiqueTest, OffsetsAreInTheSpaceOfTheBone) {
  node.SetTransform(MovedBy(10, 0, 0));
  body.SetTransform(ScaledBy(2, 2, 2) * QuarterTurnAt(1, 0, 0));
  arm.SetTransform(MovedBy(3, 0, 0));
  EXPECT_EQ(Read({&body, &arm}, {{{0, 1.0f}}, {{1, 1.0f}}, {}}, 0.5f),
            (Lines{"b.body <  at (0.5 0 0): 0 x 1 at (0 -4.5 0)",
                   "b.arm < b.body at (3 0 0): 1 x 1 at (-3 -5 0)"}));
}

TEST_F(PhysiqueTest, BonesOfOneNameAreOneRecord) {
  INode& twin = scene.AddNode("B.Body");
  scene.FindNode("B.Body")->SetTransform(MovedBy(0, 0, 5));
  EXPECT_EQ(Read({&body, &twin}, {{{0, 1.0f}}, {{1, 1.0f}}, {}}),
            (Lines{"b.body <  at (0 0 0): 0 x 1 at (0 0 0): 1 x 1 at (1 0 -5)"}));
}

TEST_F(PhysiqueTest, LongNamesAreCutAndStayOneBone) {
  host::MemoryNode& bone = scene.AddNode("b." + std::string(300, 'x'));
  const Lines lines = Read({&bone}, {{{0, 1.0f}}, {{0, 1.0f}}, {}});
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].find(' '), 255u);
}

TEST_F(PhysiqueTest, VerticesThatStayDeformableEndTheExport) {
  Read({&body}, {{{0, 1.0f}}, {}, {}});
  physique->staysDeformable = true;
  try {
    MaxExGenericMeshInfluence(physique, TriangleMesh(), &node, 1);
    ADD_FAILURE() << "nothing thrown";
  } catch (const char* text) {
    EXPECT_STREQ(text, "Unsupported vertex type encountered in physique export");
  }
}

}  // namespace
}  // namespace orv
