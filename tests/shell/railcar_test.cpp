#include <gtest/gtest.h>

#include "IndependentReader.h"
#include "RailcarExport.h"

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

  const auto mesh = independent::ParseMesh(contentOf("out/railcar.im"));
  size_t triangles = 0, tangents = 0;
  for (const auto& chunk : mesh.chunks) {
    triangles += chunk.triangles.size();
    tangents += chunk.tangents.size();
  }
  EXPECT_EQ(triangles, 2u * (96 * 90 + 3 * 40 * 12 + 32 * 24));
  EXPECT_GT(tangents, 0u);
  EXPECT_GT(mesh.chunks.size(), 4u) << "more pieces than materials";
  EXPECT_EQ(mesh.bones.size(), 5u);
  EXPECT_EQ(mesh.attachments.size(), 2u);
  EXPECT_EQ(independent::ParseMesh(contentOf("out/bellows.im")).influences.size(), 2u);

  const auto animation = independent::ParseAnimation(contentOf("out/railcar.kin"));
  EXPECT_EQ(animation.bones.size(), 5u);
  EXPECT_EQ(animation.events.size(), 3u);
  EXPECT_EQ(contentOf("out/livery.tga"), "pixels of livery.tga\n");
}

}  // namespace
}  // namespace orv
