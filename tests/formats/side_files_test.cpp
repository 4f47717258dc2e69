#include "formats/SideFiles.h"

#include <gtest/gtest.h>

#include "RecordingUserInterface.h"
#include "TemporaryFolder.h"
#include "scene/MeshBuilders.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

GenericMaterial With(std::vector<MaterialMap> maps) {
  GenericMaterial material = Material("any.m.onetex");
  material.maps = std::move(maps);
  return material;
}

TEST(MaterialName, SuffixFollowsTheMaps) {
  const MaterialMap reflection = Map(kReflection, "env.tga");
  const struct {
    std::vector<MaterialMap> maps;
    const char *name, *withoutBillboards;
  } cases[] = {
      {{}, "woodm.notex", "woodm.notex"},
      {{Map(kBump, "n.tga")}, "woodm.notex", "woodm.notex"},
      {{Map(kDiffuse, "w.tga")}, "woodm.onetex", "woodm.onetex"},
      {{reflection, Map(kOpacity, "a.tga")}, "woodm.gloss", "woodm.gloss"},
      {{Map(kDiffuse, "w-a.texture"), reflection}, "woodm.gloss", "woodm.gloss"},
      {{Map(kDiffuse, "a-b/w.texture"), reflection}, "woodm.gloss", "woodm.gloss"},
      {{Map(kDiffuse, "w.texture"), reflection}, "woodm.reflect", "woodm.reflect"},
      {{Map(kDiffuse, "w-a.tga"), reflection}, "woodm.reflect", "woodm.reflect"},
      {{Map(kBump, "w-a.texture"), reflection}, "woodm.reflect", "woodm.reflect"},
      {{Map(kDiffuse, "tb_leaf.tga")}, "woodm.tribillboard", "woodm.onetex"},
      {{Map(kDiffuse, "sb_leaf.tga")}, "woodm.billboard", "woodm.onetex"},
      {{Map(kDiffuse, "sb_tb_leaf.tga")}, "woodm.tribillboard", "woodm.onetex"},
      {{Map(kDiffuse, "TB_leaf.tga")}, "woodm.onetex", "woodm.onetex"},
      {{Map(kAmbient, "tb_leaf.tga")}, "woodm.notex", "woodm.notex"},
      {{Map(kDiffuse, "tb_leaf.tga"), reflection}, "woodm.reflect", "woodm.reflect"},
  };
  for (const auto& c : cases) {
    RecordingUserInterface ui;
    EXPECT_EQ(ComposeMaterialName(With(c.maps), "Wood", true, ui), c.name);
    EXPECT_EQ(ComposeMaterialName(With(c.maps), "Wood", false, ui), c.withoutBillboards);
    EXPECT_EQ(ui.log, Lines(2,
                            "error: Material 'Wood' name is invalid.  Materials should be named "
                            "and have a 'm.' material type suffix."));
  }
}

struct Export {
  bool ask = true;
  bool force = false;
  RecordingUserInterface ui;

  bool Write(GenericMaterial& material, const TemporaryFolder& folder) {
    return WriteTextureSideFiles(material, folder.File(""), ui, ask, force);
  }
};

MaterialMap WithAlpha(MaterialMap map) {
  map.alphaFromFile = true;
  return map;
}

