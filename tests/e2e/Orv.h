#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Process.h"
#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv {

using Words = std::vector<std::string>;

inline std::string DataFile(const std::string& name) { return ORV_TEST_DATA "/" + name; }

inline std::string ExampleFile(const std::string& name) { return ORV_EXAMPLES "/" + name; }

// One of the importer's own test files, which a package installs.
inline std::string ModelFile(const std::string& name) { return "/usr/share/assimp/models/" + name; }

// The program to test: the one just built, unless the environment names another.
inline std::string Program() {
  const char* other = std::getenv("ORV_OTHER_PROGRAM");
  return other ? other : ORV_PROGRAM;
}

inline Words SplitAt(char separator, const std::string& text) {
  Words parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  return parts;
}

inline Words operator+(Words words, const Words& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

// A run of the program.
struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

// A folder in which the program runs, with nobody at the keyboard; settings and temporary files
// stay inside of it, too.
class Workplace {
 public:
  Workplace() {
    for (const char* name : {"here", "tmp", "home"}) {
      std::filesystem::create_directories(m_root.File(name));
    }
  }

  // To be changed before it is run. Looking for leaks takes a sanitized program five times as long
  // as a small export.
  Command Prepared(const Words& arguments) const {
    return {.arguments = Words{Program()} + arguments,
            .folder = Here(),
            .output = m_root.File("run"),
            .environment = {
                {"TMPDIR", m_root.File("tmp")},
                {"HOME", m_root.File("home")},
                {"XDG_CONFIG_HOME", m_root.File("home")},
                {"ASAN_OPTIONS", "detect_leaks=0"},
                {"LSAN_OPTIONS", "print_suppressions=0:suppressions=" ORV_LEAK_SUPPRESSIONS}}};
  }
  Outcome Run(const Command& command) const {
    Process run(command);
    const int status = run.Status();
    return {status, run.Output(), run.Errors()};
  }
  Outcome Orv(const Words& arguments) const { return Run(Prepared(arguments)); }

  // orv export SCENE -o OUT ...
  Outcome Export(const std::string& scene, const std::string& output,
                 const Words& more = {}) const {
    return Orv(Words{"export", scene, "-o", output} + more);
  }

  std::string Here() const { return m_root.File("here"); }
  std::string Path(const std::string& name) const { return Here() + "/" + name; }
  std::string Content(const std::string& name) const { return ContentOf(Path(name)); }
  IndexedMeshFile Mesh(const std::string& name) const { return Read(ReadIndexedMeshFile, name); }
  AnimationFile Animation(const std::string& name) const { return Read(ReadAnimationFile, name); }

  // All files in and below one of "here", "tmp", "home", by their paths in there.
  std::map<std::string, std::string> Files(const std::string& where = "here") const {
    std::map<std::string, std::string> files;
    const std::filesystem::path root = m_root.File(where);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
      const bool isFile = entry.is_regular_file();
      files[entry.path().lexically_relative(root).string() + (isFile ? "" : "/")] =
          isFile ? ContentOf(entry.path().string()) : "";
    }
    return files;
  }

 private:
  template <typename File>
  File Read(bool (*read)(const std::string&, File&, ReadProblem&), const std::string& name) const {
    File file;
    ReadProblem problem;
    if (!read(Path(name), file, problem)) throw std::runtime_error(problem.Message());
    return file;
  }

  TemporaryFolder m_root;
};

}  // namespace orv
