#pragma once

#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "color.h"
#include "inode.h"
#include "matrix3.h"
#include "point3.h"
#include "scene/GenericSkeleton.h"
#include "scene/Vector.h"

namespace orv {

constexpr int kMetres = 5;  // unit code of GetMasterScale

// The host's plain values as the records hold them.

inline Vec3 ToVec3(const Point3& p) { return {p.x, p.y, p.z}; }

inline Vec3 ToVec3(const Color& c) { return {c.r, c.g, c.b}; }

inline Matrix33 RotationPart(const Matrix3& m) {
  return {ToVec3(m.GetRow(0)), ToVec3(m.GetRow(1)), ToVec3(m.GetRow(2))};
}

inline Matrix43 ToMatrix43(const Matrix3& m) {
  return {{ToVec3(m.GetRow(0)), ToVec3(m.GetRow(1)), ToVec3(m.GetRow(2)), ToVec3(m.GetRow(3))}};
}

inline Matrix3 WithoutScale(Matrix3 m) {
  m.NoScale();
  return m;
}

// As much of a name as the records keep.
inline std::string RecordName(const char* name) {
  return std::string(name ? name : "").substr(0, kMaxNameLength);
}

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
