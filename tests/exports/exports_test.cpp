// What orv makes of every line of exports.txt, held against expected.txt: the status, standard
// output, the log and the files. A line is what stands behind `orv export`, or another command that
// begins with "orv"; after a ";" follows a further one in the same folder. The scenes in {scenes}
// come from scenes.txt.
//   ORV_RECORD=1 ./dev test exports   records expected.txt anew
//   ORV_OTHER_PROGRAM=PATH            runs this orv instead of the one just built
#include <gtest/gtest.h>

#include <iomanip>
#include <memory>

#include "e2e/Orv.h"
#include "exports/SceneWriter.h"

namespace orv {
namespace {

using Lines = Words;
using Records = std::map<std::string, Lines>;  // by the line of exports.txt

constexpr size_t kLongestLog = 40;      // lines
constexpr size_t kLongestShown = 1000;  // bytes of a side file or of the options

const std::string kExpected = ORV_EXPORTS "/expected.txt";

Lines ListedExports() {
  Lines exports = SplitAt('\n', ContentOf(ORV_EXPORTS "/exports.txt"));
  std::erase_if(exports, [](const auto& line) { return line.empty() || line[0] == '#'; });
  return exports;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
    text.replace(at, from.size(), to);
  return text;
}

std::string Escaped(const std::string& text) {
  return Replaced(Replaced(Replaced(text, "\\", "\\\\"), "\r", "\\r"), "\n", "\\n");
}

// 64-bit FNV-1a.
std::string Checksum(const std::string& bytes) {
  uint64_t sum = 0xcbf29ce484222325;
  for (const char c : bytes) sum = (sum ^ static_cast<unsigned char>(c)) * 0x100000001b3;
  std::ostringstream text;
  text << std::hex << std::setw(16) << std::setfill('0') << sum;
  return text.str();
}

// Progress that follows on progress shares its line; of a long log the rest is summed up.
void AddLog(const std::string& log, Lines& record) {
  const std::string progress = "Progress: ";
  Lines lines;
  for (const std::string& line : SplitAt('\n', log)) {
    if (line.starts_with(progress) && !lines.empty() && lines.back().starts_with(progress)) {
      lines.back() += " | " + Escaped(line.substr(progress.size()));
    } else {
      lines.push_back(Escaped(line));
    }
  }
  if (lines.size() > kLongestLog) {
    std::string rest;
    for (size_t i = kLongestLog; i < lines.size(); ++i) rest += lines[i] + "\n";
    lines[kLongestLog] =
        "... and " + std::to_string(lines.size() - kLongestLog) + " lines " + Checksum(rest);
    lines.resize(kLongestLog + 1);
  }
  record.insert(record.end(), lines.begin(), lines.end());
}

std::string DescribedFile(const std::string& name, const std::string& content) {
  if (name.ends_with('/')) return "folder " + name;
  const bool isText = name.ends_with(".texture.txt") || name.ends_with(".xml");
  const bool isShown = isText && content.size() <= kLongestShown;
  return "file " + name + " " + std::to_string(content.size()) + " " + Checksum(content) +
         (isShown ? " " + Escaped(content) : "");
}

// The lines that one of the two has more often.
std::string Difference(const Lines& expected, const Lines& actual) {
  std::string text;
  const auto add = [&](const char* mark, const Lines& lines, const Lines& others) {
    for (const std::string& line : lines) {
      if (std::ranges::count(lines, line) > std::ranges::count(others, line))
        text += mark + line + "\n";
    }
  };
  add("- ", expected, actual);
  add("+ ", actual, expected);
  return text.empty() && expected != actual ? "the lines are in another order\n" : text;
}

Records ReadRecords() {
  Records records;
  std::string current;
  for (const std::string& line : SplitAt('\n', ContentOf(kExpected))) {
    if (line.starts_with("> ")) {
      records[current = line.substr(2)];
    } else {
      records[current].push_back(line.substr(2));
    }
  }
  return records;
}

void WriteRecords(const Records& records) {
  std::string text;
  for (const std::string& listed : ListedExports()) {
    text += "> " + listed + "\n";
    for (const std::string& line : records.at(listed)) text += "  " + line + "\n";
  }
  WriteContent(kExpected, text);
}

class Exports : public testing::TestWithParam<std::string> {
 protected:
  static void SetUpTestSuite() {
    s_scenes = std::make_unique<TemporaryFolder>();
    WriteScenes(ContentOf(ORV_EXPORTS "/scenes.txt"), DataFile("textures"), s_scenes->File(""));
    s_records = ReadRecords();
  }
  static void TearDownTestSuite() {
    if (std::getenv("ORV_RECORD")) WriteRecords(s_records);
    s_scenes.reset();
  }

  static Lines Run(const std::string& exports) {
    const Workplace place;
    const std::string root = place.Here().substr(0, place.Here().rfind('/'));
    const std::pair<std::string, std::string> folders[] = {
        {"{scenes}/", s_scenes->File("")},
        {"{examples}/", ExampleFile("")},
        {"{data}/", DataFile("")},
        {"{models}/", ModelFile("")},
        {"{run}/", root + "/"},
        {"{bin}/", std::filesystem::path(Program()).parent_path().string() + "/"}};
    Lines record;
    std::string next;
    for (std::istringstream in(exports); std::getline(in, next, ';');) {
      Words arguments = WordsOf(next);
      if (arguments.at(0) == "orv") {
        record.push_back("$");
        for (const std::string& word : arguments) record.back() += " " + word;
        arguments.erase(arguments.begin());
      } else {
        arguments.insert(arguments.begin(), "export");
      }
      for (std::string& word : arguments)
        for (const auto& [name, path] : folders) word = Replaced(word, name, path);
      Outcome run = place.Orv(arguments);
      for (const auto& [name, path] : folders) {
        for (std::string* text : {&run.out, &run.err}) *text = Replaced(*text, path, name);
      }
      record.push_back("status " + std::to_string(run.status));
      for (const std::string& line : SplitAt('\n', run.out))
        record.push_back("out: " + Escaped(line));
      AddLog(run.err, record);
    }
    for (const std::string where : {"here", "tmp", "home"}) {
      for (const auto& [name, content] : place.Files(where)) {
        record.push_back(DescribedFile(where == "here" ? name : where + ": " + name, content));
      }
    }
    return record;
  }

  static inline std::unique_ptr<TemporaryFolder> s_scenes;
  static inline Records s_records;
};

TEST_P(Exports, AreAsRecorded) {
  const Lines record = Run(GetParam());
  if (std::getenv("ORV_RECORD")) s_records[GetParam()] = record;
  const std::string difference = Difference(s_records[GetParam()], record);
  EXPECT_TRUE(difference.empty()) << GetParam() << "\n" << difference;
}

INSTANTIATE_TEST_SUITE_P(All, Exports, testing::ValuesIn(ListedExports()));

}  // namespace
}  // namespace orv