TEST(SideFiles, OneFilePerMap) {
  MaterialMap flipped = Map(kBump, "n.tga"), tiledAlongT = Map(kDiffuse, "w.tga");
  flipped.flipGreen = true;
  tiledAlongT.tileS = false;
  const struct {
    std::vector<MaterialMap> maps;
    const char *file, *text;
  } cases[] = {
      {{WithAlpha(Map(kDiffuse, "C:\\tex/wall.v2.tga")), WithAlpha(Map(kOpacity, "x/a.tga"))},
       "wall.v2-a",
       "Primary=wall.v2.tga\nAlpha=a.tga\nTile=st\n"},
      {{Map(kDiffuse, "first.tga"), Map(kDiffuse, "last.tga")},
       "last",
       "Primary=last.tga\nTile=st\n"},
      {{WithAlpha(Map(kSpecular, "s.tga"))}, "s-s", "Primary=s.tga\nAlpha=s.tga\nTile=st\n"},
      {{tiledAlongT}, "w", "Primary=w.tga\nTile=t\n"},
      {{Map(kDiffuse, "NoTile_sky.tga")}, "NoTile_sky", "Primary=NoTile_sky.tga\n"},
      {{flipped}, "n", "Primary=n.tga\nTile=st\nNormalMapHint=normalmap\nModifyMap=flipgreen\n"},
  };
  for (const auto& c : cases) {
    TemporaryFolder folder;
    Export run;
    GenericMaterial material = With(c.maps);
    EXPECT_EQ(run.Write(material, folder), FindMap(material, kOpacity) != nullptr);
    const std::string path = folder.File(c.file + std::string(".texture"));
    EXPECT_EQ(ContentOf(path + ".txt"), c.text);
    EXPECT_EQ(folder.Count(), 1u);
    const bool lastCounts = c.maps.back().channel != kOpacity;
    EXPECT_EQ((lastCounts ? material.maps.back() : material.maps.front()).fileName, path);
  }
}

// The log and the flags after one material whose side file is there already.
TEST(SideFiles, ExistingFile) {
  const struct {
    bool canPrompt, ask, force;
    Answer answer;
    bool asked, overwritten, askAfter, forceAfter;
  } cases[] = {
      {true, true, false, Answer::Yes, true, true, true, false},
      {true, true, false, Answer::YesToAll, true, true, true, true},
      {true, true, false, Answer::No, true, false, true, false},
      {true, true, false, Answer::NoToAll, true, false, false, false},
      {true, true, false, Answer::None, true, false, true, false},
      {true, false, false, Answer::Yes, false, false, false, false},
      {true, true, true, Answer::No, false, true, true, true},
      {false, true, false, Answer::Yes, false, false, false, false},
      {false, true, true, Answer::Yes, false, true, false, true},
  };
  for (const auto& c : cases) {
    TemporaryFolder folder;
    const std::string path = folder.File("w.texture.txt");
    WriteContent(path, "old");
    Export run{c.ask, c.force, {}};
    run.ui.canPrompt = c.canPrompt;
    run.ui.answers = {c.answer};
    GenericMaterial material = With({Map(kDiffuse, "w.tga")});
    run.Write(material, folder);

    Lines log;
    if (c.asked) {
      log.push_back("ask: .texture.txt file " + path + " already exists.\n  Overwrite file?\n");
    }
    log.push_back((c.overwritten ? "info: Overwriting" : "info: Skipping") +
                  (" existing file: '" + path + "'"));
    EXPECT_EQ(run.ui.log, log);
    EXPECT_EQ(ContentOf(path), c.overwritten ? "Primary=w.tga\nTile=st\n" : "old");
    EXPECT_EQ(folder.Count(), 1u);  // nothing temporary stays
    EXPECT_EQ(run.ask, c.askAfter);
    EXPECT_EQ(run.force, c.forceAfter);
    EXPECT_EQ(material.maps[0].fileName, folder.File("w.texture"));  // written or not
  }
}

// A folder of the file's name cannot be removed and not be written.
TEST(SideFiles, FileThatCannotBeReplaced) {
  TemporaryFolder folder;
  const std::string path = folder.File("w.texture.txt");
  std::filesystem::create_directory(path);
  Export asked, forced{true, true, {}};
  asked.ui.answers = {Answer::Yes};
  GenericMaterial material = With({Map(kDiffuse, "w.tga")}), again = material;
  asked.Write(material, folder);
  ASSERT_EQ(asked.ui.log.size(), 3u);
  EXPECT_EQ(asked.ui.log[1], "warning: Could not remove file.\n");
  EXPECT_EQ(asked.ui.log[2], "info: Skipping existing file: '" + path + "'");
  forced.Write(again, folder);
  ASSERT_EQ(forced.ui.log.size(), 3u);
  EXPECT_EQ(forced.ui.log[1], "error: Could not open texture file " + path + " for writing.");
  EXPECT_EQ(folder.Count(), 1u);
}

}  // namespace
}  // namespace orv
