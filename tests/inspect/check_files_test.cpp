#include "inspect/CheckFiles.h"

#include <algorithm>
#include <cstring>
#include <fstream>

#include "TemporaryFolder.h"
#include "inspect/GoodFiles.h"
#include "inspect/Info.h"

namespace orv::inspect {
namespace {

std::string SkinBytes() {
  ExIndexedMesh mesh = GoodSkin();
  for (IndexedMesh::Chunk& chunk : mesh.chunks) chunk.material.maps.clear();
  return Written(mesh).bytes;
}

std::string AnimationWithBone(const std::string& name) {
  std::string bytes = GoodAnimationBytes();
  return bytes.replace(bytes.find("b.knee"), 6, name);
}

// "FILE CODE SUBJECT" of the findings about bones.
Lines BoneFindings(const std::vector<std::string>& names) {
  Lines lines;
  for (const CheckedFile& file : CheckFiles(names)) {
    for (const Finding& finding : file.findings) {
      if (finding.code != Code::BoneNotInMesh) continue;
      lines.push_back(file.name.substr(file.name.find_last_of("/\\") + 1) + " " +
                      finding.place.subject);
    }
  }
  return lines;
}

TEST(CheckFiles, MeshIsHeldAgainstItsAnimations) {
  TemporaryFolder folder;
  const std::string a = folder.File("a.im"), b = folder.File("b.im");
  const std::string aKin = folder.File("a.kin"), run = folder.File("run.kin");
  WriteContent(a, SkinBytes());
  WriteContent(b, SkinBytes());
  EXPECT_EQ(BoneFindings({a}), Lines());
  WriteContent(aKin, AnimationWithBone("b.tail"));
  WriteContent(run, AnimationWithBone("b.tail"));
  EXPECT_EQ(BoneFindings({a}), Lines({"a.im a.kin"}));
  EXPECT_EQ(BoneFindings({a, aKin}), Lines({"a.im a.kin"}));
  EXPECT_EQ(BoneFindings({b}), Lines());
  EXPECT_EQ(BoneFindings({b, run, aKin}), Lines({"b.im run.kin", "b.im a.kin"}));
  EXPECT_EQ(BoneFindings({a, b, run}), Lines({"a.im a.kin"}));
  EXPECT_EQ(BoneFindings({aKin}), Lines());
}

TEST(CheckFiles, ReportNamesTheFileAndSumsUp) {
  TemporaryFolder folder;
  const std::string name = folder.File("a.im");
  const std::string good = SkinBytes();
  WriteContent(name, good + "more");
  std::ostringstream out;
  PrintChecked(out, CheckFiles(std::vector{name})[0]);
  const auto line = [&](const std::string& text) { return name + ": " + text + "\n"; };
  EXPECT_EQ(out.str(),
            line("error: 4 bytes follow the last chunk (at byte " + std::to_string(good.size()) +
                 ") [bytes-left-over]") +
                line("note: QIRF/CHNK 0/MATL (skin m.onetex): the type onetex shows a diffuse map, "
                     "but the material has none [map-missing]") +
                line("note: QIRF/CHNK 1/MATL (hide m.onetex.tbump): the type onetex shows a "
                     "diffuse map, but the material has none [map-missing]") +
                line("note: QIRF/CHNK 1/MATL (hide m.onetex.tbump): the type tbump shows a bump "
                     "map, but the material has none [map-missing]") +
                line("1 error, 3 notes"));

  const nlohmann::json json = ToJson(CheckFiles(std::vector{name})[0]);
  EXPECT_EQ(json["notes"], 3);
  EXPECT_EQ(json["findings"][1],
            nlohmann::json::parse(R"({"code": "map-missing", "severity": "note",
      "aspect": "content", "place": "QIRF/CHNK 0/MATL", "chunk": 0, "subject": "skin m.onetex",
      "text": "the type onetex shows a diffuse map, but the material has none", "count": 1})"));
}

TEST(CheckFiles, DamagedFileHasOneFindingThatSaysWhere) {
  TemporaryFolder folder;
  const std::string name = folder.File("a.im");
  const auto damaged = [](size_t at, uint32_t value) {
    std::string bytes = SkinBytes();
    std::memcpy(bytes.data() + at, &value, sizeof(value));
    return bytes;
  };
  const size_t geom = SkinBytes().find("GEOM");
  const size_t triangles = geom + 12 + 8 * 4 + 4 + 20 * GoodSkin().chunks[0].vertices.size();
  const std::pair<std::string, std::string> cases[] = {
      {"QI", "a tag of 4 bytes is cut off, 2 are left (at byte 0) [cut-off]"},
      {"hello, I am a text", "found \"hell\" where \"QIRF\" is due (at byte 0) [tag-wrong]"},
      {damaged(20, 105), "QIRF/INFO: version 105 is unknown (at byte 20) [version-unknown]"},
      {damaged(geom + 28, 4000000000),
       "QIRF/CHNK 0/GEOM: triangle count 4000000000 exceeds the chunk (at byte " +
           std::to_string(geom + 28) + ") [count-too-large]"},
      {damaged(triangles, 0xFFFF), "QIRF/CHNK 0/GEOM: triangle 0 names vertex 65535 of "}};
  for (const auto& [bytes, line] : cases) {
    WriteContent(name, bytes);
    const CheckedFile file = CheckFiles(std::vector{name})[0];
    ASSERT_EQ(file.findings.size(), 1u) << line;
    EXPECT_TRUE(LineOf(file.findings[0]).starts_with(line)) << LineOf(file.findings[0]);
    EXPECT_EQ(FindStructureErrors(name), Lines({name + ": " + LineOf(file.findings[0])}));
  }
  EXPECT_EQ(CheckFiles(std::vector{name})[0].findings[0].code, Code::IndexRange);
}

TEST(CheckFiles, ReadingBackTellsErrorsOfStructureOnly) {
  TemporaryFolder folder;
  const std::string name = folder.File("a.im");
  ExIndexedMesh mesh = GoodSkin();
  mesh.chunks[0].material.opacity = 7;
  for (int i = 0; i < 20; ++i) AddInfluence(*mesh.influences[0], std::to_string(i), {{0, 1, {}}});
  WriteContent(name, Written(mesh).bytes);
  EXPECT_EQ(FindStructureErrors(name), Lines());
  mesh.chunks[0].normals[0] = {};
  WriteContent(name, Written(mesh).bytes);
  EXPECT_EQ(FindStructureErrors(name),
            Lines({name + ": QIRF/CHNK 0/GEOM (skin m.onetex): the normal of vertex 0 is 0 long "
                          "instead of 1 [normal-not-unit]"}));
}

TEST(CheckCodes, TheDocumentationListsEveryCode) {
  std::ifstream in(ORV_DOCS "/inspecting.md");
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  size_t rows = 0;
  for (const char* aspect : {" | structure |", " | content |"})
    for (size_t at = 0; (at = text.find(aspect, at)) != std::string::npos; ++at) ++rows;
  EXPECT_EQ(rows, AllCodes().size());
  for (const CodeInfo& code : AllCodes()) {
    EXPECT_EQ(&InfoOf(code.code), &code);
    EXPECT_NE(text.find("\n| `" + std::string(code.name) + "` | " + NameOf(code.level) + " | " +
                        NameOf(code.aspect) + " |"),
              std::string::npos)
        << code.name;
  }
}

}  // namespace
}  // namespace orv::inspect
