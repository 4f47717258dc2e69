#include <filesystem>
#include <fstream>
#include <optional>
#include <unordered_map>

#include "inspect/Checks.h"
#include "platform/ExString.h"
#include "platform/Platform.h"

namespace orv::inspect {

namespace {

constexpr char kSideFileEnd[] = ".texture";
constexpr std::string_view kPrimary = "primary=";
constexpr std::string_view kAlpha = "alpha=";

std::string NameWithoutFolder(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

// The files of one folder, found whatever the case of their letters, as the engine finds them.
class Folder {
 public:
  explicit Folder(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path native = path.empty() ? "." : platform::NativePath(path);
    for (fs::directory_iterator entry(native, error), end; !error && entry != end;
         entry.increment(error)) {
      m_files.emplace(LowerCase(entry->path().filename().string()), entry->path());
    }
  }

  const std::filesystem::path* Find(const std::string& name) const {
    const auto found = m_files.find(LowerCase(name));
    return found == m_files.end() ? nullptr : &found->second;
  }

 private:
  std::unordered_map<std::string, std::filesystem::path> m_files;
};

// The pictures that a side file names, the primary one first; none without a primary one.
std::vector<std::string> PicturesOf(const std::filesystem::path& sideFile) {
  std::ifstream in(sideFile);
  std::optional<std::string> primary, alpha;
  for (std::string line; std::getline(in, line);) {
    const std::string text = ExString(line.c_str()).TrimWhiteSpace().CStr();
    if (BeginsWithIgnoringCase(text, kPrimary)) primary = text.substr(kPrimary.size());
    if (BeginsWithIgnoringCase(text, kAlpha)) alpha = text.substr(kAlpha.size());
  }
  std::vector<std::string> pictures;
  if (primary) pictures.push_back(*primary);
  if (primary && alpha) pictures.push_back(*alpha);
  return pictures;
}

// Collects what is missing, each file once with the number of maps that need it.
class MissingFiles {
 public:
  void Add(Code code, size_t chunk, const std::string& name, const std::string& text) {
    const auto [place, isNew] = m_places.try_emplace(
        std::to_string(static_cast<int>(code)) + LowerCase(name), m_findings.size());
    if (!isNew) {
      ++m_findings[place->second].count;
      return;
    }
    const std::string path = "QIRF/CHNK " + std::to_string(chunk) + "/MATL";
    m_findings.push_back({code, {path, static_cast<int64_t>(chunk), name}, text});
  }
  void MoveTo(Findings& findings) {
    for (Finding& finding : m_findings) findings.push_back(std::move(finding));
  }

 private:
  Findings m_findings;
  std::unordered_map<std::string, size_t> m_places;
};

void CheckPicture(const Folder& folder, const std::string& picture, size_t chunk,
                  MissingFiles& missing) {
  const std::string name = NameWithoutFolder(picture);
  if (folder.Find(name)) return;
  missing.Add(Code::TextureMissing, chunk, name, "the picture is not beside the model");
}

void CheckMap(const Folder& folder, const MaterialMap& map, size_t chunk, MissingFiles& missing) {
  const std::string name = NameWithoutFolder(map.fileName);
  if (!LowerCase(name).ends_with(kSideFileEnd)) {
    CheckPicture(folder, name, chunk, missing);
    return;
  }
  const std::string sideFile = name + ".txt";
  const std::filesystem::path* const path = folder.Find(sideFile);
  if (!path) {
    missing.Add(Code::SideFileMissing, chunk, sideFile,
                "the file that describes the texture is not beside the model");
    return;
  }
  const std::vector<std::string> pictures = PicturesOf(*path);
  if (pictures.empty()) {
    missing.Add(Code::SideFileIncomplete, chunk, sideFile,
                "the file that describes the texture has no line \"Primary=\"");
  }
  for (const std::string& picture : pictures) CheckPicture(folder, picture, chunk, missing);
}

}  // namespace

void CheckTextures(const IndexedMesh& mesh, const std::string& folderName, Findings& findings) {
  const Folder folder(folderName);
  MissingFiles missing;
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    for (const MaterialMap& map : mesh.chunks[i].material.maps) CheckMap(folder, map, i, missing);
  }
  missing.MoveTo(findings);
}

}  // namespace orv::inspect
