#include "host/memory/BitmapSearch.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "TemporaryFolder.h"

namespace orv::host {
namespace {

namespace fs = std::filesystem;

class BitmapSearch : public testing::Test {
 protected:
  void Touch(const std::string& name) {
    fs::create_directories(fs::path(m_folder.File(name)).parent_path());
    WriteContent(m_folder.File(name), name);
  }
  // The file found, as it is named in the test's folder; empty when there is none.
  std::string Find(const std::string& name) {
    const std::vector<std::string> folders = {m_folder.File("scene"), m_folder.File("missing"),
                                              m_folder.File("library")};
    const auto found = FindBitmapFile(name, folders);
    return found ? ContentOf(*found) : "";
  }

  TemporaryFolder m_folder;
};

TEST_F(BitmapSearch, GoesFromTheSpelledNameToWhatIsLeftOfIt) {
  for (const char* name :
       {"scene/maps/wood.png", "scene/wood.png", "scene/Brick.PNG", "library/wood.png",
        "library/iron.tga", "library/old/rust.tga", "scene/my wall.png", "scene/100%25.png",
        "scene/*+k", "elsewhere/free.png", "scene/WALL.png", "scene/wall.png", "scene/Wall.png"}) {
    Touch(name);
  }
  const struct {
    std::string name, found;
  } cases[] = {
      {"wood.png", "scene/wood.png"},
      {"maps/wood.png", "scene/maps/wood.png"},
      {"maps\\wood.png", "scene/maps/wood.png"},
      {"C:\\work\\train\\maps\\wood.png", "scene/maps/wood.png"},
      {"/home/artist/wood.png", "scene/wood.png"},
      {"brick.png", "scene/Brick.PNG"},
      {"wall.png", "scene/wall.png"},
      {"wALL.png", "scene/WALL.png"},
      {"MAPS/WOOD.PNG", "scene/maps/wood.png"},
      {"./iron.tga", "library/iron.tga"},
      {"D:/Old/RUST.tga", "library/old/rust.tga"},
      {"../elsewhere/free.png", "elsewhere/free.png"},
      {"my%20wall.png", "scene/my wall.png"},
      {"100%25.png", "scene/100%25.png"},
      {"%2a%2B%6B", "scene/*+k"},
      {m_folder.File("elsewhere/free.png"), "elsewhere/free.png"},
      {"free.png", ""},
      {"maps", ""},
      {"", ""},
      {"..", ""},
      {std::string("wood.png\0", 9), ""},
  };
  const fs::path before = fs::current_path();
  fs::current_path(m_folder.File("elsewhere"));  // which is no place to look at
  for (const auto& c : cases) EXPECT_EQ(Find(c.name), c.found) << c.name;
  fs::current_path(before);
}

}  // namespace
}  // namespace orv::host
