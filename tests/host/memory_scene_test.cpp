#include <gtest/gtest.h>

#include "host/memory/MemoryHost.h"
#include "host/memory/Scene.h"

namespace orv::host {
namespace {

Matrix3 MoveBy(float x, float y, float z) {
  return Matrix3({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {x, y, z});
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

TEST(MemoryHost, AnimationRangeStaysInTheTicks) {
  Scene scene;
  scene.info.lastFrame = 2'000'000'000;
  MemoryHost host(scene);
  EXPECT_GT(host.GetAnimRange().End(), 0);
}

}  // namespace
}  // namespace orv::host
