// Inside of OpenScene: the nodes of a file as plain data, whatever read them, and what the scene
// makes of them.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/import/OpenScene.h"

namespace orv::host {

// Right-handed rotation, as files count it; unit length.
struct Rotation {
  double x = 0, y = 0, z = 0, w = 1;
};

template <typename T>
struct Key {
  double seconds;
  T value;
};

// A node's movement relative to its parent: keys by rising time, each list on its own. Between keys
// values are interpolated, rotations the short way round; before the first and after the last they
// stand still.
struct TransformTrack {
  std::vector<Key<Point3>> scales;  // an empty list: no scale, no rotation, no move
  std::vector<Key<Rotation>> rotations;
  std::vector<Key<Point3>> translations;

  // Scale first, then rotation, then translation.
  Matrix3 At(double seconds) const;
};

struct SourceNode {
  std::string name;
  int parent;                                   // into the tree; -1 for the root
  Matrix3 local;                                // where it stands when it has no track
  std::shared_ptr<const TransformTrack> track;  // null: it stands still
  std::vector<unsigned> meshes;                 // as the file counts them
  bool isPivot = false;                         // a mere step of the transform of those below it
  bool isJoint = false;                         // a skin names it
  bool isView = false;                          // a camera or a light
};

// Parents before their children, in the file's order.
struct SourceTree {
  std::vector<SourceNode> nodes;
  std::unordered_map<std::string, size_t> byName;  // the first of each name, pivots too
};

// What became of a node of the file.
struct AddedNode {
  MemoryNode* node = nullptr;  // null when it is none in the host's scene
  bool isBone = false;         // called "b."
};

// Adds the nodes to the scene, without their meshes. The answer has an entry for each of the
// tree's.
std::vector<AddedNode> AddNodes(Scene& scene, const SourceTree& tree, const std::string& path,
                                bool jointsAsBones);

}  // namespace orv::host
