#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "formats/BoneTree.h"
#include "scene/IndexedMesh.h"

namespace orv::inspect {

// One bone of a tree that is told line by line, a parent before its children.
struct OutlinedBone {
  std::string name;
  int32_t parent = -1;  // place in the outline; -1: a root
  size_t depth = 0;
};

// A bone of a skin.
struct SkinBone : OutlinedBone {
  std::string parentName;        // as the file has it; also of a bone that the file lacks
  size_t vertexCount = 0;        // that follow it; a vertex that it lists twice counts twice
  std::vector<uint32_t> chunks;  // that list it, ascending
};

std::vector<OutlinedBone> OutlineOf(std::span<const BoneNode> bones);

// The distinct bones of a skin, names compared without case, as a tree. Bones whose parents go in a
// circle stand as if they had none.
std::vector<SkinBone> OutlineOf(
    std::span<const std::unique_ptr<GenericMeshInfluence>> influencePerChunk);

}  // namespace orv::inspect
