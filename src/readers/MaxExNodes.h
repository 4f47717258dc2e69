#pragma once

#include <span>
#include <unordered_set>
#include <vector>

#include "inode.h"

namespace orv {

// What a node is to the export; its name and its object decide.
enum class NodeRole { AttachmentPoint, Bone, MeshSource };
NodeRole RoleOf(INode* node);

// Whether that is its role; evaluates the node only when its name allows it.
bool IsBone(INode* node);

// Whether meshes right below the node are bound to it, if it is a bone.
bool BindsItsChildren(INode* node);

// The nodes handed to an exporter for one export, in that order. The nodes are the host's.
class MaxExNodeList {
 public:
  // onlyOnce: a node that is in the list already is not added again.
  void Add(INode* node, bool onlyOnce);
  void Clear();
  std::span<INode* const> Nodes() const { return m_nodes; }

 private:
  std::vector<INode*> m_nodes;
  std::unordered_set<INode*> m_known;
};

}  // namespace orv
