// Inside of OpenScene: the node tree.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "host/import/ImportContext.h"

namespace orv::host {

// A node of the file.
struct SourceNode {
  const aiNode* source;
  int parent;                  // into the tree; -1 for the root
  MemoryNode* made = nullptr;  // null when it is none in the host's scene
  bool isPivot = false;        // a mere step of the transform of the nodes below it
  bool isJoint = false;        // a skin names it
  bool isBone = false;         // to be called "b."
};

// Parents before their children, in the file's order.
struct SourceTree {
  std::vector<SourceNode> nodes;
  std::unordered_map<std::string, size_t> byName;  // the first of each name, pivots too
};

SourceTree FlattenTree(const aiScene& source);

// Adds the nodes to the scene, without what they show, and sets their transforms: moving ones when
// the animation, which can be null, has channels for them.
void ImportNodes(ImportContext& context, SourceTree& tree, const aiAnimation* animation);

// To be called when the meshes are there: leaves that show nothing become point helpers.
void MakePointHelpers(const ImportContext& context, const SourceTree& tree);

}  // namespace orv::host
