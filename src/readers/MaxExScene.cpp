#include "readers/MaxExScene.h"

#include <string>
#include <utility>

#include "readers/MaxExHost.h"
#include "readers/MaxExInfluence.h"
#include "triobj.h"

namespace orv {
namespace {

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

}  // namespace

SceneContent ReadScene(std::span<INode* const> nodes, Interface* host, float scale,
                       const Options& options, ExportUserInterface& ui) {
  return SceneReader(nodes, host, scale, options, ui).Read();
}

}  // namespace orv
