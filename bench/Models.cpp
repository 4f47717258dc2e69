#include "Models.h"

#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <array>
#include <assimp/Importer.hpp>
#include <cmath>
#include <cstdint>
#include <map>
#include <numbers>
#include <random>
#include <stdexcept>
#include <tuple>

namespace orv::bench {
namespace {

constexpr size_t kBoneCount = 64;

FaceCorner SameEverywhere(uint32_t vertex) { return {vertex, vertex, vertex}; }

void AddTriangle(GenericMesh& mesh, uint32_t a, uint32_t b, uint32_t c) {
  mesh.m_faces.Add(0, std::array{SameEverywhere(a), SameEverywhere(b), SameEverywhere(c)});
}

void AddMaterial(GenericMesh& mesh, const std::string& name) {
  mesh.m_materials.emplace_back().name = name;
}

uint32_t SideOf(double triangleCount) {
  return static_cast<uint32_t>(std::lround(std::sqrt(triangleCount / 2)));
}

// Rows of cells between vertices that are numbered row by row.
void AddCells(GenericMesh& mesh, uint32_t columns, uint32_t rows) {
  mesh.m_faces.Reserve(2 * size_t{columns} * rows, 6 * size_t{columns} * rows);
  for (uint32_t y = 0; y < rows; ++y) {
    for (uint32_t x = 0; x < columns; ++x) {
      const uint32_t a = y * (columns + 1) + x, below = a + columns + 1;
      AddTriangle(mesh, a, a + 1, below);
      AddTriangle(mesh, a + 1, below + 1, below);
    }
  }
}

// The importer's meshes share nothing with one another, and little within.
class FileReader {
 public:
  explicit FileReader(const aiScene& scene) : m_scene(scene) {
    for (unsigned i = 0; i < scene.mNumMaterials; ++i) {
      AddMaterial(m_mesh, "material" + std::to_string(i));
    }
  }

  GenericMesh Read() {
    ReadNode(*m_scene.mRootNode, aiMatrix4x4());
    return std::move(m_mesh);
  }

 private:
  void ReadNode(const aiNode& node, const aiMatrix4x4& parent) {
    const aiMatrix4x4 toWorld = parent * node.mTransformation;
    for (unsigned i = 0; i < node.mNumMeshes; ++i) {
      ReadMesh(*m_scene.mMeshes[node.mMeshes[i]], toWorld);
    }
    for (unsigned i = 0; i < node.mNumChildren; ++i) ReadNode(*node.mChildren[i], toWorld);
  }

  void ReadMesh(const aiMesh& mesh, const aiMatrix4x4& toWorld) {
    const auto first = static_cast<uint32_t>(m_mesh.m_positions.size());
    for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
      const aiVector3D p = toWorld * mesh.mVertices[v];
      aiVector3D n = mesh.HasNormals() ? aiMatrix3x3(toWorld) * mesh.mNormals[v] : p;
      n.NormalizeSafe();
      const aiVector3D t = mesh.HasTextureCoords(0) ? mesh.mTextureCoords[0][v] : aiVector3D();
      m_mesh.m_positions.push_back({p.x, p.y, p.z});
      m_mesh.m_normals.push_back({n.x, n.y, n.z});
      m_mesh.m_texCoords.push_back({t.x, t.y});
    }
    for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
      const aiFace& face = mesh.mFaces[f];
      if (face.mNumIndices != 3) continue;
      std::array<FaceCorner, 3> corners;
      for (size_t c = 0; c < 3; ++c) corners[c] = SameEverywhere(first + face.mIndices[c]);
      if (!IsDegenerate(corners))
        m_mesh.m_faces.Add(static_cast<int>(mesh.mMaterialIndex), corners);
    }
  }

  bool IsDegenerate(const std::array<FaceCorner, 3>& corners) const {
    const auto at = [&](size_t c) { return m_mesh.m_positions[corners[c].position]; };
    return at(0) == at(1) || at(1) == at(2) || at(2) == at(0);
  }

  const aiScene& m_scene;
  GenericMesh m_mesh;
};

}  // namespace

Model Grid(size_t triangleCount) {
  const uint32_t side = SideOf(static_cast<double>(triangleCount));
  Model model{"grid", {}, nullptr};
  GenericMesh& mesh = model.mesh;
  AddMaterial(mesh, "grid");
  for (uint32_t y = 0; y <= side; ++y) {
    for (uint32_t x = 0; x <= side; ++x) {
      const float u = static_cast<float>(x) / 4, v = static_cast<float>(y) / 4;
      const float slope = std::cos(u), length = std::sqrt(1 + slope * slope);
      mesh.m_positions.push_back({u, std::sin(u), v});
      mesh.m_normals.push_back({-slope / length, 1 / length, 0});
      mesh.m_texCoords.push_back({u, v});
    }
  }
  AddCells(mesh, side, side);
  return model;
}

