#include "host/import/ImportMaterials.h"

#include <assimp/GltfMaterial.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string>

#include "host/import/ImageAlpha.h"
#include "host/memory/BitmapSearch.h"

namespace orv::host {
namespace {

struct SlotSource {
  int slot;
  aiTextureType type;
};

// Of several sources of one slot the first that the material has.
constexpr SlotSource kSlotSources[] = {
    {ID_AM, aiTextureType_AMBIENT},       {ID_DI, aiTextureType_DIFFUSE},
    {ID_DI, aiTextureType_BASE_COLOR},    {ID_SP, aiTextureType_SPECULAR},
    {ID_SH, aiTextureType_SHININESS},     {ID_SH, aiTextureType_DIFFUSE_ROUGHNESS},
    {ID_SI, aiTextureType_EMISSIVE},      {ID_SI, aiTextureType_EMISSION_COLOR},
    {ID_OP, aiTextureType_OPACITY},       {ID_BU, aiTextureType_NORMALS},
    {ID_BU, aiTextureType_NORMAL_CAMERA}, {ID_BU, aiTextureType_HEIGHT},
    {ID_RL, aiTextureType_REFLECTION},    {ID_DP, aiTextureType_DISPLACEMENT},
};

// What importers call the material of parts that have none.
constexpr std::array kStandInNames = {"DefaultMaterial", "%%%DEFAULT", "<LWODefault>",
                                      "LWODefaultSurface", "<IFCDefault>"};

std::string NameOf(const aiMaterial& material) {
  aiString name;
  material.Get(AI_MATKEY_NAME, name);
  return name.C_Str();
}

bool HasMaps(const aiMaterial& material) {
  return std::ranges::any_of(kSlotSources, [&](const SlotSource& source) {
    return material.GetTextureCount(source.type) > 0;
  });
}

aiTextureType DiffuseType(const aiMaterial& material) {
  return material.GetTextureCount(aiTextureType_DIFFUSE) > 0 ? aiTextureType_DIFFUSE
                                                             : aiTextureType_BASE_COLOR;
}

bool GetColour(const aiMaterial& material, const char* key, unsigned type, unsigned index,
               Color& colour) {
  aiColor3D found;
  if (material.Get(key, type, index, found) != AI_SUCCESS) return false;
  colour = Color(found.r, found.g, found.b);
  return true;
}

float GetNumber(const aiMaterial& material, const char* key, unsigned type, unsigned index,
                float otherwise) {
  float found = otherwise;
  return material.Get(key, type, index, found) == AI_SUCCESS ? found : otherwise;
}

// "OPAQUE", "MASK" or "BLEND"; empty where the format has no such mode.
std::string AlphaModeOf(const aiMaterial& material) {
  aiString mode;
  return material.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) == AI_SUCCESS ? mode.C_Str() : "";
}

float MapAmount(const aiMaterial& material, aiTextureType type) {
  const float scale = GetNumber(material, AI_MATKEY_GLTF_TEXTURE_SCALE(type, 0), 1);
  return GetNumber(material, AI_MATKEY_TEXBLEND(type, 0), scale);
}

}  // namespace

MaterialImport::MaterialImport(ImportContext& context)
    : m_context(context), m_textures(context), m_made(context.source.mNumMaterials) {}

Mtl* MaterialImport::Find(unsigned index) {
  if (index >= m_made.size()) return DefaultMaterial();
  if (!m_made[index]) {
    m_made[index] =
        IsStandIn(index) ? DefaultMaterial() : ReadMaterial(*m_context.source.mMaterials[index]);
  }
  return *m_made[index];
}

Mtl* MaterialImport::DefaultMaterial() {
  if (!m_default && !m_context.settings.defaultMaterial.empty()) {
    m_default = &m_context.scene.AddMaterial(m_context.settings.defaultMaterial);
  }
  return m_default;
}

// The glTF importer's comes last. Without a name it is told from a file's own material, which may
// lack one too, by being all alone and plain.
bool MaterialImport::IsStandIn(unsigned index) const {
  const aiMaterial& material = *m_context.source.mMaterials[index];
  const std::string name = NameOf(material);
  if (!name.empty()) return std::ranges::find(kStandInNames, name) != kStandInNames.end();
  if (HasMaps(material)) return false;
  if (m_context.facts.format.starts_with("glTF2")) return index + 1 == m_made.size();
  return m_made.size() == 1;
}

unsigned MaterialImport::TexCoordChannel(unsigned index) const {
  if (index >= m_made.size()) return 0;
  const aiMaterial& material = *m_context.source.mMaterials[index];
  int channel = 0;
  material.Get(AI_MATKEY_UVWSRC(DiffuseType(material), 0), channel);
  return channel > 0 ? static_cast<unsigned>(channel) : 0;
}

