#include "host/memory/MemoryNode.h"

#include "host/memory/Scene.h"

namespace orv::host {
namespace {

// Shows a place and no geometry.
class HelperObject final : public Object {
 public:
  explicit HelperObject(Class_ID classId) : m_classId(classId) {}
  Class_ID ClassID() override { return m_classId; }
  SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }

 private:
  Class_ID m_classId;
};

const Class_ID kGroupHelper(0x876234, 0);

}  // namespace

MemoryNode::MemoryNode(Scene& scene, std::string name, MemoryNode* parent)
    : m_scene(scene), m_name(std::move(name)), m_parent(parent) {
  if (!parent) return;
  parent->m_children.push_back(this);
  static const auto s_group = std::make_shared<HelperObject>(kGroupHelper);
  m_object = s_group;
}

MemoryNode::~MemoryNode() = default;

void MemoryNode::SetTransform(const Matrix3& local) {
  m_local = local;
  m_localAt = nullptr;
  m_scene.Touch();
}

void MemoryNode::SetMotion(std::function<Matrix3(double)> localAt) {
  m_localAt = std::move(localAt);
  m_scene.Touch();
}

void MemoryNode::SetObjectOffset(const Matrix3& offset) {
  m_objectOffset.reset(new Matrix3(offset));
  m_scene.Touch();
}

void MemoryNode::SetObject(std::shared_ptr<Object> object) {
  m_object = std::move(object);
  m_skin.reset();
}

void MemoryNode::SetMesh(Mesh mesh) { SetObject(std::make_shared<TriObject>(std::move(mesh))); }

SkinnedObject& MemoryNode::SetSkinnedMesh(Mesh mesh, std::vector<SkinBone> bones,
                                          SkinWeights weights) {
  m_object.reset();
  m_skin.reset(new SkinnedObject(*this, std::move(mesh), std::move(bones), std::move(weights)));
  return *m_skin;
}

void MemoryNode::MakePointHelper() {
  static const auto s_point = std::make_shared<HelperObject>(Class_ID(POINTHELP_CLASS_ID, 0));
  SetObject(s_point);
}

const ObjectState& MemoryNode::EvalWorldState(TimeValue t, BOOL) {
  if (m_skin) {
    if (m_skinRevision != m_scene.Revision()) m_skin->Invalidate();
    m_skinRevision = m_scene.Revision();
    m_state.obj = &m_skin->PosedAt(t);
  } else {
    m_state.obj = m_object.get();
  }
  return m_state;
}

Object* MemoryNode::GetObjectRef() { return m_skin ? m_skin.get() : m_object.get(); }

MemoryNode::Placement* MemoryNode::FindPlacement(TimeValue t) {
  Placement& placement = t == 0 ? m_atZero : m_latest;
  return placement.revision == m_scene.Revision() && placement.time == t ? &placement : nullptr;
}

Matrix3 MemoryNode::LocalAt(TimeValue t) const {
  return m_localAt ? m_localAt(m_scene.SecondsAt(t)) : m_local;
}

// No recursion: a scene's nesting is not bounded.
Matrix3 MemoryNode::GetNodeTM(TimeValue t, Interval* valid) {
  if (valid) valid->Set(t, t);
  std::vector<MemoryNode*> pending;
  MemoryNode* node = this;
  while (node && !node->FindPlacement(t)) {
    pending.push_back(node);
    node = node->m_parent;
  }
  Matrix3 world = node ? node->FindPlacement(t)->world : Matrix3(TRUE);
  while (!pending.empty()) {
    MemoryNode* next = pending.back();
    pending.pop_back();
    world = next->m_parent ? next->LocalAt(t) * world : next->LocalAt(t);
    (t == 0 ? next->m_atZero : next->m_latest) = {m_scene.Revision(), t, world};
  }
  return world;
}

Matrix3 MemoryNode::GetObjectTM(TimeValue t, Interval* valid) {
  const Matrix3 node = GetNodeTM(t, valid);
  return m_objectOffset ? *m_objectOffset * node : node;
}

Matrix3 MemoryNode::GetObjTMAfterWSM(TimeValue t, Interval* valid) { return GetObjectTM(t, valid); }

}  // namespace orv::host
