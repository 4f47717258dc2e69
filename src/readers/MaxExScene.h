#pragma once

#include <memory>
#include <span>
#include <vector>

#include "maxapi.h"
#include "options/Options.h"
#include "readers/MaxExMesh.h"
#include "readers/MaxExSkeleton.h"
#include "report/ExportUserInterface.h"
#include "scene/GenericInfluence.h"
#include "scene/GenericMesh.h"

namespace orv {

// One node's mesh and what moves it into world space.
struct SceneMesh {
  std::unique_ptr<MaxExGenericMesh> mesh;
  Matrix43 objectTransform;                   // at time 0
  std::vector<TexCoordTransform> transforms;  // one for each material of the mesh
};

// What the readers found in a scene. The nodes are the host's.
struct SceneContent {
  std::vector<SceneMesh> meshes;  // in node order
  // One for each node that was converted to a mesh, also where the mesh was then ignored: from
  // there on influence i does not belong to mesh i. Kept; pinned by
  // GeometryExport.IgnoredMeshShiftsTheInfluences.
  std::vector<std::unique_ptr<GenericMeshInfluence>> influences;
  std::vector<AttachmentPoint> attachmentPoints;
  std::vector<INode*> boneNodes;
  std::unique_ptr<MaxExGenericSkeleton> skeleton;  // null unless a mesh is bound rigidly
};

// Reads the nodes; meshes that cannot be used are reported and left out. scale: metres per system
// unit. Throws a Finding where Physique weights are of a kind that cannot be exported.
SceneContent ReadScene(std::span<INode* const> nodes, Interface* host, float scale,
                       const Options& options, ExportUserInterface& ui);

}  // namespace orv
