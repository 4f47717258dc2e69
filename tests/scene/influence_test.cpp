#include "scene/GenericInfluence.h"

#include <gtest/gtest.h>

namespace orv {
namespace {

void AddBone(GenericMeshInfluence& influence, const char* name, std::vector<VertexWeight> weights) {
  auto bone = std::make_unique<GenericBoneInfluence>(name, "b.root", Vec3{1, 2, 3},
                                                     Matrix33{Vec3{1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  bone->m_weights = std::move(weights);
  influence.AddBone(std::move(bone));
}

TEST(Influence, FindBoneIgnoresAsciiCaseAndTakesTheFirst) {
  GenericMeshInfluence influence;
  AddBone(influence, "b.Arm", {});
  EXPECT_EQ(influence.FindBone("b.leg"), nullptr);
  AddBone(influence, "B.ARM", {});
  AddBone(influence, "b.\xC4", {});
  influence.m_bones.push_back(std::make_unique<GenericBoneInfluence>());  // as splitting does
  influence.m_bones.back()->m_name = "b.leg";
  EXPECT_EQ(influence.FindBone("b.aRM"), influence.m_bones[0].get());
  EXPECT_EQ(influence.FindBone("B.LEG"), influence.m_bones[3].get());
  EXPECT_EQ(influence.FindBone("b.ar"), nullptr);
  EXPECT_EQ(influence.FindBone("b.\xE4"), nullptr);  // no letter in ASCII
  influence.m_bones.erase(influence.m_bones.begin());
  EXPECT_EQ(influence.FindBone("b.arm"), influence.m_bones[0].get());
}

TEST(Influence, MergeShiftsVerticesAndKeepsDuplicates) {
  GenericMeshInfluence influence, other;
  AddBone(influence, "b.arm", {{7, 1, {}}});
  AddBone(other, "b.arm", {{5, 0.5f, {1, 1, 1}}, {0, 0.25f, {}}});
  AddBone(other, "b.leg", {});
  influence.Merge(other, 100);
  ASSERT_EQ(influence.m_bones.size(), 3u);
  EXPECT_EQ(influence.m_bones[0]->m_weights[0].vertex, 7u);
  const GenericBoneInfluence& arm = *influence.m_bones[1];
  EXPECT_EQ(arm.m_name, "b.arm");
  EXPECT_EQ(arm.m_parentName, "b.root");
  EXPECT_EQ(arm.m_position, (Vec3{1, 2, 3}));
  EXPECT_EQ(arm.m_rotation[1], (Vec3{0, 1, 0}));
  ASSERT_EQ(arm.m_weights.size(), 2u);
  EXPECT_EQ(arm.m_weights[0].vertex, 105u);
  EXPECT_EQ(arm.m_weights[0].weight, 0.5f);
  EXPECT_EQ(arm.m_weights[0].offset, (Vec3{1, 1, 1}));
  EXPECT_EQ(arm.m_weights[1].vertex, 100u);
  EXPECT_EQ(influence.m_bones[2]->m_name, "b.leg");
  EXPECT_EQ(other.m_bones[0]->m_weights[0].vertex, 5u);
}

}  // namespace
}  // namespace orv
