#include <cmath>

#include "inspect/GoodFiles.h"

namespace orv::inspect {
namespace {

TEST(AnimationChecks, EachDamageIsFoundInItsPlace) {
  ExpectFound<AnimationFile>(
      GoodAnimationFile,
      {
          {[](auto&) {}, ""},
          {[](auto& f) { f.frameRate = 0; }, "QIRF/INFO frame-rate-zero"},
          {[](auto& f) { f.masterScale = 0; }, "QIRF/INFO master-scale"},
          {[](auto& f) { f.events[1].type = 9; }, "QIRF/EVNT event-type"},
          {[](auto& f) { f.events[0].frame = -1, f.events[1].frame = 3; }, "QIRF/EVNT event-frame"},
          {[](auto& f) { f.bones[1].name = "B.hip"; }, "QIRF/SKEL bone-twice"},
          {[](auto& f) { f.poses[3].position.y = INFINITY; }, "QIRF/FRAM not-finite"},
          {[](auto& f) { f.poses[4].rotation.w = 0; }, "QIRF/FRAM rotation-not-unit"},
          {[](auto& f) { f.frameCount = 0, f.poses.clear(), f.events.clear(); },
           "QIRF/INFO no-frames"},
      });
}

Lines BoneLines(const IndexedMeshFile& mesh, const AnimationFile& animation) {
  Findings findings;
  CheckBones(mesh, animation, "walk.kin", findings);
  return LinesOf(findings);
}

TEST(AnimationChecks, MeshAndAnimationAreHeldAgainstEachOther) {
  AnimationFile animation = GoodAnimationFile();
  EXPECT_EQ(BoneLines(GoodSkinFile(), animation), Lines());

  animation.bones[1].name = "b.tail";
  EXPECT_EQ(BoneLines(GoodSkinFile(), animation),
            Lines({"QIRF (walk.kin): the mesh lacks bones of the animation: b.tail "
                   "[bone-not-in-mesh]",
                   "QIRF (walk.kin): the animation lacks bones of the mesh: b.knee "
                   "[bone-not-animated]"}));

  for (int i = 0; i < 6; ++i) animation.bones.push_back({"b." + std::to_string(i), 0});
  EXPECT_EQ(BoneLines(GoodSkinFile(), animation)[0],
            "QIRF (walk.kin): the mesh lacks bones of the animation: b.tail, b.0, b.1, b.2, b.3 "
            "and 2 more (7 such) [bone-not-in-mesh]");

  EXPECT_EQ(BoneLines(GoodRigidFile(), GoodAnimationFile()).size(), 2u);

  IndexedMeshFile boneless = GoodSkinFile();
  boneless.mesh.influences.clear();
  EXPECT_EQ(BoneLines(boneless, animation),
            Lines({"QIRF (walk.kin): the mesh has no bones, so the animation moves nothing "
                   "[bone-not-in-mesh]"}));
}

}  // namespace
}  // namespace orv::inspect
