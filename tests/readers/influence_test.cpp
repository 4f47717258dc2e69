#include <gtest/gtest.h>

#include <sstream>

#include "SceneBuilders.h"
#include "readers/MaxExInfluence.h"

namespace orv {
namespace {

using Vertices = std::vector<std::vector<host::BoneWeight>>;

// A triangle skinned to its bones, with vertices at (0,0,0), (1,0,0) and (0,1,0) of its node.
class PhysiqueTest : public testing::Test {
 protected:
  // A line for each bone and each of its weights.
  std::string Read(const std::vector<INode*>& bones, const Vertices& vertices) {
    std::vector<host::SkinBone> skin;
    for (INode* bone : bones) skin.push_back({bone, Matrix3(TRUE)});
    physique = &node.SetSkinnedMesh(TriangleMesh(), skin, Weights(vertices)).Physique();
    std::ostringstream out;
    const MaxExGenericMeshInfluence influence(FindPhysique(&node), TriangleMesh(), &node, 0.5f);
    for (const auto& bone : influence.m_bones) {
      const Vec3 p = bone->m_position, x = bone->m_rotation[0];
      out << bone->m_name << " in " << bone->m_parentName << " at " << p.x << " " << p.y << " "
          << p.z << " x " << x.x << " " << x.y << "\n";
      for (const auto& [vertex, weight, offset] : bone->m_weights) {
        out << " " << vertex << ": " << weight << " at " << offset.x << " " << offset.y << " "
            << offset.z << "\n";
      }
    }
    return out.str();
  }

  host::Scene scene;
  host::MemoryNode& node = scene.AddNode("skin");
  host::MemoryNode& body = scene.AddNode("b.body");
  host::MemoryPhysique* physique = nullptr;
};

// Bones as the vertices first name them; one that is named twice has one weight. Scale counts in
// where the vertices are, and not in the space of a bone.
TEST_F(PhysiqueTest, WeightsAreSummedAndOffsetsInTheSpaceOfTheBone) {
  node.SetTransform(MovedBy(10, 0, 0));
  body.SetTransform(ScaledBy(2, 2, 2) * QuarterTurnAt(1, 0, 0));
  host::MemoryNode& arm = scene.AddNode("b.arm", &body);
  arm.SetTransform(QuarterTurnAt(3, 0, 0));
  EXPECT_EQ(Read({&arm, &body, nullptr},
                 {{{1, 0.25f}, {0, 0.125f}, {2, 8}, {1, 0.5f}}, {{0, 1.0f}}, {{2, 1.0f}}}),
            "b.body in  at 0.5 0 0 x 0 1\n 0: 0.75 at 0 -4.5 0\n"
            "b.arm in b.body at 3 0 0 x 0 1\n 0: 0.125 at -4.5 3 0\n 1: 1 at -5 3 0\n");
}

// As much of a name as is kept tells them apart, whatever its case. Vertices beyond the mesh count
// for nothing.
TEST_F(PhysiqueTest, BonesOfOneNameAreOneRecord) {
  body.SetName("b." + std::string(300, 'x'));
  host::MemoryNode& twin = scene.AddNode("B." + std::string(400, 'X'));
  twin.SetTransform(MovedBy(0, 0, 5));
  EXPECT_EQ(
      Read({&body, &twin}, {{{0, 1.0f}}, {{1, 1.0f}}, {}, {{0, 1.0f}}}),
      "b." + std::string(253, 'x') + " in  at 0 0 0 x 1 0\n 0: 1 at 0 0 0\n 1: 1 at 0.5 0 -2.5\n");
}

// An object with one modifier of another kind.
struct Bent final : IDerivedObject {
  struct Bend final : Modifier {
    Class_ID ClassID() override { return Class_ID(7, 0); }
  } bend;
  Object* below;

  explicit Bent(Object* object) : below(object) {}
  Class_ID ClassID() override { return Class_ID(GEN_DERIVOB_CLASS_ID, 0); }
  int NumModifiers() override { return 1; }
  Modifier* GetModifier(int) override { return &bend; }
  Object* GetObjRef() override { return below; }
};

TEST_F(PhysiqueTest, IsFoundBelowOtherModifiers) {
  Read({&body}, {{}, {}, {}});
  body.SetObject(std::make_shared<Bent>(node.GetObjectRef()));
  EXPECT_EQ(FindPhysique(&body), physique);
  body.SetObject(std::make_shared<Bent>(nullptr));
  EXPECT_EQ(FindPhysique(&body), nullptr);
}

}  // namespace
}  // namespace orv
