#pragma once

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <set>
#include <vector>

#include "meshproc/MeshLimits.h"
#include "scene/IndexedMesh.h"

namespace orv {

// Chunk building as plainly as it can be said, step by step and without regard for time or memory:
// what the fast way has to agree with.
struct LiteralChunk {
  uint32_t material = 0;
  std::vector<std::array<float, 8>> vertices;  // position, texture coordinate, normal
  std::vector<std::array<uint32_t, 3>> triangles;
  std::vector<std::array<Vec3, 3>> corners;  // of each triangle, before welding
  std::vector<uint32_t> cornerMap;
  std::vector<std::array<uint32_t, 3>> neighbours;
};

inline LiteralChunk LiteralBuild(const GenericMesh& mesh, uint32_t material) {
  LiteralChunk chunk{material, {}, {}, {}, {}, {}};
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) {
    const GenericFace face = mesh.m_faces[i];
    if (face.material != static_cast<int32_t>(material)) continue;
    const uint32_t first = static_cast<uint32_t>(chunk.vertices.size());
    chunk.triangles.push_back({first, first + 1, first + 2});
    chunk.corners.emplace_back();
    for (size_t c = 0; c < 3; ++c) {
      const Vec3 p = mesh.m_positions[face.corners[c].position];
      const Vec3 n = mesh.m_normals[face.corners[c].normal];
      const Vec2 t = mesh.m_texCoords.empty() ? Vec2{} : mesh.m_texCoords[face.corners[c].texCoord];
      chunk.vertices.push_back({p.x, p.y, p.z, t.u, t.v, n.x, n.y, n.z});
      chunk.corners.back()[c] = p;
      chunk.cornerMap.push_back(face.corners[c].position);
    }
  }
  return chunk;
}

inline void LiteralWeld(LiteralChunk& chunk) {
  const uint32_t count = static_cast<uint32_t>(chunk.vertices.size());
  std::vector<std::pair<uint32_t, uint32_t>> pairs;  // duplicate, head
  std::set<uint32_t> duplicates;                     // not yet taken
  for (uint32_t i = 0; i < count; ++i) {
    const auto head =
        std::find(chunk.vertices.begin(), chunk.vertices.begin() + i, chunk.vertices[i]);
    if (head == chunk.vertices.begin() + i) continue;
    pairs.push_back({i, static_cast<uint32_t>(head - chunk.vertices.begin())});
    duplicates.insert(i);
  }
  std::vector<uint32_t> remap(count);
  std::iota(remap.begin(), remap.end(), 0);
  int64_t last = int64_t{count} - 1;
  for (const auto& [duplicate, head] : pairs) {
    duplicates.erase(duplicate);
    if (duplicate > last) continue;
    while (duplicates.contains(static_cast<uint32_t>(last))) --last;
    chunk.vertices[duplicate] = chunk.vertices[last];
    remap[last] = duplicate;
    --last;
  }
  for (const auto& [duplicate, head] : pairs) remap[duplicate] = remap[head];
  for (auto& triangle : chunk.triangles) {
    for (uint32_t& index : triangle) index = remap[index];
  }
  for (uint32_t i = 0; i < count; ++i) std::swap(chunk.cornerMap[i], chunk.cornerMap[remap[i]]);
  chunk.vertices.resize(count - pairs.size());
  chunk.cornerMap.resize(count - pairs.size());
}

struct LiteralPiece {
  std::vector<uint32_t> vertices;  // of the parent
  std::map<uint32_t, uint32_t> local;
  std::vector<std::array<uint32_t, 3>> triangles;
  std::vector<uint32_t> parentTriangles;
  std::set<uint32_t> bones;

  bool Offer(const std::array<uint32_t, 3>& triangle, uint32_t id,
             const std::vector<uint32_t>& triangleBones, const MeshLimits& limits) {
    if (3 * triangles.size() + 3 > limits.indices) return false;
    size_t newBones = 0, newVertices = 0;
    for (const uint32_t bone : triangleBones) newBones += !bones.contains(bone);
    if (bones.size() + newBones > limits.bones) return false;
    for (const uint32_t vertex : triangle) newVertices += !local.contains(vertex);
    if (vertices.size() + newVertices > limits.vertices) return false;
    bones.insert(triangleBones.begin(), triangleBones.end());
    triangles.emplace_back();
    for (size_t c = 0; c < 3; ++c) {
      const auto [place, isNew] =
          local.try_emplace(triangle[c], static_cast<uint32_t>(vertices.size()));
      if (isNew) vertices.push_back(triangle[c]);
      triangles.back()[c] = place->second;
    }
    parentTriangles.push_back(id);
    return true;
  }
};

