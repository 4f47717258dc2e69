#include "TemporaryFolder.h"
#include "inspect/GoodFiles.h"

namespace orv::inspect {
namespace {

// The good skin's textures are skin.texture, in both chunks, and b.texture.
Lines TextureLines(const TemporaryFolder& folder) {
  Findings findings;
  CheckTextures(GoodSkinFile().mesh, folder.File(""), findings);
  return LinesOf(findings);
}

TEST(TextureChecks, SideFilesAndPicturesAreLookedForBesideTheModel) {
  TemporaryFolder folder;
  EXPECT_EQ(TextureLines(folder),
            Lines({"QIRF/CHNK 0/MATL (skin.texture.txt): the file that describes the texture is "
                   "not beside the model (2 such) [side-file-missing]",
                   "QIRF/CHNK 1/MATL (b.texture.txt): the file that describes the texture is not "
                   "beside the model [side-file-missing]"}));

  WriteContent(folder.File("Skin.texture.txt"), "Primary=skin.png\r\nAlpha=mask.png\nTile=st\n");
  WriteContent(folder.File("b.texture.txt"), "Tile=st\n");
  WriteContent(folder.File("SKIN.PNG"), "");
  EXPECT_EQ(TextureLines(folder),
            Lines({"QIRF/CHNK 0/MATL (mask.png): the picture is not beside the model (2 such) "
                   "[texture-missing]",
                   "QIRF/CHNK 1/MATL (b.texture.txt): the file that describes the texture has no "
                   "line \"Primary=\" [side-file-incomplete]"}));

  WriteContent(folder.File("mask.png"), "");
  WriteContent(folder.File("b.texture.txt"), "primary=skin.png\nNormalMapHint=normalmap\n");
  EXPECT_EQ(TextureLines(folder), Lines());
}

}  // namespace
}  // namespace orv::inspect