Model Sphere(size_t triangleCount) {
  const uint32_t rings = SideOf(static_cast<double>(triangleCount) / 2), segments = 2 * rings;
  Model model{"sphere", {}, nullptr};
  GenericMesh& mesh = model.mesh;
  AddMaterial(mesh, "sphere");
  for (uint32_t ring = 0; ring <= rings; ++ring) {
    const double height = std::numbers::pi * ring / rings;
    for (uint32_t segment = 0; segment <= segments; ++segment) {
      const double turn = 2 * std::numbers::pi * (segment % segments) / segments;
      const Vec3 point{static_cast<float>(std::sin(height) * std::cos(turn)),
                       static_cast<float>(std::sin(height) * std::sin(turn)),
                       static_cast<float>(std::cos(height))};
      mesh.m_positions.push_back(point);
      mesh.m_normals.push_back(point);
      mesh.m_texCoords.push_back({8 * static_cast<float>(segment) / static_cast<float>(segments),
                                  4 * static_cast<float>(ring) / static_cast<float>(rings)});
    }
  }
  AddCells(mesh, segments, rings);
  return model;
}

Model RandomOrder(size_t triangleCount) {
  Model model = Grid(triangleCount);
  model.name = "random order";
  std::vector<uint32_t> order(model.TriangleCount());
  for (uint32_t i = 0; i < order.size(); ++i) order[i] = i;
  std::mt19937 random(1);
  for (size_t i = order.size(); i > 1; --i) std::swap(order[i - 1], order[random() % i]);
  GenericFaceList shuffled;
  shuffled.Reserve(order.size(), 3 * order.size());
  for (const uint32_t face : order) shuffled.Add(0, model.mesh.m_faces[face].corners);
  model.mesh.m_faces = std::move(shuffled);
  return model;
}

Model Skinned(size_t triangleCount) {
  Model model = Grid(triangleCount);
  model.name = "skinned";
  model.skin = std::make_unique<ExGenericMeshInfluence>();
  for (size_t bone = 0; bone < kBoneCount; ++bone) {
    model.skin->AddBone(std::make_unique<GenericBoneInfluence>("b." + std::to_string(bone), "",
                                                               Vec3{}, Matrix33{}));
  }
  const float width = model.mesh.m_positions.back().x;
  for (uint32_t vertex = 0; vertex < model.mesh.m_positions.size(); ++vertex) {
    const Vec3 position = model.mesh.m_positions[vertex];
    const float at = position.x / width * static_cast<float>(kBoneCount - 1);
    const size_t bone = std::min(static_cast<size_t>(at), kBoneCount - 2);
    const float second = at - static_cast<float>(bone);
    model.skin->m_bones[bone]->m_weights.push_back({vertex, 1 - second, position});
    model.skin->m_bones[bone + 1]->m_weights.push_back({vertex, second, position});
  }
  model.mesh.m_influence = model.skin.get();
  return model;
}

Model FromFile(const std::string& path) {
  Assimp::Importer importer;
  const aiScene* const scene = importer.ReadFile(path, aiProcess_Triangulate);
  if (!scene) throw std::runtime_error(path + ": " + importer.GetErrorString());
  return {path.substr(path.rfind('/') + 1), FileReader(*scene).Read(), nullptr};
}

GenericMesh Unshared(const GenericMesh& mesh) {
  GenericMesh result;
  result.m_materials = mesh.m_materials;
  result.m_faces.Reserve(mesh.m_faces.size(), 3 * mesh.m_faces.size());
  uint32_t next = 0;
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) {
    const GenericFace face = mesh.m_faces[i];
    std::array<FaceCorner, 3> corners;
    for (size_t c = 0; c < 3; ++c) {
      corners[c] = SameEverywhere(next++);
      result.m_positions.push_back(mesh.m_positions[face.corners[c].position]);
      result.m_normals.push_back(mesh.m_normals[face.corners[c].normal]);
      result.m_texCoords.push_back(mesh.m_texCoords[face.corners[c].texCoord]);
    }
    result.m_faces.Add(face.material, corners);
  }
  return result;
}

}  // namespace orv::bench
