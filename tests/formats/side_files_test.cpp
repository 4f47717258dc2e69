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
      {{}, "notex", "notex"},
      {{Map(kBump, "n.tga")}, "notex", "notex"},
      {{Map(kDiffuse, "w.tga")}, "onetex", "onetex"},
      {{reflection, Map(kOpacity, "a.tga")}, "gloss", "gloss"},
      {{Map(kDiffuse, "w-a.texture"), reflection}, "gloss", "gloss"},
      {{Map(kDiffuse, "a-b/w.texture"), reflection}, "gloss", "gloss"},
      {{Map(kDiffuse, "w.texture"), reflection}, "reflect", "reflect"},
      {{Map(kDiffuse, "w-a.tga"), reflection}, "reflect", "reflect"},
      {{Map(kBump, "w-a.texture"), reflection}, "reflect", "reflect"},
      {{Map(kDiffuse, "tb_leaf.tga")}, "tribillboard", "onetex"},
      {{Map(kDiffuse, "sb_leaf.tga")}, "billboard", "onetex"},
      {{Map(kDiffuse, "sb_tb_leaf.tga")}, "tribillboard", "onetex"},
      {{Map(kDiffuse, "TB_leaf.tga")}, "onetex", "onetex"},
      {{Map(kAmbient, "tb_leaf.tga")}, "notex", "notex"},
      {{Map(kDiffuse, "tb_leaf.tga"), reflection}, "reflect", "reflect"},
  };
  RecordingUserInterface ui;
  for (const auto& c : cases) {
    EXPECT_EQ(ComposeMaterialName(With(c.maps), "Wood", true, ui), std::string("woodm.") + c.name);
    EXPECT_EQ(ComposeMaterialName(With(c.maps), "Wood", false, ui),
              std::string("woodm.") + c.withoutBillboards);
  }
  EXPECT_EQ(ui.log, Lines(2 * std::size(cases),
                          "error: Material 'Wood' name is invalid.  Materials should be named and "
                          "have a 'm.' material type suffix."));
  EXPECT_EQ(ComposeMaterialName(With({}), "Wood M.x m.Gloss", true, ui), "wood m.x m.gloss");
}

struct Export {
  bool ask = true, force = false;
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
  MaterialMap flipped = Map(kBump, "n.tga"), alongT = Map(kDiffuse, "w.tga");
  flipped.flipGreen = true;
  alongT.tileS = false;
  const struct {
    std::vector<MaterialMap> maps;
    const char *file, *text;
  } cases[] = {
      {{WithAlpha(Map(kOpacity, "x/a.tga")), WithAlpha(Map(kDiffuse, "C:\\tex/wall.v2.tga"))},
       "wall.v2-a",
       "Primary=wall.v2.tga\nAlpha=a.tga\nTile=st\n"},
      {{Map(kDiffuse, "first.tga"), Map(kDiffuse, "last.tga")},
       "last",
       "Primary=last.tga\nTile=st\n"},
      {{WithAlpha(Map(kSpecular, "s.tga"))}, "s-s", "Primary=s.tga\nAlpha=s.tga\nTile=st\n"},
      {{alongT}, "w", "Primary=w.tga\nTile=t\n"},
      {{Map(kDiffuse, "NoTile_sky.tga")}, "NoTile_sky", "Primary=NoTile_sky.tga\n"},
      {{flipped}, "n", "Primary=n.tga\nTile=st\nNormalMapHint=normalmap\nModifyMap=flipgreen\n"},
  };
  for (const auto& c : cases) {
    const TemporaryFolder folder;
    Export run;
    GenericMaterial material = With(c.maps);
    EXPECT_EQ(run.Write(material, folder), FindMap(material, kOpacity) != nullptr);
    const std::string path = folder.File(c.file + std::string(".texture"));
    EXPECT_EQ(ContentOf(path + ".txt"), c.text);
    EXPECT_EQ(TextOf(ReadSideFile(path + ".txt")), c.text);
    EXPECT_EQ(folder.Count(), 1u);
    EXPECT_EQ(material.maps.back().fileName, path);
    Export again;  // it has its side file already
    again.Write(material, folder);
    EXPECT_EQ(again.ui.log, Lines());
  }
}

TEST(SideFiles, AreReadAsTheEngineReadsThem) {
  const TemporaryFolder folder;
  const auto read = [&](const char* text) {
    WriteContent(folder.File("Wall.Texture.txt"), text);
    return TextOf(ReadSideFile(*ModelFolder(folder.File("")).Find("wall.TEXTURE.TXT")));
  };
  EXPECT_EQ(read(" PRIMARY=a\\b/c.tga\r\nalpha=x/d.tga \r\nTile=ts\n#\nmodifymap=flipgreen\n"),
            "Primary=c.tga\nAlpha=d.tga\nTile=st\n");
  EXPECT_EQ(read("Primary=c.tga\nAlpha=\nTile=S\nNormalMapHint=normalmap"),
            "Primary=c.tga\nNormalMapHint=normalmap\n");
  EXPECT_EQ(ReadSideFile(folder.File("none")), SideFile());
  std::filesystem::create_directory(folder.File("sub.png"));
  EXPECT_EQ(ModelFolder(folder.File("")).Find("sub.png"), nullptr);
}

