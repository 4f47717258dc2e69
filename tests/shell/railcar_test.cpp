#include <gtest/gtest.h>

#include "RailcarExport.h"
#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv {
namespace {

// What it writes stays, with its log: the tests of the Windows library compare theirs to it.
TEST(Railcar, EverythingArrivesInItsFiles) {
  const std::filesystem::path folder = ORV_RAILCAR_FOLDER;
  const auto contentOf = [&](const char* name) { return ContentOf((folder / name).string()); };
  const std::string log = ExportRailcar(folder);
  WriteContent((folder / "log.txt").string(), log);
  EXPECT_NE(log.find("completed with 2 Errors and 0 Warnings."), log.npos) << log;
  EXPECT_NE(log.find("completed with 0 Errors and 0 Warnings."), log.npos) << log;

  ReadProblem problem;
  IndexedMeshFile mesh, bellows;
  ASSERT_TRUE(ReadIndexedMesh(contentOf("out/railcar.im"), mesh, problem)) << problem.Message();
  size_t tangents = 0;
  for (const auto& chunk : mesh.mesh.chunks) tangents += chunk.tangents.size();
  EXPECT_EQ(mesh.triangleCount, 2u * (96 * 90 + 3 * 40 * 12 + 32 * 24));
  EXPECT_GT(tangents, 0u);
  EXPECT_GT(mesh.chunks.size(), 4u) << "more pieces than materials";
  EXPECT_EQ(mesh.bones.size(), 5u);
  EXPECT_EQ(mesh.mesh.attachmentPoints.size(), 2u);
  ASSERT_TRUE(ReadIndexedMesh(contentOf("out/bellows.im"), bellows, problem)) << problem.Message();
  EXPECT_EQ(bellows.mesh.influences.at(0)->m_bones.size(), 2u);

  AnimationFile animation;
  ASSERT_TRUE(ReadAnimation(contentOf("out/railcar.kin"), animation, problem));
  EXPECT_EQ(animation.bones.size(), 5u);
  EXPECT_EQ(animation.events.size(), 3u);
  EXPECT_EQ(contentOf("out/livery.tga"), "pixels of livery.tga\n");
}

}  // namespace
}  // namespace orv
