#include "host/import/SourceTree.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace orv::host {
namespace {

Point3 Interpolate(const Point3& a, const Point3& b, double t) {
  const auto mix = [t](double from, double to) {
    return static_cast<float>(from + (to - from) * t);
  };
  return {mix(a.x, b.x), mix(a.y, b.y), mix(a.z, b.z)};
}

Rotation Interpolate(const Rotation& a, Rotation b, double t) {
  double cosine = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
  if (cosine < 0) {
    b = {-b.x, -b.y, -b.z, -b.w};
    cosine = -cosine;
  }
  double fromA = 1 - t, fromB = t;
  if (cosine < 1 - 1e-9) {
    const double angle = std::acos(cosine);
    fromA = std::sin(fromA * angle) / std::sin(angle);
    fromB = std::sin(fromB * angle) / std::sin(angle);
  }
  return {a.x * fromA + b.x * fromB, a.y * fromA + b.y * fromB, a.z * fromA + b.z * fromB,
          a.w * fromA + b.w * fromB};
}

template <typename T>
T ValueAt(const std::vector<Key<T>>& keys, double seconds, const T& otherwise) {
  if (keys.empty()) return otherwise;
  const auto after =
      std::upper_bound(keys.begin(), keys.end(), seconds,
                       [](double time, const Key<T>& key) { return time < key.seconds; });
  if (after == keys.begin()) return keys.front().value;
  if (after == keys.end()) return keys.back().value;
  const Key<T>& before = *(after - 1);
  return Interpolate(before.value, after->value,
                     (seconds - before.seconds) / (after->seconds - before.seconds));
}

Matrix3 ComposeTransform(const Point3& scale, const Rotation& q, const Point3& translation) {
  const double axes[3][3] = {
      {1 - 2 * (q.y * q.y + q.z * q.z), 2 * (q.x * q.y + q.w * q.z), 2 * (q.x * q.z - q.w * q.y)},
      {2 * (q.x * q.y - q.w * q.z), 1 - 2 * (q.x * q.x + q.z * q.z), 2 * (q.y * q.z + q.w * q.x)},
      {2 * (q.x * q.z + q.w * q.y), 2 * (q.y * q.z - q.w * q.x), 1 - 2 * (q.x * q.x + q.y * q.y)}};
  Matrix3 matrix;
  for (int row = 0; row < 3; ++row) {
    const double factor = scale[row];
    matrix.SetRow(
        row, {static_cast<float>(axes[row][0] * factor), static_cast<float>(axes[row][1] * factor),
              static_cast<float>(axes[row][2] * factor)});
  }
  matrix.SetTrans(translation);
  return matrix;
}

bool IsCalledBone(std::string_view name) {
  return name.size() >= 2 && (name[0] == 'b' || name[0] == 'B') && name[1] == '.';
}

bool IsIdentity(const Matrix3& matrix) {
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 3; ++column) {
      const float expected = row == column ? 1.0f : 0.0f;
      if (!(std::abs(matrix.GetRow(row)[column] - expected) <= 1e-6f)) return false;
    }
  }
  return true;
}

// Names that importers give to a root of their own making.
bool IsStandInName(const std::string& name, const std::string& path) {
  static const std::unordered_set<std::string> s_names = {
      "", "RootNode", "ROOT", "$dummy_root", "$CSM_DummyRoot", "WORLD", "3MF", "terrain_root"};
  return s_names.contains(name) || (name.starts_with('<') && name.ends_with('>')) || name == path ||
         name == std::filesystem::path(path).filename().string();
}

