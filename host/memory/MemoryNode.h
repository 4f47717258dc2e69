#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/memory/MemorySkin.h"
#include "inode.h"
#include "mesh.h"

namespace orv::host {

class Scene;

// A node of a scene in memory. Scene::AddNode makes it, and it lives as long as the scene.
class MemoryNode final : public INode {
 public:
  MemoryNode(Scene& scene, std::string name, MemoryNode* parent);
  MemoryNode(const MemoryNode&) = delete;
  ~MemoryNode();

  void SetName(std::string name) { m_name = std::move(name); }
  // Where it stands, relative to its parent; until set, where the parent stands.
  void SetTransform(const Matrix3& local);
  // The same as a function of the time in seconds.
  void SetMotion(std::function<Matrix3(double)> localAt);
  // Where the object stands relative to the node's pivot.
  void SetObjectOffset(const Matrix3& offset);

  // Objects can be shared between nodes.
  void SetObject(std::shared_ptr<Object> object);
  void SetMesh(Mesh mesh);
  // Binds the mesh at rest to bones. `weights` has one list for each of the mesh's vertices.
  SkinnedObject& SetSkinnedMesh(Mesh mesh, std::vector<SkinBone> bones, SkinWeights weights);
  void MakePointHelper();
  void SetMaterial(Mtl* material) { m_material = material; }  // not owned

  void SetHidden(bool hidden) { m_hidden = hidden; }
  void SetFrozen(bool frozen) { m_frozen = frozen; }

  MemoryNode* Parent() { return m_parent; }
  const std::vector<MemoryNode*>& Children() const { return m_children; }
  const std::string& Name() const { return m_name; }
  const SkinnedObject* Skin() const { return m_skin.get(); }

  const TCHAR* GetName() override { return m_name.c_str(); }
  INode* GetParentNode() override { return m_parent; }
  int IsRootNode() override { return m_parent == nullptr; }
  int NumberOfChildren() override { return static_cast<int>(m_children.size()); }
  INode* GetChildNode(int i) override { return m_children[static_cast<size_t>(i)]; }
  int IsHidden(DWORD = 0, BOOL = FALSE) override { return m_hidden; }
  int IsFrozen() override { return m_frozen; }
  int Selected() override { return m_selected; }
  const ObjectState& EvalWorldState(TimeValue t, BOOL evalHidden = TRUE) override;
  Object* GetObjectRef() override;
  Mtl* GetMtl() override { return m_material; }
  Matrix3 GetNodeTM(TimeValue t, Interval* valid = nullptr) override;
  Matrix3 GetObjectTM(TimeValue t, Interval* valid = nullptr) override;
  Matrix3 GetObjTMAfterWSM(TimeValue t, Interval* valid = nullptr) override;

 private:
  friend class Scene;  // keeps the selection

  // The answer for one time. Exports ask for all nodes at one time after the other, and again and
  // again at time 0, which has a place of its own.
  struct Placement {
    unsigned revision = 0;  // of the scene; 0: none yet
    TimeValue time = 0;
    Matrix3 world;
  };

  Placement* FindPlacement(TimeValue t);
  Matrix3 LocalAt(TimeValue t) const;

  Scene& m_scene;
  std::string m_name;
  MemoryNode* m_parent;
  std::vector<MemoryNode*> m_children;
  Matrix3 m_local;
  std::function<Matrix3(double)> m_localAt;
  std::unique_ptr<Matrix3> m_objectOffset;
  std::shared_ptr<Object> m_object;
  std::unique_ptr<SkinnedObject> m_skin;
  unsigned m_skinRevision = 0;
  Mtl* m_material = nullptr;
  bool m_hidden = false;
  bool m_frozen = false;
  bool m_selected = false;
  ObjectState m_state;
  Placement m_atZero;
  Placement m_latest;
};

}  // namespace orv::host
