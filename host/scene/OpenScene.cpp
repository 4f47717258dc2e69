#include "host/scene/OpenScene.h"

#include <assimp/config.h>
#include <assimp/postprocess.h>

#include <assimp/Importer.hpp>
#include <exception>
#include <filesystem>
#include <utility>

#include "host/scene/ImportContext.h"
#include "host/scene/ImportMaterials.h"
#include "host/scene/ImportMeshes.h"
#include "host/scene/ImportMotion.h"
#include "host/scene/ImportNodes.h"

namespace orv::host {
namespace {

bool HasPolygons(const aiScene& source) {
  for (unsigned i = 0; i < source.mNumMeshes; ++i) {
    if (source.mMeshes[i]->mPrimitiveTypes & aiPrimitiveType_POLYGON) return true;
  }
  return false;
}

// As few of the importer's steps as can be: the host merges positions itself, and materials that
// differ in their name only have to stay apart.
std::unique_ptr<aiScene> ReadSource(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) throw SceneError(path + ": there is no such file");
  if (std::filesystem::is_directory(path, error)) throw SceneError(path + ": is a folder");
  Assimp::Importer importer;
  importer.SetPropertyBool(AI_CONFIG_IMPORT_REMOVE_EMPTY_BONES, false);
  const aiScene* source = nullptr;
  std::string reason;
  try {
    source = importer.ReadFile(path, 0);
    if (source && HasPolygons(*source))
      source = importer.ApplyPostProcessing(aiProcess_Triangulate);
    reason = importer.GetErrorString();
  } catch (const std::exception& exception) {
    source = nullptr;
    reason = exception.what();
  }
  if (!source || !source->mRootNode) {
    throw SceneError(path + ": " + (reason.empty() ? "holds no scene" : reason));
  }
  return std::unique_ptr<aiScene>(importer.GetOrphanedScene());
}

}  // namespace

std::unique_ptr<Scene> OpenScene(const std::string& path, const SceneSettings& settings) {
  const std::unique_ptr<aiScene> source = ReadSource(path);
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
  return scene;
}

}  // namespace orv::host
