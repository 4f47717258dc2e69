#include "readers/MaxExGeometryExporter.h"

#include <memory>
#include <span>
#include <utility>

#include "formats/IndexedMeshFile.h"
#include "meshproc/ExIndexedMesh.h"
#include "options/Options.h"
#include "readers/MaxExInfluence.h"
#include "readers/MaxExScene.h"
#include "scene/MeshMerger.h"
#include "units.h"

namespace orv {
namespace {

void TransformMeshes(SceneContent& scene, float scale, ExportUserInterface& ui) {
  ui.SetProgressText("Transforming and cropping");
  if (scene.skeleton) scene.skeleton->SetFrame(0);
  for (size_t i = 0; i < scene.meshes.size(); ++i) {
    ui.ReportProgress(i, scene.meshes.size());
    const SceneMesh& read = scene.meshes[i];
    const auto& materials = read.mesh->m_materials;
    read.mesh->Transform(read.objectTransform, scale,
                         materials.empty() ? nullptr : materials[0].attachmentBone);
    read.mesh->ApplyTexCoordTransforms(read.transforms);
  }
}

// Room for all meshes in the first, so that it grows once.
void ReserveForAll(std::span<const SceneMesh> meshes) {
  size_t positions = 0, normals = 0, texCoords = 0, faces = 0;
  for (const SceneMesh& read : meshes) {
    positions += read.mesh->m_positions.size();
    normals += read.mesh->m_normals.size();
    texCoords += read.mesh->m_texCoords.size();
    faces += read.mesh->m_faces.size();
  }
  GenericMesh& first = *meshes.front().mesh;
  first.m_positions.reserve(positions);
  first.m_normals.reserve(normals);
  first.m_texCoords.reserve(texCoords);
  first.m_faces.Reserve(faces, 3 * faces);
}

// The first mesh with all others behind it, and influence 0 with the bones of the others.
std::unique_ptr<GenericMesh> MergeMeshes(SceneContent& scene, bool ignoreColours,
                                         ExportUserInterface& ui) {
  ui.SetProgressText("Merging meshes");
  ReserveForAll(scene.meshes);
  MeshMerger merger(std::move(scene.meshes[0].mesh), ignoreColours);
  GenericMeshInfluence& influence = *scene.influences[0];
  for (size_t i = 1; i < scene.meshes.size(); ++i) {
    ui.ReportProgress(i, scene.meshes.size());
    merger.Append(*scene.meshes[i].mesh);
    scene.meshes[i].mesh.reset();
    // Kept: the offset is taken after the append, so the weights name vertices past the mesh they
    // belong to. Pinned by GeometryExport.MergedWeightsAreShiftedPastTheirOwnMesh.
    influence.Merge(*scene.influences[i], static_cast<uint32_t>(merger.Mesh().m_positions.size()));
    scene.influences[i].reset();
  }
  return merger.Finish();
}

// Every bone of the scene is in the influence, also where no vertex follows it.
void AddWeightlessBones(GenericMeshInfluence& influence, std::span<INode* const> bones,
                        float scale) {
  for (INode* bone : bones) {
    if (influence.FindBone(RecordName(bone->GetName()))) continue;
    influence.AddBone(std::make_unique<MaxExGenericBoneInfluence>(bone, scale));
  }
}

bool BuildIndexedMesh(ExIndexedMesh& indexed, const GenericMesh& mesh, const Options& options,
                      ExportUserInterface& ui) {
  if (indexed.BuildChunks(mesh, options.m_buildNeighbourInfo, options.m_useDefaultColors, ui)) {
    return true;
  }
  ui.Report("mesh-too-large", mesh.m_positions.size(), 3 * mesh.m_faces.size());
  return false;
}

}  // namespace

bool MaxExGeometryExporter::ExportGeometry(Interface* host, const char* outputFileName,
                                           ExportUserInterface& ui) {
  Options& options = Options::Instance();
  const float scale = static_cast<float>(GetMasterScale(kMetres));
  SceneContent scene = ReadScene(m_nodes.Nodes(), host, scale, options, ui);
  if (scene.meshes.empty()) {
    ui.Report("nothing-to-export");
    return true;
  }
  TransformMeshes(scene, scale, ui);
  std::unique_ptr<GenericMesh> mesh = MergeMeshes(scene, options.m_useDefaultColors, ui);
  AddWeightlessBones(*scene.influences[0], scene.boneNodes, scale);
  mesh->m_attachmentPoints = std::move(scene.attachmentPoints);
  mesh->m_influence = scene.influences[0].get();
  mesh->m_skeleton = scene.skeleton.get();
  ExIndexedMesh indexed;
  if (!BuildIndexedMesh(indexed, *mesh, options, ui)) return false;
  mesh.reset();  // the chunks have their own copies of it and of the weights
  scene.influences.clear();
  return WriteIndexedMeshFile(indexed, outputFileName, options.m_optimise,
                              options.m_askTxtOverwrite, options.m_forceTxtOverwrite, ui);
}

}  // namespace orv
