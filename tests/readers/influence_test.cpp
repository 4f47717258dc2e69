#include <gtest/gtest.h>

#include "SceneBuilders.h"
#include "readers/MaxExInfluence.h"

namespace orv {
namespace {

// A triangle skinned to its bones, with vertices at (0,0,0), (1,0,0) and (0,1,0) of its node.
class PhysiqueTest : public testing::Test {
 protected:
  MaxExGenericMeshInfluence Read(const std::vector<INode*>& bones,
                                 const std::vector<std::vector<host::BoneWeight>>& vertices) {
    std::vector<host::SkinBone> skin;
    for (INode* bone : bones) skin.push_back({bone, Matrix3(TRUE)});
    physique = &node.SetSkinnedMesh(TriangleMesh(), skin, Weights(vertices)).Physique();
    return MaxExGenericMeshInfluence(FindPhysique(&node), TriangleMesh(), &node, 0.5f);
  }

  host::Scene scene;
  host::MemoryNode& node = scene.AddNode("skin");
  host::MemoryNode& body = scene.AddNode("b.body");
  host::MemoryPhysique* physique = nullptr;
};

// Scale counts in where the vertices are, and not in the space of a bone.
TEST_F(PhysiqueTest, OffsetsAreInTheSpaceOfTheBone) {
  node.SetTransform(MovedBy(10, 0, 0));
  body.SetTransform(ScaledBy(2, 2, 2) * QuarterTurnAt(1, 0, 0));
  host::MemoryNode& arm = scene.AddNode("b.arm", &body);
  arm.SetTransform(MovedBy(3, 0, 0));
  const auto influence = Read({&body, &arm}, {{{0, 0.25f}, {0, 0.5f}}, {{1, 1.0f}}, {}});
  ASSERT_EQ(influence.m_bones.size(), 2u);
  const GenericBoneInfluence &first = *influence.m_bones[0], &second = *influence.m_bones[1];
  EXPECT_EQ(first.m_position, (Vec3{0.5f, 0, 0}));
  ASSERT_EQ(first.m_weights.size(), 1u);  // summed up
  EXPECT_EQ(first.m_weights[0].weight, 0.75f);
  EXPECT_EQ(first.m_weights[0].offset, (Vec3{0, -4.5f, 0}));
  EXPECT_EQ(second.m_parentName, "b.body");
  EXPECT_EQ(second.m_position, (Vec3{3, 0, 0}));
  EXPECT_EQ(second.m_weights[0].offset, (Vec3{-3, -5, 0}));
}

TEST_F(PhysiqueTest, BonesOfOneNameAreOneRecord) {
  host::MemoryNode& twin = scene.AddNode("B.Body");
  twin.SetTransform(MovedBy(0, 0, 5));
  const auto influence = Read({&body, &twin}, {{{0, 1.0f}}, {{1, 1.0f}}, {}});
  ASSERT_EQ(influence.m_bones.size(), 1u);
  EXPECT_EQ(influence.m_bones[0]->m_position, Vec3());
  ASSERT_EQ(influence.m_bones[0]->m_weights.size(), 2u);
  EXPECT_EQ(influence.m_bones[0]->m_weights[1].offset, (Vec3{0.5f, 0, -2.5f}));
}

TEST_F(PhysiqueTest, LongNamesAreCutAndStayOneBone) {
  host::MemoryNode& bone = scene.AddNode("b." + std::string(300, 'x'));
  const auto influence = Read({&bone}, {{{0, 1.0f}}, {{0, 1.0f}}, {}});
  ASSERT_EQ(influence.m_bones.size(), 1u);
  EXPECT_EQ(influence.m_bones[0]->m_name.size(), 255u);
}

TEST_F(PhysiqueTest, VerticesThatStayDeformableEndTheExport) {
  Read({&body}, {{{0, 1.0f}}, {}, {}});
  physique->staysDeformable = true;
  try {
    MaxExGenericMeshInfluence(physique, TriangleMesh(), &node, 1);
    ADD_FAILURE() << "nothing thrown";
  } catch (const Finding& finding) {
    EXPECT_EQ(finding.text, "Unsupported vertex type encountered in physique export");
  }
}

}  // namespace
}  // namespace orv
