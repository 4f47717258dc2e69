#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>

#include "convert/GlbDocument.h"
#include "convert/Messages.h"

namespace orv::convert {

// A texture of the document.
struct Texture {
  size_t number = 0;
  bool hasAlpha = false;  // the alpha of the picture counts
};

// Finds textures beside a model, whatever the case of their letters, and puts them into a document:
// each picture once.
class Textures {
 public:
  Textures(const std::string& folder, GlbDocument& document, Messages& messages);

  // name: as a material's map has it. Nothing, with a message, for what is missing or unreadable.
  std::optional<Texture> Find(const std::string& name);

 private:
  struct SideFile {
    std::string primary, alpha;  // names without folder; "" for none
    bool tileS = true, tileT = true;
  };

  std::optional<Texture> Make(const std::string& name);
  std::optional<SideFile> ReadSideFile(const std::string& name);
  std::optional<size_t> ImageOf(const SideFile& sideFile);
  std::optional<std::string> ReadBeside(const std::string& name);
  size_t SamplerOf(const SideFile& sideFile);

  GlbDocument& m_document;                                         // not owned
  Messages& m_messages;                                            // not owned
  std::unordered_map<std::string, std::filesystem::path> m_files;  // by name in lower case
  std::map<std::string, std::optional<Texture>> m_made;
  std::map<std::pair<std::string, std::string>, std::optional<size_t>> m_images;
  std::map<std::pair<bool, bool>, size_t> m_samplers;
};

}  // namespace orv::convert
