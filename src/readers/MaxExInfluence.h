#pragma once

#include <memory>

#include "inode.h"
#include "mesh.h"
#include "object.h"
#include "report/Messages.h"
#include "scene/GenericInfluence.h"

namespace orv {

// A bone as it stands at time 0, without weights. scale: metres per system unit.
class MaxExGenericBoneInfluence : public GenericBoneInfluence {
 public:
  MaxExGenericBoneInfluence(INode* bone, float scale);
};

// The bones and weights of one skinned node. Bones come in the order in which the vertices first
// name them, weights as the host has them.
class MaxExGenericMeshInfluence : public ExGenericMeshInfluence {
 public:
  // mesh: the node's, whose vertices the modifier knows by their numbers. Throws a Finding at a
  // vertex that is neither rigid nor rigidly blended.
  MaxExGenericMeshInfluence(Modifier* physique, const Mesh& mesh, INode* node, float scale);
};

// The node's Physique modifier, or null.
Modifier* FindPhysique(INode* node);

}  // namespace orv
