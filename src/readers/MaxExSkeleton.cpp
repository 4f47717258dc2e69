#include "readers/MaxExSkeleton.h"

#include <cstdint>
#include <memory>
#include <utility>

#include "quat.h"
#include "readers/MaxExHost.h"
#include "units.h"

namespace orv {
namespace {

using Node = MaxExGenericSkeleton::Node;

TimeValue s_samplingTime = 0;  // ticks; of the whole process

// Answers for each node the nearest bone at or above it. Each node is climbed from once, so a
// long chain of groups with many bones below it costs no more than its length.
class NearestBone {
 public:
  explicit NearestBone(std::span<INode* const> bones) {
    for (INode* bone : bones) m_nearest[bone] = bone;
  }

  INode* AtOrAbove(INode* node) {
    std::vector<INode*> climbed;
    INode* found = nullptr;
    for (; node; node = node->GetParentNode()) {
      if (const auto known = m_nearest.find(node); known != m_nearest.end()) {
        found = known->second;
        break;
      }
      climbed.push_back(node);
    }
    for (INode* passed : climbed) m_nearest[passed] = found;
    return found;
  }

 private:
  std::unordered_map<INode*, INode*> m_nearest;
};

}  // namespace

const Matrix3& Node::TransformNow() const {
  if (m_transformTime != s_samplingTime) {
    m_transform = WithoutScale(m_node->GetNodeTM(s_samplingTime));
    m_transformTime = s_samplingTime;
  }
  return m_transform;
}

Vec3 Node::Position() const { return ToVec3(TransformNow().GetTrans()); }

Quaternion Node::Rotation() const {
  const Quat rotation(TransformNow());
  return {rotation.x, rotation.y, rotation.z, rotation.w};
}

MaxExGenericSkeleton::MaxExGenericSkeleton(std::span<INode* const> bones) {
  std::vector<std::unique_ptr<Node>> made;
  std::unordered_map<INode*, Node*> byHostNode;
  for (INode* bone : bones) {
    const auto [entry, isNew] = byHostNode.emplace(bone, nullptr);
    if (!isNew) continue;
    made.push_back(std::make_unique<Node>(bone));
    entry->second = made.back().get();
  }
  NearestBone nearest(bones);
  std::vector<std::unique_ptr<Node>> strays;  // with all that hangs on them
  for (std::unique_ptr<Node>& bone : made) {
    if (INode* parent = nearest.AtOrAbove(bone->HostNode()->GetParentNode())) {
      byHostNode[parent]->m_children.push_back(std::move(bone));
    } else if (!m_root) {
      m_root = std::move(bone);
    } else {
      m_strayRoots.push_back(bone->HostNode());
      strays.push_back(std::move(bone));
    }
  }
  IndexTree();
}

void MaxExGenericSkeleton::IndexTree() {
  std::vector<const GenericSkeleton::Node*> waiting;
  if (m_root) waiting.push_back(m_root.get());
  while (!waiting.empty()) {
    const auto* bone = static_cast<const Node*>(waiting.back());
    waiting.pop_back();
    m_bones[bone->HostNode()] = bone;
    for (const auto& child : bone->m_children) waiting.push_back(child.get());
  }
}

void MaxExGenericSkeleton::SetFrame(int frame) {
  s_samplingTime = static_cast<TimeValue>(int64_t{frame} * GetTicksPerFrame());
}

const Node* MaxExGenericSkeleton::FindBone(INode* node) const {
  const auto found = m_bones.find(node);
  return found == m_bones.end() ? nullptr : found->second;
}

void MaxExGenericSkeleton::ReportStrayRoots(ExportUserInterface& ui) const {
  for (INode* bone : m_strayRoots) {
    ui.Report("bone-outside-root", bone->GetName());
  }
}

}  // namespace orv
