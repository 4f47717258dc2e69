// Inside of OpenScene: materials and their maps.
#pragma once

#include <assimp/material.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/import/ImportSteps.h"

namespace orv::host {

// The scene's materials, each read when it is first asked for.
class MaterialImport {
 public:
  // All of them outlive this.
  MaterialImport(const SourceFile& file, const SceneSettings& settings, Scene& scene);

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

  const aiTexture* FindEmbedded(const std::string& reference) const;
  std::string NameOfEmbedded(const aiTexture& texture) const;
  std::string WriteEmbedded(const aiTexture& texture);

  const SourceFile& m_file;
  const SceneSettings& m_settings;
  Scene& m_scene;
  std::unordered_map<const aiTexture*, std::string> m_written;
  std::vector<std::optional<Mtl*>> m_made;
  Mtl* m_default = nullptr;
};

}  // namespace orv::host