// Two materials whose side files are there already.
TEST(SideFiles, ExistingFilesAreAskedForUntilTheAnswerIsForAll) {
  const struct {
    bool canPrompt, ask, force;
    Answer answer;
    const char* log;
    bool askAfter, forceAfter;
  } cases[] = {
      {true, true, false, Answer::Yes, "new new ask Over ask Over ", true, false},
      {true, true, false, Answer::YesToAll, "new new ask Over Over ", true, true},
      {true, true, false, Answer::No, "kept kept ask Skip ask Skip ", true, false},
      {true, true, false, Answer::NoToAll, "kept kept ask Skip Skip ", false, false},
      {true, true, false, Answer::None, "kept kept ask Skip ask Skip ", true, false},
      {true, false, false, Answer::Yes, "kept kept Skip Skip ", false, false},
      {true, true, true, Answer::No, "new new Over Over ", true, true},
      {false, true, false, Answer::Yes, "kept kept Skip Skip ", false, false},
      {false, true, true, Answer::Yes, "new new Over Over ", false, true},
  };
  for (const auto& c : cases) {
    const TemporaryFolder folder;
    Export run{c.ask, c.force, {}};
    run.ui.canPrompt = c.canPrompt;
    run.ui.answers = {c.answer};
    std::string log;
    for (const char* name : {"v", "w"}) {
      const std::string path = folder.File(name + std::string(".texture"));
      WriteContent(path + ".txt", "old");
      GenericMaterial material = With({Map(kDiffuse, name + std::string(".tga"))});
      run.Write(material, folder);
      log += ContentOf(path + ".txt") == "old" ? "kept " : "new ";
      EXPECT_EQ(material.maps[0].fileName, path);  // written or not
    }
    for (const std::string& line : run.ui.log) {
      log += line.starts_with("ask") ? "ask " : line.substr(line.find(' ') + 1, 4) + " ";
    }
    EXPECT_EQ(log, c.log);
    EXPECT_EQ(folder.Count(), 2u);  // nothing temporary stays
    EXPECT_EQ(run.ask, c.askAfter);
    EXPECT_EQ(run.force, c.forceAfter);
  }
}

// A folder of the file's name cannot be removed and not be written.
TEST(SideFiles, FileThatCannotBeReplaced) {
  const TemporaryFolder folder;
  const std::string path = folder.File("w.texture.txt");
  std::filesystem::create_directory(path);
  Export asked, forced{true, true, {}};
  asked.ui.answers = {Answer::Yes};
  GenericMaterial material = With({Map(kDiffuse, "w.tga")}), again = material;
  asked.Write(material, folder);
  forced.Write(again, folder);
  EXPECT_EQ(
      asked.ui.log,
      Lines({"ask: .texture.txt file " + path + " already exists.\n  Overwrite file?\n",
             "warning: Could not remove file.\n", "info: Skipping existing file: '" + path + "'"}));
  ASSERT_EQ(forced.ui.log.size(), 3u);
  EXPECT_EQ(forced.ui.log[1], "error: Could not open texture file " + path + " for writing.");
  EXPECT_EQ(folder.Count(), 1u);
  WriteTextureSideFiles(again = With({Map(kDiffuse, "w.tga")}), std::string(600, 'x'), forced.ui,
                        forced.ask, forced.force);
  EXPECT_EQ(again.maps[0].fileName, std::string(514, 'x'));
}

TEST(SideFiles, TexturesAreCopiedOnceFromWhereTheyAreFound) {
  const TemporaryFolder from, to;
  WriteContent(from.File("a.tga"), "a");
  WriteContent(to.File("here.tga"), "here");
  const auto resolve = [&](const std::string& name) {
    return name == "a.tga" ? from.File(name) : std::string();
  };
  RecordingUserInterface ui;
  EXPECT_FALSE(CopyTextures({"gone.tga", "a.tga", to.File("here.tga"), "x\\lost.tga"}, to.File(""),
                            true, true, resolve, ui));
  EXPECT_EQ(ui.log, Lines({"error: The following 2 file(s) failed to copy or could not be located:",
                           "info:   gone.tga", "info:   x\\lost.tga"}));
  EXPECT_EQ(ContentOf(to.File("a.tga")) + ContentOf(to.File("here.tga")), "ahere");
  EXPECT_TRUE(CopyTextures({"a.tga"}, to.File(""), false, true, resolve, ui));
  EXPECT_EQ(ui.log.size(), 3u);
  EXPECT_EQ(ui.stages, Lines(2, "Copying texture files..."));
}

}  // namespace
}  // namespace orv
