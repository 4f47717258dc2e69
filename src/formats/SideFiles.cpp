#include "formats/SideFiles.h"

#include <algorithm>
#include <fstream>
#include <ios>
#include <optional>
#include <string_view>

#include "platform/ExString.h"
#include "platform/Platform.h"
#include "platform/ReplacingFile.h"

namespace orv {

namespace {

constexpr std::string_view kTexture = ".texture";  // ends the name of a texture with a side file

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

bool AnyDiffuseMap(const GenericMaterial& material, const auto& nameTest) {
  return std::any_of(material.maps.begin(), material.maps.end(), [&](const MaterialMap& map) {
    return map.channel == kDiffuse && nameTest(map.fileName);
  });
}

// A diffuse map that went through a side file with alpha carries both words in its name; so does
// any other file that happens to, its folder included.
// Pinned by MaterialName.SuffixFollowsTheMaps.
bool HasAlpha(const GenericMaterial& material) {
  return FindMap(material, kOpacity) || AnyDiffuseMap(material, [](const std::string& name) {
           return Contains(name, kTexture) && Contains(name, "-");
         });
}

const MaterialType& ChooseType(const GenericMaterial& material, bool allowBillboards) {
  if (FindMap(material, kReflection)) return HasAlpha(material) ? kGloss : kReflect;
  const auto diffuseNameHas = [&](const char* part) {
    return AnyDiffuseMap(material, [&](const std::string& name) { return Contains(name, part); });
  };
  if (allowBillboards && diffuseNameHas("tb_")) return kTriBillboard;
  if (allowBillboards && diffuseNameHas("sb_")) return kBillboard;
  return FindMap(material, kDiffuse) ? kOneTexture : kNoTexture;
}

// The rest of a line that begins with the key.
std::optional<std::string> ValueOf(const std::string& line, std::string_view key) {
  if (!BeginsWithIgnoringCase(line, key)) return std::nullopt;
  return line.substr(key.size());
}

SideFile SideFileOf(const MaterialMap& primary, const MaterialMap* alpha) {
  SideFile sideFile;
  sideFile.primary = MapName(primary.fileName);
  if (alpha) sideFile.alpha = MapName(alpha->fileName);
  const bool mayTile = !BeginsWithIgnoringCase(sideFile.primary, "notile_");
  sideFile.tileS = mayTile && primary.tileS;
  sideFile.tileT = mayTile && primary.tileT;
  sideFile.isNormalMap = primary.channel == kBump;
  sideFile.flipGreen = primary.flipGreen;
  return sideFile;
}

// Writes the side files of one material.
class SideFileWriter {
 public:
  SideFileWriter(const std::string& folder, ExportUserInterface& ui, bool& askOverwrite,
                 bool& forceOverwrite)
      : m_folder(folder),
        m_ui(ui),
        m_askOverwrite(askOverwrite),
        m_forceOverwrite(forceOverwrite) {}

  // alpha: the same map as primary, another one, or null.
  void WriteFor(MaterialMap& primary, const MaterialMap* alpha);

 private:
  void WriteOrSkip(const std::string& path, const std::string& text);
  bool MayReplaceAfterAsking(const std::string& path, const char* prefix);
  void ReplaceRemoved(const std::string& path, const std::string& text, const char* prefix);
  bool WriteText(const std::string& path, const std::string& text, const std::string& finalPath);

