#pragma once

#include <cstdint>

#include "meshproc/MeshLimits.h"
#include "report/ExportUserInterface.h"
#include "scene/IndexedMesh.h"

namespace orv {

// The indexed mesh as the exporter builds it: BuildChunks once, then PrepareChunk for each chunk
// just before it is written.
class ExIndexedMesh : public IndexedMesh {
 public:
  // One chunk per material, welded, split under the mesh limits, with per-chunk influences when the
  // mesh is skinned. Takes over the mesh's attachment points and skeleton. False, with an error
  // logged, when an index does not fit into 16 bits; the chunks then stand as far as they were
  // built.
  bool BuildChunks(const GenericMesh& source, bool buildNeighbourInfo, bool useDefaultColors,
                   ExportUserInterface& ui, const MeshLimits& limits = {});

  // Tangents for a ".tbump" material, index order for those and, when optimise is set, for every
  // other; face normals are then computed afresh.
  void PrepareChunk(size_t chunk, bool optimise);

  size_t TotalVertexCount() const;
  size_t TotalTriangleCount() const;

  bool m_useDefaultColors = false;  // the writer then writes fixed material colours

 private:
  void GenerateTangents(size_t chunk);
  void OptimiseIndexOrder(size_t chunk);
};

}  // namespace orv
