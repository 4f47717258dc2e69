#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <string_view>
#include <utility>

#include "host/import/ImportMaterials.h"

namespace orv::host {
namespace {

constexpr unsigned kVerticesAhead = 16;  // covers the time that memory takes to answer
constexpr size_t kMostMaterials = std::numeric_limits<MtlID>::max();

// What one or several nodes show.
struct MeshUse {
  std::vector<unsigned> meshes;  // the importer's
  std::vector<MemoryNode*> nodes;
};

// The importer invents a mesh for files that have bones only.
bool IsInvented(const aiScene& source, const aiMesh& mesh) {
  if (mesh.mMaterialIndex >= source.mNumMaterials) return false;
  aiString name;
  source.mMaterials[mesh.mMaterialIndex]->Get(AI_MATKEY_NAME, name);
  return std::string_view(name.C_Str()) == "SkeletonMaterial";
}

bool HasTriangles(const aiMesh& mesh) {
  return std::ranges::any_of(std::span(mesh.mFaces, mesh.mNumFaces),
                             [](const aiFace& face) { return face.mNumIndices == 3; });
}

// For each vertex of one of the importer's meshes, who moves it; the weights sum up to 1.
class VertexWeights {
 public:
  // `boneOf(bone)` is the number of a bone in the skin, negative for one that is left out.
  template <typename BoneOf>
  VertexWeights(const aiMesh& mesh, BoneOf boneOf) {
    if (mesh.mNumBones == 0) return;
    std::vector<int> numbers;
    for (unsigned b = 0; b < mesh.mNumBones; ++b) numbers.push_back(boneOf(*mesh.mBones[b]));
    std::vector<uint32_t>& starts = m_weights.starts;
    starts.assign(size_t{mesh.mNumVertices} + 1, 0);
    ForEach(mesh, numbers, [&](unsigned vertex, BoneWeight) { ++starts[vertex + 1]; });
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    m_weights.weights.resize(starts.back());
    std::vector<uint32_t> next(starts);
    ForEach(mesh, numbers, [&](unsigned vertex, BoneWeight weight) {
      m_weights.weights[next[vertex]++] = weight;
    });
    Normalize();
  }

  std::span<const BoneWeight> Of(size_t vertex) const {
    if (m_weights.starts.empty()) return {};
    return m_weights.Of(vertex);
  }

 private:
  template <typename Take>
  static void ForEach(const aiMesh& mesh, const std::vector<int>& numbers, Take take) {
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
      if (numbers[b] < 0) continue;
      const aiBone& bone = *mesh.mBones[b];
      for (unsigned i = 0; i < bone.mNumWeights; ++i) {
        const aiVertexWeight& weight = bone.mWeights[i];
        if (weight.mVertexId >= mesh.mNumVertices || !(weight.mWeight > 0)) continue;
        take(weight.mVertexId, BoneWeight{static_cast<uint32_t>(numbers[b]), weight.mWeight});
      }
    }
  }

  void Normalize() {
    for (size_t v = 0; v + 1 < m_weights.starts.size(); ++v) {
      const uint32_t begin = m_weights.starts[v], end = m_weights.starts[v + 1];
      double sum = 0;
      for (uint32_t i = begin; i < end; ++i) sum += m_weights.weights[i].weight;
      for (uint32_t i = begin; i < end; ++i) {
        m_weights.weights[i].weight = static_cast<float>(m_weights.weights[i].weight / sum);
      }
    }
  }

  SkinWeights m_weights;
};

class MeshImport {
 public:
  MeshImport(Scene& scene, const SourceFile& file, const SourceTree& tree,
             const std::vector<AddedNode>& nodes, MaterialImport& materials)
      : m_scene(scene),
        m_source(*file.scene),
        m_turn(file.turn),
        m_tree(tree),
        m_nodes(nodes),
        m_materials(materials) {}

  void Run() {
    const std::vector<MeshUse> uses = CollectUses();
    std::vector<unsigned> pending(m_source.mNumMeshes, 0);
    for (const MeshUse& use : uses) {
      for (const unsigned mesh : use.meshes) ++pending[mesh];
    }
    for (const MeshUse& use : uses) Take(use, pending);
  }

