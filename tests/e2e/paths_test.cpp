#include <gtest/gtest.h>

#include "e2e/Orv.h"

namespace orv {
namespace {

namespace fs = std::filesystem;

using Names = std::set<std::string>;

const std::string kMoving = DataFile("moving.gltf");

struct PathCase {
  std::string output;
  std::string stem;  // of the files written, from "here"
};

class OutputPath : public testing::TestWithParam<PathCase> {};

TEST_P(OutputPath, NamesBothFiles) {
  const Workplace place;
  fs::create_directories(place.Path("../a.b"));
  fs::create_directories(place.Path("folder"));
  fs::create_directories(place.Path("Größe 日本"));
  const PathCase& path = GetParam();
  const Outcome run =
      path.output.empty() ? place.Orv({"export", kMoving}) : place.Export(kMoving, path.output);
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_GT(place.Mesh(path.stem + ".im").triangleCount, 0u);
  EXPECT_GT(place.Animation(path.stem + ".kin").frameCount, 0u);
  for (const char* extension : {".im", ".kin"}) {
    const std::string size = std::to_string(place.Content(path.stem + extension).size());
    EXPECT_NE(run.out.find(extension + std::string(" (") + size + " bytes)\n"), std::string::npos)
        << run.out;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, OutputPath,
    testing::Values(PathCase{"", "moving"}, PathCase{"x", "x"}, PathCase{"../a.b/x", "../a.b/x"},
                    PathCase{"x.im", "x"}, PathCase{"x.KIN", "x"}, PathCase{"x.y", "x.y"},
                    PathCase{"x.y.im", "x.y"}, PathCase{"folder", "folder/moving"},
                    PathCase{"folder/", "folder/moving"}, PathCase{"../a.b", "../a.b/moving"},
                    PathCase{"Größe 日本/Übung", "Größe 日本/Übung"}));

TEST(ExportOptions, ChooseTheFiles) {
  for (const auto& [option, file] :
       {std::pair("--no-animation", "out.im"), std::pair("--no-geometry", "out.kin")}) {
    const Workplace place;
    EXPECT_EQ(place.Export(kMoving, "out", {option}).status, 0);
    EXPECT_EQ(place.Names(), Names{file});
  }
}

// The scene in a folder with accents and a blank, its textures in a folder that only --textures
// names.
TEST(TexturePaths, AreSearchedWhereTold) {
  const Workplace place;
  fs::create_directories(place.Path("Züge 1/bilder ä"));
  fs::create_directories(place.Path("out"));
  fs::copy_file(DataFile("everything.gltf"), place.Path("Züge 1/Höhe ß.gltf"));
  for (const char* name : {"wall.png", "glass.png", "notile_rivets.png", "straße.png"}) {
    fs::copy_file(DataFile("textures/" + std::string(name)),
                  place.Path("Züge 1/bilder ä/" + std::string(name)));
  }
  const Outcome run = place.Export("Züge 1/Höhe ß.gltf", "out",
                                   {"--no-animation", "--collect-textures", "--textures", "nowhere",
                                    "--textures", "Züge 1/bilder ä"});
  EXPECT_EQ(run.status, 1);
  const std::vector<std::string> lines = run.Lines();
  const auto failed =
      std::find(lines.begin(), lines.end(),
                "error: The following 1 file(s) failed to copy or could not be located:");
  ASSERT_NE(failed, lines.end()) << run.err;
  EXPECT_EQ(failed[1], "  textures/rivets_n.png");
  EXPECT_EQ(place.Content("out/straße.png"), ContentOf(DataFile("textures/straße.png")));
  EXPECT_EQ(place.Mesh("out/Höhe ß.im").mesh.chunks[0].material.maps[0].fileName,
            "out/wall.texture");
}

TEST(SecondExport, GivesTheSameBytesAndAsksNothing) {
  const Workplace place;
  const auto exportAgain = [&](const char* option) {
    return place.Export(DataFile("everything.gltf"), "out",
                        {"--no-animation", "--collect-textures", option});
  };
  exportAgain("--flip-green");
  const auto files = place.Files();
  EXPECT_EQ(files.size(), 11u);  // the mesh, five textures and what describes them
  const Outcome second = exportAgain("--flip-green");
  EXPECT_EQ(second.status, 0) << second.err;
  EXPECT_EQ(second.Count("Skipping existing file: './"), 5);
  EXPECT_EQ(second.err.find("Overwrite file?"), std::string::npos);
  EXPECT_EQ(place.Files(), files);
  EXPECT_EQ(exportAgain("--force-textures").Count("Overwriting existing file: '"), 5);
  EXPECT_NE(place.Files(), files);
}

TEST(Settings, AreKeptOnlyWhereTold) {
  const Workplace place;
  EXPECT_EQ(place.Export(kMoving, "out", {"--default-colors"}).status, 0);
  EXPECT_EQ(place.Names(), (Names{"out.im", "out.kin"}));
  EXPECT_EQ(place.Names("tmp"), Names());
  EXPECT_EQ(place.Names("home"), Names());

  const auto shininess = [&](const std::vector<std::string>& arguments) {
    EXPECT_EQ(place.Export(kMoving, "out", arguments).status, 0);
    return place.Mesh("out.im").mesh.chunks[0].material.shininess;
  };
  EXPECT_EQ(shininess({"--settings", "kept", "--default-colors"}), 32);
  // The folder stands for the user's application data.
  EXPECT_TRUE(place.Names().contains("kept/Tamsk/VelmorOrvExporter/OrvExporter.xml"));
  // What is kept holds for the next run with these settings, and for no other.
  EXPECT_EQ(shininess({"--settings", "kept"}), 32);
  EXPECT_NE(shininess({}), 32);
}

}  // namespace
}  // namespace orv