// A joint, or a node between joints, is a bone; so is the lowest node above all top joints, when
// there are several.
std::vector<char> FindBones(const std::vector<SourceNode>& nodes) {
  std::vector<char> isBone(nodes.size()), jointAbove(nodes.size()), jointBelow(nodes.size());
  std::vector<int> topJoints(nodes.size());  // at or below the node
  for (size_t i = 0; i < nodes.size(); ++i) {
    const int parent = nodes[i].parent;
    if (parent >= 0) {
      const size_t p = static_cast<size_t>(parent);
      jointAbove[i] = jointAbove[p] || nodes[p].isJoint;
    }
    topJoints[i] = nodes[i].isJoint && !jointAbove[i];
  }
  for (size_t i = nodes.size(); i-- > 1;) {
    const size_t p = static_cast<size_t>(nodes[i].parent);
    jointBelow[p] = jointBelow[p] || jointBelow[i] || nodes[i].isJoint;
    topJoints[p] += topJoints[i];
  }
  size_t lowest = 0;
  for (size_t i = 0; i < nodes.size(); ++i) {
    isBone[i] = nodes[i].isJoint || (jointAbove[i] && jointBelow[i]);
    if (topJoints[i] == topJoints[0]) lowest = i;  // those above all top joints are one line
  }
  while (nodes[lowest].isPivot && lowest > 0) lowest = static_cast<size_t>(nodes[lowest].parent);
  if (topJoints[0] > 1) isBone[lowest] = true;
  return isBone;
}

// The root of a file is a node when it says something.
bool IsOrdinaryRoot(const SourceNode& root, const std::string& path) {
  return !root.meshes.empty() || !IsStandInName(root.name, path) || !IsIdentity(root.local) ||
         root.track;
}

// The node's own step comes first, then those of the pivots above it.
void Place(MemoryNode& node, const std::vector<SourceNode>& nodes, size_t index) {
  std::vector<std::pair<Matrix3, std::shared_ptr<const TransformTrack>>> steps;
  bool moves = false;
  int step = static_cast<int>(index);
  do {
    const SourceNode& source = nodes[static_cast<size_t>(step)];
    steps.emplace_back(source.local, source.track);
    moves = moves || source.track;
    step = source.parent;
  } while (step >= 0 && nodes[static_cast<size_t>(step)].isPivot);

  const auto placeAt = [steps = std::move(steps)](double seconds) {
    Matrix3 result;
    for (size_t i = 0; i < steps.size(); ++i) {
      const auto& [matrix, track] = steps[i];
      const Matrix3 next = track ? track->At(seconds) : matrix;
      result = i == 0 ? next : result * next;
    }
    return result;
  };
  if (moves) {
    node.SetMotion(placeAt);
  } else {
    node.SetTransform(placeAt(0));
  }
}

// Leaves that show nothing, and are neither bones nor views.
bool IsPointHelper(const SourceNode& source, const MemoryNode& node) {
  return !source.isJoint && !source.isView && source.meshes.empty() && node.Children().empty() &&
         !IsCalledBone(node.Name());
}

}  // namespace

Matrix3 TransformTrack::At(double seconds) const {
  return ComposeTransform(ValueAt(scales, seconds, Point3(1, 1, 1)),
                          ValueAt(rotations, seconds, Rotation()),
                          ValueAt(translations, seconds, Point3()));
}

std::vector<AddedNode> AddNodes(Scene& scene, const SourceTree& tree, const std::string& path,
                                bool jointsAsBones) {
  const std::vector<SourceNode>& nodes = tree.nodes;
  std::vector<AddedNode> added(nodes.size());
  const std::vector<char> isBone =
      jointsAsBones ? FindBones(nodes) : std::vector<char>(nodes.size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    added[i].isBone = isBone[i];
    if (nodes[i].isPivot) continue;
    if (i == 0 && !isBone[i] && !IsOrdinaryRoot(nodes[i], path)) continue;
    int above = nodes[i].parent;
    while (above >= 0 && !added[static_cast<size_t>(above)].node) {
      above = nodes[static_cast<size_t>(above)].parent;
    }
    std::string name = nodes[i].name;
    if (i == 0 && name.empty()) name = std::filesystem::path(path).stem().string();
    if (isBone[i] && !IsCalledBone(name)) name = "b." + name;
    MemoryNode* const parent = above >= 0 ? added[static_cast<size_t>(above)].node : nullptr;
    added[i].node = &scene.AddNode(name, parent);
    Place(*added[i].node, nodes, i);
  }
  for (size_t i = 0; i < nodes.size(); ++i) {
    MemoryNode* const node = added[i].node;
    if (node && IsPointHelper(nodes[i], *node)) node->MakePointHelper();
  }
  return added;
}

}  // namespace orv::host
