#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/BonePose.h"
#include "formats/ChunkReader.h"

namespace orv {

// A bone read from a file. The bones are in depth-first order, a parent before its children.
struct BoneNode {
  std::string name;
  int32_t parent = -1;  // -1: the root
};

// The body of "SKEL": the root bone with all below it, nested to any depth. poses: for the mesh
// file, whose bones carry theirs, relative to the parent; null for the animation file.
void ReadBoneTree(ChunkReader& in, std::vector<BoneNode>& bones, std::vector<BonePose>* poses);

}  // namespace orv
