#include <unordered_map>

#include "inspect/Checks.h"
#include "inspect/ModelFolder.h"
#include "platform/ExString.h"

namespace orv::inspect {

namespace {

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

void CheckPicture(const ModelFolder& folder, const std::string& name, size_t chunk,
                  MissingFiles& missing) {
  if (folder.Find(name)) return;
  missing.Add(Code::TextureMissing, chunk, name, "the picture is not beside the model");
}

void CheckMap(const ModelFolder& folder, const MaterialMap& map, size_t chunk,
              MissingFiles& missing) {
  const std::string name(FileNamePart(map.fileName));
  if (!NamesSideFile(name)) {
    CheckPicture(folder, name, chunk, missing);
    return;
  }
  const std::string sideFileName = name + ".txt";
  const std::filesystem::path* const path = folder.Find(sideFileName);
  if (!path) {
    missing.Add(Code::SideFileMissing, chunk, sideFileName,
                "the file that describes the texture is not beside the model");
    return;
  }
  const SideFile sideFile = ReadSideFile(*path);
  if (sideFile.primary.empty()) {
    missing.Add(Code::SideFileIncomplete, chunk, sideFileName,
                "the file that describes the texture has no line \"Primary=\"");
    return;
  }
  CheckPicture(folder, sideFile.primary, chunk, missing);
  if (!sideFile.alpha.empty()) CheckPicture(folder, sideFile.alpha, chunk, missing);
}

}  // namespace

void CheckTextures(const IndexedMesh& mesh, const std::string& folderName, Findings& findings) {
  const ModelFolder folder(folderName);
  MissingFiles missing;
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    for (const MaterialMap& map : mesh.chunks[i].material.maps) CheckMap(folder, map, i, missing);
  }
  missing.MoveTo(findings);
}

}  // namespace orv::inspect
