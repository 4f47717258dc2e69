#include "inspect/CheckFiles.h"

#include <cstring>
#include <regex>

#include "Recorded.h"
#include "inspect/GoodFiles.h"
#include "inspect/Info.h"

namespace orv::inspect {
namespace {

std::string SkinBytes() {
  ExIndexedMesh mesh = GoodSkin();
  for (IndexedMesh::Chunk& chunk : mesh.chunks) chunk.material.maps.clear();
  return Written(mesh).bytes;
}

// "FILE ANIMATION" of the findings about bones.
std::string BonesOf(const TemporaryFolder& folder, std::vector<std::string> names) {
  std::string lines;
  for (std::string& name : names) name = folder.File(name);
  for (const CheckedFile& file : CheckFiles(names)) {
    for (const Finding& finding : file.findings) {
      if (finding.code != Code::BoneNotInMesh) continue;
      lines +=
          file.name.substr(file.name.find_last_of("/\\") + 1) + " " + finding.place.subject + ";";
    }
  }
  return lines;
}

TEST(CheckFiles, MeshIsHeldAgainstItsAnimations) {
  const TemporaryFolder folder;
  std::string animation = GoodAnimationBytes();
  animation.replace(animation.find("b.knee"), 6, "b.tail");
  for (const char* name : {"a.im", "b.im"}) WriteContent(folder.File(name), SkinBytes());
  EXPECT_EQ(BonesOf(folder, {"a.im"}), "");
  for (const char* name : {"a.kin", "RUN.KIN"}) WriteContent(folder.File(name), animation);
  WriteContent(folder.File("cut.kin"), "QIRF");
  EXPECT_EQ(BonesOf(folder, {"a.im"}), "a.im a.kin;");
  EXPECT_EQ(BonesOf(folder, {"a.im", "a.kin", "./a.kin"}), "a.im a.kin;");
  EXPECT_EQ(BonesOf(folder, {"b.im", "cut.kin"}), "");
  EXPECT_EQ(BonesOf(folder, {"b.im", "RUN.KIN", "a.kin"}), "b.im RUN.KIN;b.im a.kin;");
  EXPECT_EQ(BonesOf(folder, {"a.im", "b.im", "RUN.KIN"}), "a.im a.kin;");
  EXPECT_EQ(BonesOf(folder, {"a.kin"}), "");
}

// Whole reports, of files whose reading ended, too.
TEST(CheckFiles, ReportsNameTheFileTheWorstFirst) {
  const TemporaryFolder folder;
  const std::string good = SkinBytes();
  const auto damaged = [&](size_t at, uint32_t value) {
    std::string bytes = good;
    std::memcpy(bytes.data() + at, &value, sizeof(value));
    return bytes;
  };
  const size_t geom = good.find("GEOM"), triangles = geom + 12 + 8 * 4 + 4 + 20 * 3;
  ExIndexedMesh mesh = GoodSkin();
  mesh.chunks[1].material.opacity = 7;
  mesh.chunks[1].normals[0] = {};
  mesh.chunks[0].triangles[0] = Triangle{1, 2, 0};
  for (int i = 0; i < 17; ++i) AddInfluence(*mesh.influences[0], std::to_string(i), {{0, 1, {}}});
  const std::string files[][2] = {{"walk.kin", GoodAnimationBytes()},
                                  {"good.im", good + "more"},
                                  {"mixed.im", Written(mesh).bytes},
                                  {"cut.im", "QI"},
                                  {"cut.KIN", "QIRF"},
                                  {"text.im", "hello, I am a text"},
                                  {"text", "hello, I am a text"},
                                  {"version.im", damaged(20, 105)},
                                  {"count.im", damaged(geom + 28, 4000000000)},
                                  {"index.im", damaged(triangles, 0xFFFF)},
                                  {"none.im", ""}};
  std::ostringstream text;
  nlohmann::ordered_json entries = nlohmann::ordered_json::array();
  std::filesystem::current_path(folder.File(""));
  for (const auto& [name, content] : files) {
    if (name != "none.im") WriteContent(name, content);
    const CheckedFile checked = CheckFiles(std::vector{name})[0];
    checked.unreadable.empty() ? PrintChecked(text, checked)
                               : void(text << checked.unreadable << "\n");
    entries.push_back(ToJson(checked));
    for (const std::string& line : FindStructureErrors(name)) text << "read back: " << line << "\n";
  }
  std::filesystem::current_path("/");
  ExpectRecorded(text.str(), ORV_RECORDED "/check.txt");
  ExpectRecorded(DocumentText(entries), ORV_RECORDED "/check.json");
}

// The documentation's table is in the order of the codes, and each is in a record.
TEST(CheckFiles, EveryCodeIsDocumentedAndFound) {
  std::string rows, recorded;
  std::istringstream docs(ContentOf(ORV_DOCS "/inspecting.md"));
  for (std::string line; std::getline(docs, line);) {
    std::smatch row;
    if (std::regex_search(line, row,
                          std::regex("^\\| `[a-z-]+` \\| \\w+ \\| (structure|content) ")))
      rows += row.str() + "\n";
  }
  for (const auto& entry : std::filesystem::directory_iterator(ORV_RECORDED)) {
    recorded += ContentOf(entry.path().string());
  }
  std::string expected;
  for (const CodeInfo& code : AllCodes()) {
    EXPECT_EQ(&InfoOf(code.code), &code);
    expected += std::string("| `") + code.name + "` | " + NameOf(code.level) + " | " +
                NameOf(code.aspect) + " \n";
    EXPECT_NE(recorded.find(std::string("[") + code.name + "]\n"), recorded.npos) << code.name;
  }
  EXPECT_EQ(rows, expected);
}

}  // namespace
}  // namespace orv::inspect