Mtl* MaterialImport::ReadMaterial(const aiMaterial& source) {
  MemoryMaterial& material = m_context.scene.AddMaterial(NameOf(source));
  if (!GetColour(source, AI_MATKEY_COLOR_DIFFUSE, material.diffuse)) {
    GetColour(source, AI_MATKEY_BASE_COLOR, material.diffuse);
  }
  material.ambient = material.diffuse;
  GetColour(source, AI_MATKEY_COLOR_AMBIENT, material.ambient);
  GetColour(source, AI_MATKEY_COLOR_SPECULAR, material.specular);
  material.hasSelfIllumColor = GetColour(source, AI_MATKEY_COLOR_EMISSIVE, material.selfIllumColor);
  const float exponent = GetNumber(source, AI_MATKEY_SHININESS, material.shininess * 100);
  material.shininess = std::clamp(exponent / 100, 0.0f, 1.0f);
  // An opaque material's alpha counts for nothing.
  if (AlphaModeOf(source) != "OPAQUE") material.opacity = GetNumber(source, AI_MATKEY_OPACITY, 1);
  int twoSided = 0;
  source.Get(AI_MATKEY_TWOSIDED, twoSided);
  material.twoSided = twoSided != 0;
  ReadMaps(source, material);
  return &material;
}

void MaterialImport::ReadMaps(const aiMaterial& source, MemoryMaterial& material) {
  for (const SlotSource& from : kSlotSources) {
    const size_t slot = static_cast<size_t>(from.slot);
    if (material.maps[slot] || source.GetTextureCount(from.type) == 0) continue;
    MemoryBitmap* bitmap = ReadMap(source, from.type);
    if (from.slot == ID_DI && TakesAlphaFromFile(source, *bitmap)) {
      bitmap->alphaSource = ALPHA_FILE;
    }
    material.maps[slot] = bitmap;
    material.amounts[slot] = MapAmount(source, from.type);
  }
}

MemoryBitmap* MaterialImport::ReadMap(const aiMaterial& source, aiTextureType type) {
  aiString reference;
  source.Get(AI_MATKEY_TEXTURE(type, 0), reference);
  const aiTexture* embedded = m_textures.Find(reference.C_Str());
  MemoryBitmap& bitmap = m_context.scene.AddBitmap(embedded ? m_textures.Write(*embedded)
                                                            : NameOfFile(reference.C_Str()));
  ReadCoordinates(source, type, bitmap.coordinates);
  int flags = 0;
  source.Get(AI_MATKEY_TEXFLAGS(type, 0), flags);
  if (flags & aiTextureFlags_UseAlpha) bitmap.alphaSource = ALPHA_FILE;
  return &bitmap;
}

// glTF refers to files by URI; the importer hands it on as it stands.
std::string MaterialImport::NameOfFile(const std::string& reference) const {
  return m_context.facts.format.starts_with("glTF") ? WithoutPercentCodes(reference) : reference;
}

void MaterialImport::ReadCoordinates(const aiMaterial& source, aiTextureType type,
                                     MemoryCoordinates& result) {
  aiUVTransform transform;
  if (source.Get(AI_MATKEY_UVTRANSFORM(type, 0), transform) == AI_SUCCESS) {
    result.uOffset = transform.mTranslation.x;
    result.vOffset = transform.mTranslation.y;
    result.uScale = transform.mScaling.x;
    result.vScale = transform.mScaling.y;
    result.angle = transform.mRotation;
  }
  // A mirrored texture repeats, too.
  const auto repeats = [](int mode) {
    return mode == aiTextureMapMode_Wrap || mode == aiTextureMapMode_Mirror;
  };
  int u = aiTextureMapMode_Wrap, v = aiTextureMapMode_Wrap;
  source.Get(AI_MATKEY_MAPPINGMODE_U(type, 0), u);
  source.Get(AI_MATKEY_MAPPINGMODE_V(type, 0), v);
  result.tiling = (repeats(u) ? U_WRAP : 0) | (repeats(v) ? V_WRAP : 0);
}

bool MaterialImport::TakesAlphaFromFile(const aiMaterial& source, const MemoryBitmap& diffuse) {
  const std::string mode = AlphaModeOf(source);
  if (mode.empty() || mode == "OPAQUE") return false;
  aiString reference;
  source.Get(AI_MATKEY_TEXTURE(DiffuseType(source), 0), reference);
  if (const aiTexture* embedded = m_textures.Find(reference.C_Str())) {
    return ImageCarriesAlpha(EmbeddedTextures::FileOf(*embedded), diffuse.mapName);
  }
  const auto file = FindBitmapFile(diffuse.mapName, m_context.scene.info.bitmapFolders);
  if (!file) return true;
  std::string head(kImageHeadBytes, '\0');
  std::ifstream in(*file, std::ios::binary);
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<size_t>(std::max<std::streamsize>(0, in.gcount())));
  return ImageCarriesAlpha(head, *file);
}

}  // namespace orv::host
