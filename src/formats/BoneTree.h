#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "formats/ChunkReader.h"
#include "scene/GenericSkeleton.h"
#include "scene/Vector.h"

namespace orv {

inline constexpr uint32_t kSkeletonVersion = 100;

// Where a bone is: the record of both file types, 28 bytes.
struct BonePose {
  Vec3 position;
  Quaternion rotation;
};
static_assert(sizeof(BonePose) == 28);

// A bone read from a file. The bones are in depth-first order, a parent before its children.
struct BoneNode {
  std::string name;
  int32_t parent = -1;  // -1: the root
};

// The body of "SKEL": the root bone with all below it, nested to any depth. poses: for the mesh
// file, whose bones carry theirs, relative to the parent; null for the animation file.
void ReadBoneTree(ChunkReader& in, std::vector<BoneNode>& bones, std::vector<BonePose>* poses);

// The other way round. writePose: what stands between a bone's name and its child count; parent is
// null for the root. Null itself for the animation file.
using WriteBonePose = void (*)(std::ostream& out, const GenericSkeleton::Node& bone,
                               const GenericSkeleton::Node* parent);
void WriteBoneTree(std::ostream& out, const GenericSkeleton::Node& root, WriteBonePose writePose);

// In the order of the bone chunks: a bone, then the subtree of each child.
std::vector<const GenericSkeleton::Node*> BonesInFileOrder(const GenericSkeleton::Node& root);

}  // namespace orv
