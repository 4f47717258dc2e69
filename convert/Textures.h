#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "convert/GlbDocument.h"
#include "convert/Messages.h"
#include "inspect/ModelFolder.h"

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
  std::optional<Texture> Make(const std::string& name);
  std::optional<inspect::SideFile> ReadSideFile(const std::string& name);
  std::optional<size_t> ImageOf(const inspect::SideFile& sideFile);
  std::optional<std::string> ReadBeside(const std::string& name);
  size_t SamplerOf(const inspect::SideFile& sideFile);

  inspect::ModelFolder m_folder;
  GlbDocument& m_document;  // not owned
  Messages& m_messages;     // not owned
  std::map<std::string, std::optional<Texture>> m_made;
  std::map<std::pair<std::string, std::string>, std::optional<size_t>> m_images;
  std::map<std::pair<bool, bool>, size_t> m_samplers;
};

}  // namespace orv::convert