 private:
  std::vector<MeshUse> CollectUses() {
    std::vector<MeshUse> uses;
    std::map<std::vector<unsigned>, size_t> shared;
    for (size_t i = 0; i < m_nodes.size(); ++i) {
      MemoryNode* const node = m_nodes[i].node;
      MeshUse use{MeshesOf(m_tree.nodes[i]), {node}};
      if (use.meshes.empty() || !node) continue;
      if (m_nodes[i].isBone) {
        Warn("node \"" + node->Name() + "\" is a joint and so a bone, its mesh will not show");
      }
      const bool skinned = std::ranges::any_of(
          use.meshes, [&](unsigned mesh) { return m_source.mMeshes[mesh]->mNumBones > 0; });
      // A skinned mesh is posed in its node's space.
      const auto known = skinned ? shared.end() : shared.find(use.meshes);
      if (known != shared.end()) {
        uses[known->second].nodes.push_back(node);
        continue;
      }
      if (!skinned) shared.emplace(use.meshes, uses.size());
      uses.push_back(std::move(use));
    }
    return uses;
  }

  std::vector<unsigned> MeshesOf(const SourceNode& node) const {
    std::vector<unsigned> meshes = node.meshes;
    std::erase_if(meshes, [&](unsigned mesh) {
      return mesh >= m_source.mNumMeshes || IsInvented(m_source, *m_source.mMeshes[mesh]);
    });
    return meshes;
  }

  void Take(const MeshUse& use, std::vector<unsigned>& pending) {
    size_t vertexCount = 0, triangleCount = 0;
    for (const unsigned mesh : use.meshes) {
      if (!HasTriangles(*m_source.mMeshes[mesh])) continue;
      vertexCount += m_source.mMeshes[mesh]->mNumVertices;
      triangleCount += m_source.mMeshes[mesh]->mNumFaces;
    }
    MeshAssembler assembler(vertexCount, triangleCount);
    std::vector<SkinBone> bones;
    std::vector<Mtl*> materials;
    const std::string& name = use.nodes[0]->Name();
    for (const unsigned mesh : use.meshes) {
      const aiMesh& part = *m_source.mMeshes[mesh];
      assembler.BeginPart(MaterialNumber(part, materials));
      TakePart(part, name, assembler, bones);
      if (--pending[mesh] == 0) {
        delete m_source.mMeshes[mesh];
        m_source.mMeshes[mesh] = nullptr;
      }
    }
    AssembledMesh assembled = assembler.Finish();
    if (assembled.flattenedFaces > 0) {
      Warn("node \"" + name + "\": " + std::to_string(assembled.flattenedFaces) +
           " faces are shown flat, 32 smoothing groups cannot tell their normals apart");
    }
    Show(use, std::move(assembled), std::move(bones), MaterialOf(name, materials));
  }

  static void Show(const MeshUse& use, AssembledMesh assembled, std::vector<SkinBone> bones,
                   Mtl* material) {
    for (MemoryNode* node : use.nodes) node->SetMaterial(material);
    if (!assembled.skin.starts.empty()) {
      use.nodes[0]->SetSkinnedMesh(std::move(assembled.mesh), std::move(bones),
                                   std::move(assembled.skin));
      return;
    }
    const auto object = std::make_shared<TriObject>(std::move(assembled.mesh));
    for (MemoryNode* node : use.nodes) node->SetObject(object);
  }

  // The parts' different materials, in the order in which they first come.
  MtlID MaterialNumber(const aiMesh& part, std::vector<Mtl*>& materials) {
    Mtl* material = m_materials.Find(part.mMaterialIndex);
    const auto known = std::ranges::find(materials, material);
    if (known != materials.end()) return static_cast<MtlID>(known - materials.begin());
    if (materials.size() == kMostMaterials) return 0;
    materials.push_back(material);
    return static_cast<MtlID>(materials.size() - 1);
  }

  Mtl* MaterialOf(const std::string& nodeName, const std::vector<Mtl*>& materials) {
    if (materials.size() <= 1) return materials.empty() ? nullptr : materials[0];
    return &m_scene.AddMultiMaterial(nodeName, materials);
  }

