#pragma once

#include <string>

#include "scene/IndexedMesh.h"

namespace orv {

// What holds for the arrays of every chunk, also of one read from a damaged file; the first fault
// found, or "".
inline std::string ArrayFaultOf(const IndexedMesh::Chunk& chunk) {
  const size_t vertexCount = chunk.vertices.size();
  const size_t triangleCount = chunk.triangles.size();
  if (chunk.normals.size() != vertexCount) return "not one normal per vertex";
  if (!chunk.tangents.empty() && chunk.tangents.size() != vertexCount) {
    return "not one tangent per vertex";
  }
  if (chunk.faceNormals.size() < triangleCount) return "triangles without a face normal";
  for (const Triangle& triangle : chunk.triangles) {
    for (const uint16_t index : triangle) {
      if (index >= vertexCount) return "an index beyond the vertices";
    }
  }
  return "";
}

// What holds for every chunk that was built or prepared, and so for one read back.
inline std::string FaultOf(const IndexedMesh& mesh, size_t number) {
  const IndexedMesh::Chunk& chunk = mesh.chunks[number];
  const size_t triangleCount = chunk.triangles.size();
  if (chunk.vertices.size() > 0x10000) return "more vertices than 16 bits can number";
  if (const std::string fault = ArrayFaultOf(chunk); !fault.empty()) return fault;
  if (chunk.surfaceArea < 0) return "a negative area";
  if (chunk.neighbours.empty()) return "";
  if (chunk.neighbours.size() < triangleCount) return "triangles without neighbours";
  for (const auto& neighbours : chunk.neighbours) {
    for (const uint32_t neighbour : neighbours) {
      if (neighbour == IndexedMesh::kNoNeighbour) continue;
      // Numbers count the triangles as they were before degenerate ones were taken out.
      const size_t other = neighbour >> 16;
      if (other >= mesh.chunks.size()) return "a neighbour in no chunk";
      if ((neighbour & 0xFFFF) >= mesh.chunks[other].neighbours.size()) return "no such neighbour";
    }
  }
  return "";
}

inline std::string FaultOf(const IndexedMesh& mesh) {
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    const std::string fault = FaultOf(mesh, i);
    if (!fault.empty()) return "chunk " + std::to_string(i) + ": " + fault;
  }
  if (mesh.influences.empty()) return "";
  if (mesh.influences.size() != mesh.chunks.size()) return "not one influence per chunk";
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    for (const auto& bone : mesh.influences[i]->m_bones) {
      for (const VertexWeight& weight : bone->m_weights) {
        if (weight.vertex >= mesh.chunks[i].vertices.size()) {
          return "chunk " + std::to_string(i) + ": a weight beyond the vertices";
        }
      }
    }
  }
  return "";
}

}  // namespace orv
