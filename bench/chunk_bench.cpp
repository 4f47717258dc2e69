// Welding, chunk building and splitting. meshopt_generateVertexRemap finds equal vertices among the
// same corners, none of which share anything; chunks are built of them as well.

#include <meshoptimizer.h>

#include <array>
#include <memory>
#include <vector>

#include "Benches.h"
#include "meshproc/ChunkBuilder.h"
#include "meshproc/ChunkSplitter.h"
#include "meshproc/ExIndexedMesh.h"
#include "meshproc/Welding.h"

namespace orv::bench {
namespace {

using Drafts = std::vector<ChunkDraft>;

SilentUserInterface s_silent;

// Position, texture coordinate and normal of each corner.
std::vector<std::array<float, 8>> Corners(const GenericMesh& mesh) {
  std::vector<std::array<float, 8>> corners;
  corners.reserve(3 * mesh.m_faces.size());
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) {
    for (const FaceCorner& corner : mesh.m_faces[i].corners) {
      const Vec3 p = mesh.m_positions[corner.position], n = mesh.m_normals[corner.normal];
      const Vec2 t = mesh.m_texCoords[corner.texCoord];
      corners.push_back({p.x, p.y, p.z, t.u, t.v, n.x, n.y, n.z});
    }
  }
  return corners;
}

void AddVertexRemap(const std::string& stage, const ModelSource& source) {
  Add(stage, "generateVertexRemap", source, [](const Model& model) {
    return Work{[corners = Corners(model.mesh)] {
      std::vector<unsigned> remap(corners.size());
      meshopt_generateVertexRemap(remap.data(), nullptr, corners.size(), corners.data(),
                                  corners.size(), sizeof(corners[0]));
    }};
  });
}

}  // namespace

void AddWelding(const ModelSource& source) {
  const auto add = [&](const char* contender, GenericMesh (*prepared)(const GenericMesh&)) {
    Add("welding", contender, source, [=](const Model& model) {
      const auto mesh = std::make_shared<GenericMesh>(prepared(model.mesh));
      const auto drafts = std::make_shared<Drafts>();
      return Work{[=] { WeldVertices(*mesh, *drafts, false, s_silent); },
                  [=] { *drafts = GroupFacesByMaterial(*mesh, s_silent); }};
    });
  };
  add(kOurs, Unshared);
  AddVertexRemap("welding", source);
  add("orv, as imported", [](const GenericMesh& mesh) { return mesh; });
}

void AddChunkBuilding(const ModelSource& source) {
  const auto add = [&](const char* contender, GenericMesh (*prepared)(const GenericMesh&)) {
    Add("chunk building", contender, source, [=](const Model& model) {
      const auto mesh = std::make_shared<GenericMesh>(prepared(model.mesh));
      mesh->m_influence = model.skin.get();
      const auto built = std::make_shared<ExIndexedMesh>();
      return Work{[=] { built->BuildChunks(*mesh, false, false, s_silent); },
                  [=] { *built = ExIndexedMesh(); }};
    });
  };
  add(kOurs, Unshared);
  AddVertexRemap("chunk building", source);
  add("orv, as imported", [](const GenericMesh& mesh) { return mesh; });
}

void AddSplitting(const ModelSource& source) {
  Add("splitting with bones", kOurs, source, [](const Model& model) {
    Drafts welded = GroupFacesByMaterial(model.mesh, s_silent);
    WeldVertices(model.mesh, welded, true, s_silent);
    const auto drafts = std::make_shared<Drafts>();
    return Work{[=, &model] { SplitToLimits(*drafts, model.skin.get(), MeshLimits(), s_silent); },
                [=, welded = std::move(welded)] { *drafts = welded; }};
  });
}

}  // namespace orv::bench