  void TakePart(const aiMesh& part, const std::string& nodeName, MeshAssembler& assembler,
                std::vector<SkinBone>& bones) {
    if (!part.mVertices || !HasTriangles(part)) return;
    const VertexWeights weights(
        part, [&](const aiBone& bone) { return BoneNumber(bone, nodeName, bones); });
    const aiVector3D* texCoords = part.mTextureCoords[TexCoordChannel(part)];
    for (unsigned v = 0; v < part.mNumVertices; ++v) {
      if (v + kVerticesAhead < part.mNumVertices) {
        assembler.Expect(m_turn.Point(part.mVertices[v + kVerticesAhead]));
      }
      FileVertex vertex{m_turn.Point(part.mVertices[v]), nullptr, nullptr, weights.Of(v)};
      Point3 normal;
      UVVert texCoord;
      if (part.mNormals) {
        normal = m_turn.Point(part.mNormals[v]);
        vertex.normal = &normal;
      }
      if (texCoords) {
        texCoord = {texCoords[v].x, texCoords[v].y, texCoords[v].z};
        vertex.texCoord = &texCoord;
      }
      assembler.AddVertex(vertex);
    }
    TakeTriangles(part, nodeName, assembler);
  }

  // Points and lines are no part of a mesh here.
  void TakeTriangles(const aiMesh& part, const std::string& nodeName, MeshAssembler& assembler) {
    size_t astray = 0;
    for (unsigned f = 0; f < part.mNumFaces; ++f) {
      const aiFace& face = part.mFaces[f];
      if (face.mNumIndices != 3) continue;
      const unsigned* v = face.mIndices;
      if (std::max({v[0], v[1], v[2]}) < part.mNumVertices) {
        assembler.AddTriangle(v[0], v[1], v[2]);
      } else {
        ++astray;
      }
    }
    if (astray > 0) {
      Warn("node \"" + nodeName + "\": " + std::to_string(astray) +
           " faces name vertices that are not there, they are left out");
    }
  }

  // The one that the diffuse map uses, when the mesh has it.
  unsigned TexCoordChannel(const aiMesh& part) const {
    const unsigned channel = m_materials.TexCoordChannel(part.mMaterialIndex);
    return channel < AI_MAX_NUMBER_OF_TEXTURECOORDS && part.mTextureCoords[channel] ? channel : 0;
  }

  int BoneNumber(const aiBone& source, const std::string& nodeName, std::vector<SkinBone>& bones) {
    const auto found = m_tree.byName.find(source.mName.C_Str());
    MemoryNode* node = found == m_tree.byName.end() ? nullptr : m_nodes[found->second].node;
    if (!node) {
      WarnOnce("node \"" + nodeName + "\": the bone \"" + source.mName.C_Str() +
               "\" has no node, its weights are left out");
      return -1;
    }
    const Matrix3 toBone = m_turn.Matrix(source.mOffsetMatrix);
    const auto known = std::ranges::find_if(
        bones, [&](const SkinBone& bone) { return bone.node == node && bone.toBone == toBone; });
    if (known != bones.end()) return static_cast<int>(known - bones.begin());
    bones.push_back({node, toBone});
    return static_cast<int>(bones.size() - 1);
  }

  void Warn(std::string text) { m_scene.info.warnings.push_back(std::move(text)); }
  void WarnOnce(const std::string& text) {
    const std::vector<std::string>& warnings = m_scene.info.warnings;
    if (std::ranges::find(warnings, text) == warnings.end()) Warn(text);
  }

  Scene& m_scene;
  aiScene& m_source;
  const AxisTurn m_turn;
  const SourceTree& m_tree;
  const std::vector<AddedNode>& m_nodes;
  MaterialImport& m_materials;
};

}  // namespace

void AddMeshes(Scene& scene, SourceFile file, const SourceTree& tree,
               const std::vector<AddedNode>& nodes, const SceneSettings& settings) {
  MaterialImport materials(file, settings, scene);
  MeshImport(scene, file, tree, nodes, materials).Run();
}

}  // namespace orv::host
