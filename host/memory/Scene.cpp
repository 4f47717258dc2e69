#include "host/memory/Scene.h"

#include <algorithm>

#include "plugapi.h"

namespace orv::host {

constexpr int kTicksPerSecond = 4800;

Scene::Scene(SceneInfo sceneInfo) : info(std::move(sceneInfo)) {
  m_nodes.emplace_back(*this, "Scene Root", nullptr);
}

MemoryNode& Scene::AddNode(std::string name, MemoryNode* parent) {
  return m_nodes.emplace_back(*this, std::move(name), parent ? parent : &Root());
}

MemoryNode& Scene::AddMeshNode(std::string name, Mesh mesh, Mtl* material, MemoryNode* parent) {
  MemoryNode& node = AddNode(std::move(name), parent);
  node.SetMesh(std::move(mesh));
  node.SetMaterial(material);
  return node;
}

MemoryNode& Scene::AddPointHelper(std::string name, MemoryNode* parent) {
  MemoryNode& node = AddNode(std::move(name), parent);
  node.MakePointHelper();
  return node;
}

MemoryMaterial& Scene::AddMaterial(const std::string& name) {
  return m_materials.emplace_back(name);
}

MemoryMultiMaterial& Scene::AddMultiMaterial(const std::string& name,
                                             std::vector<Mtl*> subMaterials) {
  return m_multiMaterials.emplace_back(name, std::move(subMaterials));
}

MemoryBitmap& Scene::AddBitmap(std::string mapName) {
  return m_bitmaps.emplace_back(std::move(mapName));
}

MemoryNode* Scene::FindNode(std::string_view name) {
  for (size_t i = 1; i < m_nodes.size(); ++i) {
    if (m_nodes[i].Name() == name) return &m_nodes[i];
  }
  return nullptr;
}

std::vector<std::string> Scene::NodeNames() const {
  std::vector<std::string> names;
  for (size_t i = 1; i < m_nodes.size(); ++i) names.push_back(m_nodes[i].Name());
  return names;
}

bool Scene::Select(std::string_view name) {
  bool found = false;
  for (size_t i = 1; i < m_nodes.size(); ++i) {
    if (m_nodes[i].Name() != name) continue;
    found = true;
    if (!m_nodes[i].m_selected) m_selection.push_back(&m_nodes[i]);
    m_nodes[i].m_selected = true;
  }
  return found;
}

bool Scene::Hide(std::string_view name) {
  bool found = false;
  for (size_t i = 1; i < m_nodes.size(); ++i) {
    if (m_nodes[i].Name() != name) continue;
    found = true;
    m_nodes[i].SetHidden(true);
  }
  return found;
}

SceneStatistics Scene::Statistics() {
  SceneStatistics result;
  result.nodes = m_nodes.size() - 1;
  for (MemoryNode& node : m_nodes) {
    Object* object = node.EvalWorldState(0).obj;
    if (!object) continue;
    if (object->ClassID() == Class_ID(POINTHELP_CLASS_ID, 0)) ++result.pointHelpers;
    if (object->ClassID() != Class_ID(TRIOBJ_CLASS_ID, 0)) continue;
    const Mesh& mesh = static_cast<TriObject*>(object)->GetMesh();
    ++result.meshNodes;
    result.skinnedNodes += node.Skin() != nullptr;
    result.vertices += static_cast<size_t>(mesh.getNumVerts());
    result.triangles += static_cast<size_t>(mesh.getNumFaces());
  }
  return result;
}

int Scene::TicksPerFrame() const {
  return std::max(1, kTicksPerSecond / std::max(1, info.framesPerSecond));
}

// Exactly frame / frame rate at whole frames.
double Scene::SecondsAt(TimeValue t) const {
  return t / (static_cast<double>(TicksPerFrame()) * std::max(1, info.framesPerSecond));
}

}  // namespace orv::host
