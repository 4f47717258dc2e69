#pragma once

#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "formats/MeshStatistics.h"
#include "meshproc/ExIndexedMesh.h"
#include "report/ExportUserInterface.h"
#include "scene/GenericMesh.h"
#include "scene/GenericSkeleton.h"

namespace orv {

// How a mesh is written and what becomes of side files that exist already.
struct MeshWriteSettings {
  bool optimise = true;         // reorder the triangles of every chunk for the vertex cache
  bool allowBillboards = true;  // a texture name may turn its material into a billboard
  bool& askOverwrite;           // both change with the user's answers
  bool& forceOverwrite;
};

// Writes the mesh, and the texture side files beside it. Each chunk is prepared just before it is
// written; the materials' map names become the engine's. False, with the
// error and the system's reason logged, when the file could not be written; the file that was there
// is still there.
bool WriteIndexedMeshFile(ExIndexedMesh& mesh, const std::string& fileName,
                          const MeshWriteSettings& settings, ExportUserInterface& ui);

// The whole content of the file. Before each chunk the fraction done is reported. folder: for the
// side files, with its trailing separator, or "".
void WriteIndexedMesh(std::ostream& out, ExIndexedMesh& mesh, const std::string& folder,
                      const MeshWriteSettings& settings, ExportUserInterface& ui);

// The chunks of the file, in its order.
void WriteMeshInfo(std::ostream& out, const IndexedMesh& mesh, const MeshStatistics& statistics);
void WriteMaterial(std::ostream& out, GenericMaterial& material, bool useDefaultColors,
                   const std::string& folder, const MeshWriteSettings& settings,
                   ExportUserInterface& ui);
void WriteGeometry(std::ostream& out, const IndexedMesh::Chunk& chunk, uint32_t maxInfluences);
void WriteNeighbours(std::ostream& out, const IndexedMesh::Chunk& chunk);  // not in exported files
void WriteMeshSkeleton(std::ostream& out, GenericSkeleton& skeleton);
void WriteInfluences(std::ostream& out,
                     std::span<const std::unique_ptr<GenericMeshInfluence>> perChunk);
void WriteAttachments(std::ostream& out, std::span<const AttachmentPoint> points);

}  // namespace orv
