#include "Pieces.h"

#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <array>
#include <assimp/Importer.hpp>
#include <map>
#include <random>
#include <set>
#include <stdexcept>
#include <unordered_map>

namespace orv::bench {
namespace {

constexpr size_t kMostIndices = 32000;  // of a chunk

using Triangles = std::vector<std::array<uint32_t, 3>>;
using Corner = std::array<float, 8>;  // position, texture coordinates, normal

std::vector<Piece> CutIntoPieces(const Triangles& triangles) {
  std::vector<Piece> pieces;
  std::unordered_map<uint32_t, uint16_t> numbers;
  for (const auto& triangle : triangles) {
    if (pieces.empty() || pieces.back().indices.size() + 3 > kMostIndices) {
      pieces.emplace_back();
      numbers.clear();
    }
    for (const uint32_t vertex : triangle) {
      const auto number = numbers.emplace(vertex, static_cast<uint16_t>(numbers.size())).first;
      pieces.back().indices.push_back(number->second);
    }
    pieces.back().vertexCount = static_cast<uint32_t>(numbers.size());
  }
  return pieces;
}

class Welder {
 public:
  uint32_t Number(const Corner& corner) {
    const std::string key(reinterpret_cast<const char*>(corner.data()), sizeof(corner));
    return m_numbers.emplace(key, static_cast<uint32_t>(m_numbers.size())).first->second;
  }

 private:
  std::unordered_map<std::string, uint32_t> m_numbers;
};

// Triangles that the optimiser leaves out are left out for everybody.
struct Import {
  Welder welder;
  std::map<uint32_t, Triangles> byMaterial;
  std::set<std::array<uint32_t, 4>> seen;  // material and corners

  void Add(uint32_t material, const std::array<uint32_t, 3>& t) {
    const bool isDegenerate = t[0] == t[1] || t[1] == t[2] || t[2] == t[0];
    if (isDegenerate || !seen.insert({material, t[0], t[1], t[2]}).second) return;
    byMaterial[material].push_back(t);
  }
};

Corner ReadCorner(const aiMesh& mesh, uint32_t vertex, const aiMatrix4x4& toWorld) {
  const aiVector3D p = toWorld * mesh.mVertices[vertex];
  const aiVector3D n =
      mesh.HasNormals() ? aiMatrix3x3(toWorld) * mesh.mNormals[vertex] : aiVector3D();
  const aiVector3D t = mesh.HasTextureCoords(0) ? mesh.mTextureCoords[0][vertex] : aiVector3D();
  return {p.x, p.y, p.z, t.x, t.y, n.x, n.y, n.z};
}

void ReadNode(const aiScene& scene, const aiNode& node, const aiMatrix4x4& parent, Import& import) {
  const aiMatrix4x4 toWorld = parent * node.mTransformation;
  for (uint32_t i = 0; i < node.mNumMeshes; ++i) {
    const aiMesh& mesh = *scene.mMeshes[node.mMeshes[i]];
    for (uint32_t f = 0; f < mesh.mNumFaces; ++f) {
      const aiFace& face = mesh.mFaces[f];
      if (face.mNumIndices != 3) continue;
      std::array<uint32_t, 3> triangle;
      for (int c = 0; c < 3; ++c)
        triangle[c] = import.welder.Number(ReadCorner(mesh, face.mIndices[c], toWorld));
      import.Add(mesh.mMaterialIndex, triangle);
    }
  }
  for (uint32_t i = 0; i < node.mNumChildren; ++i)
    ReadNode(scene, *node.mChildren[i], toWorld, import);
}

}  // namespace

size_t Model::TriangleCount() const {
  size_t count = 0;
  for (const Piece& piece : pieces) count += piece.indices.size() / 3;
  return count;
}

double Model::Floor() const {
  double vertices = 0;
  for (const Piece& piece : pieces) vertices += piece.vertexCount;
  return vertices / static_cast<double>(TriangleCount());
}

Model GridModel(int columns, int rows) {
  Triangles triangles;
  for (int y = 0; y < rows; ++y) {
    for (int x = 0; x < columns; ++x) {
      const uint32_t a = y * (columns + 1) + x;
      const uint32_t below = a + columns + 1;
      triangles.push_back({a, a + 1, below});
      triangles.push_back({a + 1, below + 1, below});
    }
  }
  return {"regular grid", CutIntoPieces(triangles)};
}

// Closed round the axis, one vertex at each pole.
Model SphereModel(int segments, int rings) {
  const auto number = [&](int ring, int segment) -> uint32_t {
    if (ring == 0) return 0;
    if (ring == rings) return 1 + (rings - 1) * segments;
    return 1 + (ring - 1) * segments + segment % segments;
  };
  Triangles triangles;
  for (int ring = 0; ring < rings; ++ring) {
    for (int segment = 0; segment < segments; ++segment) {
      const uint32_t a = number(ring, segment), b = number(ring, segment + 1);
      const uint32_t c = number(ring + 1, segment), d = number(ring + 1, segment + 1);
      if (ring > 0) triangles.push_back({a, b, c});
      if (ring < rings - 1) triangles.push_back({b, d, c});
    }
  }
  return {"sphere", CutIntoPieces(triangles)};
}

Model FileModel(const std::string& name, const std::string& path) {
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile(path, aiProcess_Triangulate);
  if (!scene) throw std::runtime_error(path + ": " + importer.GetErrorString());
  Import import;
  ReadNode(*scene, *scene->mRootNode, aiMatrix4x4(), import);
  Model model{name, {}};
  for (const auto& [material, triangles] : import.byMaterial)
    for (Piece& piece : CutIntoPieces(triangles)) model.pieces.push_back(std::move(piece));
  return model;
}

Model Shuffled(const Model& model) {
  Model shuffled{model.name + ", random order", {}};
  std::mt19937 random(1);
  for (const Piece& piece : model.pieces) {
    Triangles triangles(piece.indices.size() / 3);
    for (size_t i = 0; i < piece.indices.size(); ++i) triangles[i / 3][i % 3] = piece.indices[i];
    for (size_t i = triangles.size(); i > 1; --i)
      std::swap(triangles[i - 1], triangles[random() % i]);
    shuffled.pieces.push_back(CutIntoPieces(triangles).front());
  }
  return shuffled;
}

}  // namespace orv::bench
