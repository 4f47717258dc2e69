#include "readers/MaxExGeometryExporter.h"

#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "formats/IndexedMeshFile.h"
#include "meshproc/ExIndexedMesh.h"
#include "options/Options.h"
#include "readers/MaxExInfluence.h"
#include "readers/MaxExMesh.h"
#include "readers/MaxExSkeleton.h"
#include "scene/MeshMerger.h"
#include "triobj.h"
#include "units.h"

namespace orv {
namespace {

// One node's mesh and what moves it into world space.
struct SceneMesh {
  std::unique_ptr<MaxExGenericMesh> mesh;
  Matrix43 objectTransform;                   // at time 0
  std::vector<TexCoordTransform> transforms;  // one for each material of the mesh
};

// What the readers found in a scene. The nodes are the host's.
struct SceneContent {
  std::vector<SceneMesh> meshes;  // in node order
  // One for each node that was converted to a mesh, also where the mesh was then ignored: from
  // there on influence i does not belong to mesh i. Kept; pinned by
  // GeometryExport.IgnoredMeshShiftsTheInfluences.
  std::vector<std::unique_ptr<GenericMeshInfluence>> influences;
  std::vector<AttachmentPoint> attachmentPoints;
  std::vector<INode*> boneNodes;
  std::unique_ptr<MaxExGenericSkeleton> skeleton;  // null unless a mesh is bound rigidly
};

// The triangle mesh of a node. When the host made it for us it is given back at the end.
class ConvertedMesh {
 public:
  ConvertedMesh(INode* node, TimeValue time) {
    const Class_ID triangles(TRIOBJ_CLASS_ID, 0);
    Object* const object = node->EvalWorldState(time, TRUE).obj;
    if (!object || !object->CanConvertToType(triangles)) return;
    m_object = static_cast<TriObject*>(object->ConvertToType(time, triangles));
    m_isOurs = m_object != object;
  }
  ~ConvertedMesh() {
    if (m_object && m_isOurs) m_object->DeleteThis();
  }
  ConvertedMesh(const ConvertedMesh&) = delete;
  ConvertedMesh& operator=(const ConvertedMesh&) = delete;

  explicit operator bool() const { return m_object != nullptr; }
  Mesh& Get() { return m_object->GetMesh(); }

 private:
  TriObject* m_object = nullptr;
  bool m_isOurs = false;
};

AttachmentPoint ReadAttachmentPoint(INode* node, float scale) {
  const Matrix3 pose = WithoutScale(node->GetObjTMAfterWSM(0, nullptr));
  return {RotationPart(pose), ToVec3(pose.GetTrans() * scale), RecordName(node->GetName())};
}

// Without bones for a mesh that is not skinned.
std::unique_ptr<GenericMeshInfluence> ReadInfluence(INode* node, const Mesh& mesh, float scale) {
  if (Modifier* physique = FindPhysique(node)) {
    return std::make_unique<MaxExGenericMeshInfluence>(physique, mesh, node, scale);
  }
  return std::make_unique<ExGenericMeshInfluence>();
}

// The two passes over the nodes: what they are, then the meshes with their materials and weights.
class SceneReader {
 public:
  SceneReader(std::span<INode* const> nodes, Interface* host, float scale, const Options& options,
              ExportUserInterface& ui)
      : m_nodes(nodes), m_host(host), m_scale(scale), m_options(options), m_ui(ui) {}

  SceneContent Read() {
    m_ui.SetProgressText("Reading data from the scene");
    const std::vector<INode*> meshSources = SortNodes();
    m_content.skeleton = std::make_unique<MaxExGenericSkeleton>(m_content.boneNodes);
    m_content.skeleton->ReportStrayRoots(m_ui);
    ReadMeshes(meshSources);
    if (!m_isBound) m_content.skeleton.reset();
    return std::move(m_content);
  }

 private:
  // Answers a mesh source at its place in the node list, null at all other places.
  std::vector<INode*> SortNodes() {
    std::vector<INode*> meshSources(m_nodes.size());
    for (size_t i = 0; i < m_nodes.size(); ++i) {
      ReportProgress(i);
      INode* const node = m_nodes[i];
      switch (RoleOf(node)) {
        case NodeRole::AttachmentPoint:
          m_content.attachmentPoints.push_back(ReadAttachmentPoint(node, m_scale));
          break;
        case NodeRole::Bone:
          m_content.boneNodes.push_back(node);
          break;
        case NodeRole::MeshSource:
          meshSources[i] = node;
          break;
      }
    }
    return meshSources;
  }

  void ReadMeshes(const std::vector<INode*>& meshSources) {
    for (size_t i = 0; i < meshSources.size(); ++i) {
      ReportProgress(i);
      if (meshSources[i]) ReadMeshSource(meshSources[i]);
    }
  }

  void ReadMeshSource(INode* node) {
    ConvertedMesh converted(node, m_host->GetTime());
    if (!converted) return;
    m_content.influences.push_back(ReadInfluence(node, converted.Get(), m_scale));
    const GenericSkeleton::Node* const bone = FindBoneToBindTo(node);
    if (bone) m_isBound = true;
    ReadMesh(node, converted.Get(), bone);
  }

  const GenericSkeleton::Node* FindBoneToBindTo(INode* node) const {
    INode* const parent = node->GetParentNode();
    return parent && BindsItsChildren(parent) ? m_content.skeleton->FindBone(parent) : nullptr;
  }

  void ReadMesh(INode* node, Mesh& hostMesh, const GenericSkeleton::Node* bone) {
    const TCHAR* const name = node->GetName();
    Mtl* const material = node->GetMtl();
    if (!material) {
      m_ui.Report("material-missing", name);
      return;
    }
    SceneMesh read{std::make_unique<MaxExGenericMesh>(), {}, {}};
    switch (read.mesh->Fill(hostMesh, bone, material, read.transforms, name, m_options, m_ui)) {
      case FillResult::Filled:
        read.objectTransform = ToMatrix43(node->GetObjectTM(0, nullptr));
        m_content.meshes.push_back(std::move(read));
        break;
      case FillResult::NoTextureMapping:
        m_ui.Report("texcoords-missing", name);
        break;
      case FillResult::NoFaces:
        m_ui.Report("faces-missing", name);
        break;
      case FillResult::NonStandardMaterial:
      case FillResult::NonStandardSubMaterial:
        break;  // reported where they were found
    }
  }

  // Kept: both passes run the bar to one half.
  void ReportProgress(size_t i) { m_ui.ReportProgress(i, 2 * m_nodes.size()); }

  std::span<INode* const> m_nodes;
  Interface* m_host;
  float m_scale;
  const Options& m_options;
  ExportUserInterface& m_ui;
  SceneContent m_content;
  bool m_isBound = false;  // some mesh, to a bone of the skeleton
};

// Reads the nodes; meshes that cannot be used are reported and left out. scale: metres per system
// unit. Throws a Finding where Physique weights are of a kind that cannot be exported.
SceneContent ReadScene(std::span<INode* const> nodes, Interface* host, float scale,
                       const Options& options, ExportUserInterface& ui) {
  return SceneReader(nodes, host, scale, options, ui).Read();
}

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
