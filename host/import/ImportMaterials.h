// Inside of OpenScene: materials and their maps.
#pragma once

#include <assimp/material.h>

#include <optional>
#include <string>
#include <vector>

#include "host/import/EmbeddedTextures.h"
#include "host/import/ImportContext.h"

namespace orv::host {

// The scene's materials, each read when it is first asked for.
class MaterialImport {
 public:
  explicit MaterialImport(ImportContext& context);

  // Null for the importer's stand-in, unless the settings name a default material.
  Mtl* Find(unsigned index);
  // Of the texture coordinates that the material's diffuse map lies on.
  unsigned TexCoordChannel(unsigned index) const;

 private:
  bool IsStandIn(unsigned index) const;
  Mtl* DefaultMaterial();
  Mtl* ReadMaterial(const aiMaterial& source);
  void ReadMaps(const aiMaterial& source, MemoryMaterial& material);
  MemoryBitmap* ReadMap(const aiMaterial& source, aiTextureType type);
  std::string NameOfFile(const std::string& reference) const;
  void ReadCoordinates(const aiMaterial& source, aiTextureType type, MemoryCoordinates& result);
  bool TakesAlphaFromFile(const aiMaterial& source, const MemoryBitmap& diffuse);

  ImportContext& m_context;
  EmbeddedTextures m_textures;
  std::vector<std::optional<Mtl*>> m_made;
  Mtl* m_default = nullptr;
};

}  // namespace orv::host
