#include "host/import/OpenScene.h"

#include <assimp/config.h>
#include <assimp/postprocess.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <new>
#include <span>
#include <utility>

#include "host/import/GltfSkins.h"
#include "host/import/ImportContext.h"
#include "host/import/ImportMaterials.h"
#include "host/import/ImportMeshes.h"
#include "host/import/ImportMotion.h"
#include "host/import/ImportNodes.h"

namespace orv::host {
namespace {

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

std::unique_ptr<Scene> ImportScene(const std::string& path, const SceneSettings& settings) {
  std::unique_ptr<aiScene> source = ReadSource(path);
  auto scene = std::make_unique<Scene>();
  const FileFacts facts = ReadFileFacts(*source);
  const bool yUp = settings.upAxis.empty() ? !facts.zUp : settings.upAxis == "y";
  ImportContext context{*source, *scene, settings, path, facts, AxisTurn(yUp)};

  SceneInfo& info = scene->info;
  info.fileName = FileNameOf(path);
  info.metresPerUnit = settings.metresPerUnit.value_or(facts.metresPerUnit);
  info.bitmapFolders = {FolderOf(path)};
  info.bitmapFolders.insert(info.bitmapFolders.end(), settings.textureFolders.begin(),
                            settings.textureFolders.end());

  const aiAnimation* animation = ImportTime(context);
  SourceTree tree = FlattenTree(*source);
  ImportNodes(context, tree, animation);
  MaterialImport materials(context);
  ImportMeshes(context, tree, materials);
  MakePointHelpers(context, tree);
  source.reset();
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
