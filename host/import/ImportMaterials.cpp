#include "host/import/ImportMaterials.h"

#include <assimp/GltfMaterial.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>

#include "host/import/PictureFiles.h"
#include "host/memory/BitmapSearch.h"

namespace orv::host {
namespace {

namespace fs = std::filesystem;

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

// Uncompressed, 32 bits, first row on top; the importer's texels have a TGA's order of bytes.
std::string TgaOf(const aiTexture& texture) {
  std::string bytes(18, '\0');
  bytes[2] = 2;
  bytes[12] = static_cast<char>(texture.mWidth & 0xFF);
  bytes[13] = static_cast<char>(texture.mWidth >> 8);
  bytes[14] = static_cast<char>(texture.mHeight & 0xFF);
  bytes[15] = static_cast<char>(texture.mHeight >> 8);
  bytes[16] = 32;
  bytes[17] = 0x28;
  const size_t texels = size_t{texture.mWidth} * texture.mHeight;
  bytes.append(reinterpret_cast<const char*>(texture.pcData), texels * sizeof(aiTexel));
  return bytes;
}

std::string ExtensionOf(const aiTexture& texture) {
  if (texture.mHeight > 0) return ".tga";
  std::string hint(texture.achFormatHint, strnlen(texture.achFormatHint, HINTMAXTEXTURELEN));
  return hint.empty() ? ".bin" : "." + CleanFileName(hint);
}

// The texture's file, byte by byte.
std::string FileOf(const aiTexture& texture) {
  if (texture.mHeight > 0) return TgaOf(texture);
  return std::string(reinterpret_cast<const char*>(texture.pcData), texture.mWidth);
}

}  // namespace

MaterialImport::MaterialImport(const SourceFile& file, const SceneSettings& settings, Scene& scene)
    : m_file(file), m_settings(settings), m_scene(scene), m_made(file.scene->mNumMaterials) {}

Mtl* MaterialImport::Find(unsigned index) {
  if (index >= m_made.size()) return DefaultMaterial();
  if (!m_made[index]) {
    m_made[index] =
        IsStandIn(index) ? DefaultMaterial() : ReadMaterial(*m_file.scene->mMaterials[index]);
  }
  return *m_made[index];
}

Mtl* MaterialImport::DefaultMaterial() {
  if (!m_default && !m_settings.defaultMaterial.empty()) {
    m_default = &m_scene.AddMaterial(m_settings.defaultMaterial);
  }
  return m_default;
}

// The glTF importer's comes last. Without a name it is told from a file's own material, which may
// lack one too, by being all alone and plain.
bool MaterialImport::IsStandIn(unsigned index) const {
  const aiMaterial& material = *m_file.scene->mMaterials[index];
  const std::string name = NameOf(material);
  if (!name.empty()) return std::ranges::find(kStandInNames, name) != kStandInNames.end();
  if (HasMaps(material)) return false;
  if (m_file.facts.format.starts_with("glTF2")) return index + 1 == m_made.size();
  return m_made.size() == 1;
}

unsigned MaterialImport::TexCoordChannel(unsigned index) const {
  if (index >= m_made.size()) return 0;
  const aiMaterial& material = *m_file.scene->mMaterials[index];
  int channel = 0;
  material.Get(AI_MATKEY_UVWSRC(DiffuseType(material), 0), channel);
  return channel > 0 ? static_cast<unsigned>(channel) : 0;
}

Mtl* MaterialImport::ReadMaterial(const aiMaterial& source) {
  MemoryMaterial& material = m_scene.AddMaterial(NameOf(source));
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
  const aiTexture* embedded = FindEmbedded(reference.C_Str());
  MemoryBitmap& bitmap =
      m_scene.AddBitmap(embedded ? WriteEmbedded(*embedded) : NameOfFile(reference.C_Str()));
  ReadCoordinates(source, type, bitmap.coordinates);
  int flags = 0;
  source.Get(AI_MATKEY_TEXFLAGS(type, 0), flags);
  if (flags & aiTextureFlags_UseAlpha) bitmap.alphaSource = ALPHA_FILE;
  return &bitmap;
}

// glTF refers to files by URI; the importer hands it on as it stands.
std::string MaterialImport::NameOfFile(const std::string& reference) const {
  return m_file.facts.format.starts_with("glTF") ? WithoutPercentCodes(reference) : reference;
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
  if (const aiTexture* embedded = FindEmbedded(reference.C_Str())) {
    return PictureCarriesAlpha(FileOf(*embedded), diffuse.mapName);
  }
  const auto file = FindBitmapFile(diffuse.mapName, m_scene.info.bitmapFolders);
  if (!file) return true;
  std::string head(kPictureHeadBytes, '\0');
  std::ifstream in(*file, std::ios::binary);
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<size_t>(std::max<std::streamsize>(0, in.gcount())));
  return PictureCarriesAlpha(head, *file);
}

// Null when `reference`, as materials give it, is no embedded texture.
const aiTexture* MaterialImport::FindEmbedded(const std::string& reference) const {
  const auto [texture, index] = m_file.scene->GetEmbeddedTextureAndIndex(reference.c_str());
  return index >= 0 && texture && texture->pcData ? texture : nullptr;
}

std::string MaterialImport::NameOfEmbedded(const aiTexture& texture) const {
  std::string own = texture.mFilename.C_Str();
  own = own.substr(own.find_last_of("/\\") + 1);  // the whole when there is none
  if (own.empty() || own == "." || own == ".." || own[0] == '*') {
    const aiScene& source = *m_file.scene;
    const std::span textures(source.mTextures, source.mNumTextures);
    const auto index = std::ranges::find(textures, &texture) - textures.begin();
    own = fs::path(m_file.path).stem().string() + "_" + std::to_string(index);
  }
  own = CleanFileName(own);
  if (fs::path(own).extension().empty() || texture.mHeight > 0) own += ExtensionOf(texture);
  return own;
}

// Each once, under names that are the same in every run: the texture's own or the scene's with a
// number. A file is written when the settings name a folder for it.
std::string MaterialImport::WriteEmbedded(const aiTexture& texture) {
  const auto known = m_written.find(&texture);
  if (known != m_written.end()) return known->second;
  std::string name = NameOfEmbedded(texture);
  if (!m_settings.exportFolder.empty()) {
    name = WritePicture(m_settings.exportFolder, name, FileOf(texture), m_scene.info);
  }
  return m_written[&texture] = name;
}

}  // namespace orv::host
