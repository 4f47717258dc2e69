#include <gtest/gtest.h>

#include "SceneBuilders.h"
#include "readers/MaxExHost.h"
#include "readers/MaxExSkeleton.h"

namespace orv {
namespace {

TEST(Skeleton, NamesAndObjectsDecideTheRole) {
  host::Scene scene;
  const struct {
    const char* name;
    bool pointHelper;
    NodeRole role;
    bool bindsItsChildren;
  } cases[] = {
      {"B.Spine", false, NodeRole::Bone, false},
      {"xb.spine", false, NodeRole::MeshSource, false},
      {"b.hook", true, NodeRole::AttachmentPoint, false},
      {"arm r.1", false, NodeRole::MeshSource, true},
      {"b.arm r.", false, NodeRole::Bone, true},
      {"R.arm", false, NodeRole::MeshSource, false},
  };
  for (const auto& c : cases) {
    host::MemoryNode& node = scene.AddNode(c.name);
    if (c.pointHelper) node.MakePointHelper();
    EXPECT_EQ(RoleOf(&node), c.role) << c.name;
    EXPECT_EQ(IsBone(&node), c.role == NodeRole::Bone) << c.name;
    EXPECT_EQ(BindsItsChildren(&node), c.bindsItsChildren) << c.name;
  }
}

}  // namespace
}  // namespace orv
