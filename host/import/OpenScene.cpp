#include "host/import/OpenScene.h"

#include <assimp/config.h>
#include <assimp/postprocess.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <nlohmann/json.hpp>
#include <span>
#include <utility>

#include "host/import/ImportSteps.h"
#include "platform/ExString.h"

namespace orv::host {
namespace {

uint32_t ReadWord(std::istream& in) {
  unsigned char bytes[4] = {};
  in.read(reinterpret_cast<char*>(bytes), 4);
  return bytes[0] | bytes[1] << 8 | bytes[2] << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

// The JSON of a file, the first chunk of a binary one; "" when it is neither.
std::string JsonOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (EndsWithIgnoringCase(path, ".gltf")) return {std::istreambuf_iterator<char>(in), {}};
  if (!EndsWithIgnoringCase(path, ".glb")) return "";
  in.seekg(0, std::ios::end);
  const std::streamoff size = in.tellg();
  in.seekg(12);  // magic, version, length
  const uint32_t length = ReadWord(in);
  ReadWord(in);  // chunk type
  if (!in || length > size) return "";
  std::string json(length, '\0');
  in.read(json.data(), length);
  return json;
}

// What keeps the importer from a glTF file's skins, in words for the user; "" for nothing, and for
// files of other formats. A skin need not have inverse bind matrices, but the importer reads them
// unasked.
std::string FaultOfGltfSkins(const std::string& path) {
  const std::string text = JsonOf(path);
  if (text.find("\"skins\"") == std::string::npos) return "";
  const nlohmann::json file = nlohmann::json::parse(text, nullptr, false);
  if (!file.is_object() || !file.contains("skins") || !file["skins"].is_array()) return "";
  for (size_t i = 0; i < file["skins"].size(); ++i) {
    const nlohmann::json& skin = file["skins"][i];
    if (!skin.is_object() || skin.contains("inverseBindMatrices")) continue;
    return "skin " + std::to_string(i) +
           " has no inverse bind matrices; save the scene again with them";
  }
  return "";
}

// Makes polygons fit for the importer's triangulation, which trusts them: those that name vertices
// that are not there go, and a mesh says that it has polygons only when it has. Answers whether
// any are left.
bool PreparePolygons(const aiScene& source) {
  bool any = false;
  for (aiMesh* mesh : std::span(source.mMeshes, source.mNumMeshes)) {
    if ((mesh->mPrimitiveTypes & aiPrimitiveType_POLYGON) == 0) continue;
    bool hasPolygons = false;
    for (aiFace& face : std::span(mesh->mFaces, mesh->mNumFaces)) {
      const std::span corners(face.mIndices, face.mNumIndices);
      const bool fits =
          std::ranges::all_of(corners, [&](unsigned v) { return v < mesh->mNumVertices; });
      if (!fits) face = aiFace();
      hasPolygons = hasPolygons || face.mNumIndices > 3;
    }
    if (!hasPolygons) mesh->mPrimitiveTypes &= ~unsigned{aiPrimitiveType_POLYGON};
    any = any || hasPolygons;
  }
  return any;
}

// As few of the importer's steps as can be: the host merges positions itself, and materials that
// differ in their name only have to stay apart.
std::unique_ptr<aiScene> ReadSource(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) throw SceneError(path + ": there is no such file");
  if (std::filesystem::is_directory(path, error)) throw SceneError(path + ": is a folder");
  if (const std::string fault = FaultOfGltfSkins(path); !fault.empty())
    throw SceneError(path + ": " + fault);
  Assimp::Importer importer;
  importer.SetPropertyBool(AI_CONFIG_IMPORT_REMOVE_EMPTY_BONES, false);
  const aiScene* source = nullptr;
  std::string reason;
  try {
    source = importer.ReadFile(path, 0);
    if (source && PreparePolygons(*source))
      source = importer.ApplyPostProcessing(aiProcess_Triangulate);
    reason = importer.GetErrorString();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& exception) {
    source = nullptr;
    reason = exception.what();
  }
  if (!source || !source->mRootNode) {
    throw SceneError(path + ": " + (reason.empty() ? "holds no scene" : reason));
  }
  return std::unique_ptr<aiScene>(importer.GetOrphanedScene());
}

SceneInfo DescribeScene(const SourceFile& file, const Playback& playback,
                        const SceneSettings& settings) {
  const std::filesystem::path path(file.path);
  SceneInfo info;
  info.fileName = path.filename().string();
  info.metresPerUnit = settings.metresPerUnit.value_or(file.facts.metresPerUnit);
  info.framesPerSecond = playback.framesPerSecond;
  info.firstFrame = playback.firstFrame;
  info.lastFrame = playback.lastFrame;
  info.animations = playback.names;
  if (playback.animation) info.animation = playback.animation->mName.C_Str();
  info.bitmapFolders = {path.has_parent_path() ? path.parent_path().string() : "."};
  info.bitmapFolders.insert(info.bitmapFolders.end(), settings.textureFolders.begin(),
                            settings.textureFolders.end());
  return info;
}

std::unique_ptr<Scene> ImportScene(const std::string& path, const SceneSettings& settings) {
  std::unique_ptr<aiScene> source = ReadSource(path);
  const FileFacts facts = ReadFileFacts(*source);
  SourceFile file{path, std::move(source), facts, AxisTurn(settings.up.value_or(facts.up))};
  const Playback playback = ChoosePlayback(file, settings);
  auto scene = std::make_unique<Scene>(DescribeScene(file, playback, settings));
  const SourceTree tree = ReadTree(file, playback);
  const std::vector<AddedNode> nodes = AddNodes(*scene, tree, path, settings.jointsAsBones);
  AddMeshes(*scene, std::move(file), tree, nodes, settings);
  return scene;
}

}  // namespace

std::unique_ptr<Scene> OpenScene(const std::string& path, const SceneSettings& settings) {
  try {
    return ImportScene(path, settings);
  } catch (const std::bad_alloc&) {
    throw SceneError(path + ": does not fit into memory");
  }
}

}  // namespace orv::host
