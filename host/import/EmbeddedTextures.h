// Inside of OpenScene: textures that the file holds itself.
#pragma once

#include <assimp/texture.h>

#include <string>
#include <string_view>
#include <unordered_map>

#include "host/import/ImportContext.h"

namespace orv::host {

// Writes embedded textures out, each once, under names that are the same in every run: the
// texture's own or the scene's with a number. A file of that name with other content is left alone
// and the texture goes beside it.
class EmbeddedTextures {
 public:
  explicit EmbeddedTextures(ImportContext& context) : m_context(context) {}

  // Null when `reference`, as materials give it, is no embedded texture.
  const aiTexture* Find(const std::string& reference) const;
  // The name for the map; the file is written when the settings name a folder for it.
  std::string Write(const aiTexture& texture);

  // The texture's file, byte by byte.
  static std::string FileOf(const aiTexture& texture);

 private:
  std::string BaseNameOf(const aiTexture& texture) const;
  std::string WriteBeside(const std::string& name, const std::string& bytes);

  ImportContext& m_context;
  std::unordered_map<const aiTexture*, std::string> m_written;
};

}  // namespace orv::host
