#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "inode.h"
#include "report/ExportUserInterface.h"
#include "scene/GenericSkeleton.h"

namespace orv {

// The bone tree of a scene, sampled from the host.
class MaxExGenericSkeleton : public GenericSkeleton {
 public:
  class Node : public GenericSkeleton::Node {
   public:
    explicit Node(INode* node) : m_node(node) {}
    const char* Name() const override { return m_node->GetName(); }
    Vec3 Position() const override;
    Quaternion Rotation() const override;

    INode* HostNode() const { return m_node; }

   private:
    const Matrix3& TransformNow() const;

    INode* m_node;  // the host's
    // Position and rotation come from one evaluation of the node.
    mutable Matrix3 m_transform;
    mutable std::optional<TimeValue> m_transformTime;
  };

  // Bones in the order they were handed over. A bone's parent is its nearest ancestor among them;
  // the first without one is the root. Any further such bone is left out with all that is below it.
  explicit MaxExGenericSkeleton(std::span<INode* const> bones);

  void SetFrame(int frame) override;

  // Null for a node that is no bone of the tree.
  const Node* FindBone(INode* node) const;

  // One warning for each bone that was left out because it is a second root.
  void ReportStrayRoots(ExportUserInterface& ui) const;

 private:
  void IndexTree();

  std::unordered_map<INode*, const Node*> m_bones;  // those of the tree
  std::vector<INode*> m_strayRoots;
};

}  // namespace orv