inline std::vector<LiteralChunk> LiteralSplit(const LiteralChunk& parent,
                                              const GenericMeshInfluence* influence,
                                              const MeshLimits& limits) {
  std::vector<LiteralPiece> pieces;
  for (uint32_t t = 0; t < parent.triangles.size(); ++t) {
    std::vector<uint32_t> bones;
    for (uint32_t bone = 0; influence && bone < influence->m_bones.size(); ++bone) {
      for (const uint32_t vertex : parent.triangles[t]) {
        const auto& weights = influence->m_bones[bone]->m_weights;
        if (std::any_of(weights.begin(), weights.end(),
                        [&](const VertexWeight& weight) { return weight.vertex == vertex; })) {
          bones.push_back(bone);
        }
      }
    }
    const auto offer = [&](LiteralPiece& piece) {
      return piece.Offer(parent.triangles[t], t, bones, limits);
    };
    if (std::any_of(pieces.begin(), pieces.end(), offer)) continue;
    offer(pieces.emplace_back());
  }
  std::vector<LiteralChunk> chunks;
  for (const LiteralPiece& piece : pieces) {
    LiteralChunk& chunk = chunks.emplace_back();
    chunk.material = parent.material;
    chunk.triangles = piece.triangles;
    for (const uint32_t vertex : piece.vertices) {
      chunk.vertices.push_back(parent.vertices[vertex]);
      chunk.cornerMap.push_back(parent.cornerMap[vertex]);
    }
    for (const uint32_t t : piece.parentTriangles) chunk.corners.push_back(parent.corners[t]);
  }
  return chunks;
}

inline void LiteralCompare(std::array<uint32_t, 3>& slots, const std::array<Vec3, 3>& t,
                           const std::array<Vec3, 3>& u, uint32_t number) {
  int firstI = -1, firstJ = -1;
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      if (!(t[i] == u[j])) continue;
      if (firstI < 0) {
        firstI = i;
        firstJ = j;
      } else if (i != firstI && j != firstJ) {
        slots[i - firstI != 1 ? i : firstI] = number;
      }
    }
  }
}

inline void LiteralNeighbours(std::vector<LiteralChunk>& chunks) {
  std::vector<std::pair<uint32_t, std::array<Vec3, 3>>> triangles;  // number, corners
  for (size_t i = 0; i < chunks.size(); ++i) {
    for (size_t j = 0; j < chunks[i].triangles.size(); ++j) {
      auto& [number, corners] = triangles.emplace_back();
      number = static_cast<uint32_t>(i << 16 | j);
      for (size_t c = 0; c < 3; ++c) {
        const auto& v = chunks[i].vertices[chunks[i].triangles[j][c]];
        corners[c] = {v[0], v[1], v[2]};
      }
    }
  }
  for (const auto& [t, corners] : triangles) {
    auto& slots = chunks[t >> 16].neighbours.emplace_back();
    slots.fill(0xFFFFFFFF);
    for (const auto& [u, others] : triangles) LiteralCompare(slots, corners, others, u);
  }
}

inline void LiteralRemoveDegenerates(LiteralChunk& chunk) {
  std::vector<size_t> degenerate;
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    const auto& [a, b, c] = chunk.triangles[i];
    if (a == b || b == c || c == a) degenerate.push_back(i);
  }
  for (size_t i = degenerate.size(); i-- > 0;) {
    chunk.triangles[degenerate[i]] = chunk.triangles.back();
    chunk.triangles.pop_back();
  }
}

// A mesh of triangles only.
inline std::vector<LiteralChunk> LiteralChunks(const GenericMesh& mesh, const MeshLimits& limits) {
  std::vector<LiteralChunk> kept, pieces;
  for (uint32_t material = 0; material < mesh.m_materials.size(); ++material) {
    LiteralChunk chunk = LiteralBuild(mesh, material);
    LiteralWeld(chunk);
    if (chunk.vertices.size() <= limits.vertices && 3 * chunk.triangles.size() <= limits.indices) {
      kept.push_back(std::move(chunk));
      continue;
    }
    for (LiteralChunk& piece : LiteralSplit(chunk, mesh.m_influence, limits)) {
      pieces.push_back(std::move(piece));
    }
  }
  kept.insert(kept.end(), pieces.begin(), pieces.end());
  LiteralNeighbours(kept);
  for (LiteralChunk& chunk : kept) LiteralRemoveDegenerates(chunk);
  return kept;
}

// The weights of one bone in one chunk.
inline std::vector<VertexWeight> LiteralWeights(const GenericBoneInfluence& bone,
                                                const LiteralChunk& chunk) {
  std::vector<VertexWeight> weights;
  for (const VertexWeight& weight : bone.m_weights) {
    for (uint32_t v = 0; v < chunk.cornerMap.size(); ++v) {
      if (chunk.cornerMap[v] == weight.vertex) {
        weights.push_back({v, weight.weight, weight.offset});
      }
    }
  }
  return weights;
}

}  // namespace orv