  const std::string& m_folder;
  ExportUserInterface& m_ui;
  bool& m_askOverwrite;
  bool& m_forceOverwrite;
};

void SideFileWriter::WriteFor(MaterialMap& primary, const MaterialMap* alpha) {
  m_ui.CollectTexture(primary.fileName);
  if (alpha) m_ui.CollectTexture(alpha->fileName);
  if (!m_ui.CanPrompt()) m_askOverwrite = false;
  if (Contains(primary.fileName, kTexture)) return;  // has its side file already

  const SideFile sideFile = SideFileOf(primary, alpha);
  const std::string texture = m_folder + TextureName(sideFile);
  WriteOrSkip(SideFileName(texture), TextOf(sideFile));
  primary.fileName = texture.substr(0, kMaxMapFileName);
}

void SideFileWriter::WriteOrSkip(const std::string& path, const std::string& text) {
  if (!platform::FileExists(path)) {
    WriteText(path, text, path);
  } else if (m_forceOverwrite) {
    m_ui.Report("side-file-overwritten", path);
    WriteText(path, text, path);
  } else {
    const char* prefix = platform::IsWritable(path) ? "" : "Read-Only ";
    if (m_askOverwrite && MayReplaceAfterAsking(path, prefix)) {
      ReplaceRemoved(path, text, prefix);
    } else {
      m_ui.Report("side-file-kept", path);
    }
  }
}

bool SideFileWriter::MayReplaceAfterAsking(const std::string& path, const char* prefix) {
  const Answer answer = m_ui.Ask("side-file-exists", prefix, path);
  if (answer == Answer::YesToAll) m_forceOverwrite = true;
  if (answer == Answer::NoToAll) m_askOverwrite = false;
  return answer == Answer::Yes || answer == Answer::YesToAll;
}

// The old file, read-only perhaps, makes room only for a complete new one. A folder that takes no
// new file lets none be removed either.
void SideFileWriter::ReplaceRemoved(const std::string& path, const std::string& text,
                                    const char* prefix) {
  const std::string newPath = path + ".orv-new";
  const bool canRemove = platform::WhyNotWritable(newPath).empty();
  if (canRemove && !WriteText(newPath, text, path)) return;
  if (!canRemove || !platform::RemoveFile(path)) {
    m_ui.Report("side-file-not-removable", prefix, path);
    m_ui.Report("side-file-kept", path);
    platform::RemoveFile(newPath);
    return;
  }
  m_ui.Report("side-file-overwritten", path);
  if (!platform::RenameOnto(newPath, path)) {
    m_ui.Report("side-file-not-writable", path);
    m_ui.Report("side-file-not-writable-text", newPath);
  }
}

// finalPath: the name that the user is told when writing fails.
bool SideFileWriter::WriteText(const std::string& path, const std::string& text,
                               const std::string& finalPath) {
  ReplacingFile file(path, std::ios::out);
  file << text;
  if (file.Commit()) return true;
  m_ui.Report("side-file-not-writable", finalPath);
  m_ui.Report("side-file-not-writable-reason", file.FailureReason(), finalPath);
  return false;
}

// With exactly one separator between the two; a folder of no name is the topmost one.
std::string DestinationPath(const std::string& folder, const std::string& source) {
  const std::string name = MapName(source);
  ExString path(folder.c_str());
  return path.AppendPath(name.c_str(), false).NormalizeSeparators('\\').CStr();
}

}  // namespace

std::string MapName(std::string_view fileName) {
  return std::string(fileName.substr(fileName.find_last_of("/\\") + 1));
}

std::string TextureName(const SideFile& sideFile) {
  std::string name(BaseNamePart(sideFile.primary));
  if (sideFile.alpha) name.append("-").append(BaseNamePart(*sideFile.alpha));
  return name.append(kTexture);
}

std::string SideFileName(const std::string& textureName) { return textureName + ".txt"; }

bool IsTextureName(std::string_view mapName) { return EndsWithIgnoringCase(mapName, kTexture); }

std::string TextOf(const SideFile& sideFile) {
  std::string text = "Primary=" + sideFile.primary + "\n";
  if (sideFile.alpha) text += "Alpha=" + *sideFile.alpha + "\n";
  if (sideFile.tileS || sideFile.tileT) {
    text += std::string("Tile=") + (sideFile.tileS ? "s" : "") + (sideFile.tileT ? "t" : "") + "\n";
  }
  if (sideFile.isNormalMap) {
    text += "NormalMapHint=normalmap\n";
    if (sideFile.flipGreen) text += "ModifyMap=flipgreen\n";
  }
  return text;
}

SideFile ReadSideFile(const std::filesystem::path& path) {
  SideFile sideFile;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) {
    const std::string text = ExString(line.c_str()).TrimWhiteSpace().CStr();
    if (const auto value = ValueOf(text, "primary=")) sideFile.primary = MapName(*value);
    if (const auto value = ValueOf(text, "alpha=")) {
      sideFile.alpha = MapName(*value);
      if (sideFile.alpha->empty()) sideFile.alpha.reset();
    }
    if (const auto value = ValueOf(text, "tile=")) {
      sideFile.tileS = value->find('s') != std::string::npos;
      sideFile.tileT = value->find('t') != std::string::npos;
    }
    if (ValueOf(text, "normalmaphint=normalmap")) sideFile.isNormalMap = true;
    if (ValueOf(text, "modifymap=flipgreen")) sideFile.flipGreen = true;
  }
  return sideFile;
}

ModelFolder::ModelFolder(const std::string& folder) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path native = folder.empty() ? "." : platform::NativePath(folder);
  for (fs::directory_iterator entry(native, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code unknown;
    if (entry->is_directory(unknown)) continue;
    m_files.emplace(LowerCase(entry->path().filename().string()), entry->path());
  }
}

const std::filesystem::path* ModelFolder::Find(const std::string& name) const {
  const auto found = m_files.find(LowerCase(name));
  return found == m_files.end() ? nullptr : &found->second;
}

std::string ComposeMaterialName(const GenericMaterial& material, const std::string& name,
                                bool allowBillboards, ExportUserInterface& ui) {
  if (HasTypeSuffix(name)) return LowerCase(name);
  ui.Report("material-type-missing", name);
  return LowerCase(name) + "m." + ChooseType(material, allowBillboards).word;
}

bool WriteTextureSideFiles(GenericMaterial& material, const std::string& folder,
                           ExportUserInterface& ui, bool& askOverwrite, bool& forceOverwrite) {
  SideFileWriter writer(folder, ui, askOverwrite, forceOverwrite);
  MaterialMap* diffuse = nullptr;
  const MaterialMap* opacity = nullptr;
  for (MaterialMap& map : material.maps) {  // of several, the last one counts
    if (map.channel == kDiffuse) {
      diffuse = &map;
    } else if (map.channel == kOpacity) {
      opacity = &map;
    } else {
      writer.WriteFor(map, map.alphaFromFile ? &map : nullptr);
    }
  }
  if (diffuse) {
    const bool ownAlpha = !opacity && diffuse->alphaFromFile;
    writer.WriteFor(*diffuse, ownAlpha ? diffuse : opacity);
  }
  return opacity != nullptr;
}

bool CopyTextures(const std::vector<std::string>& names, const std::string& folder,
                  bool noQuestions, bool silent, const TextureResolver& resolve,
                  ExportUserInterface& ui) {
  ui.SetProgressText("Copying texture files...");
  std::vector<std::string> failed;
  for (const std::string& name : names) {
    const std::string resolved = resolve(name);
    const std::string& source = resolved.empty() ? name : resolved;
    const std::string destination = DestinationPath(folder, source);
    if (platform::IsSameFile(source, destination)) continue;
    if (!platform::CopyOneFile(source, destination, noQuestions, silent)) failed.push_back(source);
  }
  if (failed.empty()) return true;
  ui.Report("texture-copy-failed", failed.size());
  for (const std::string& name : failed) ui.Report("texture-copy-failed-name", name);
  return false;
}

}  // namespace orv
