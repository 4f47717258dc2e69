#include "GlbFile.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <vector>

namespace orv::bench {
namespace {

using Json = nlohmann::ordered_json;

constexpr int kFloats = 5126, kShorts = 5123, kWords = 5125;

// The parts of a file, while arrays are added to its one buffer.
class GlbWriter {
 public:
  // Answers the number of the array's accessor.
  template <typename T>
  size_t AddArray(const std::vector<T>& values, const char* type, int componentType) {
    const size_t bytes = values.size() * sizeof(T);
    m_json["bufferViews"].push_back(
        {{"buffer", 0}, {"byteOffset", m_buffer.size()}, {"byteLength", bytes}});
    m_json["accessors"].push_back({{"bufferView", m_json["bufferViews"].size() - 1},
                                   {"componentType", componentType},
                                   {"count", values.size()},
                                   {"type", type}});
    m_buffer.append(reinterpret_cast<const char*>(values.data()), bytes);
    return m_json["accessors"].size() - 1;
  }

  Json& operator[](const char* key) { return m_json[key]; }

  void Write(const std::string& path) {
    m_json["buffers"] = Json::array({{{"byteLength", m_buffer.size()}}});
    std::string json = m_json.dump();
    json.resize((json.size() + 3) / 4 * 4, ' ');
    std::ofstream out(path, std::ios::binary);
    out << "glTF" << Word(2) << Word(28 + json.size() + m_buffer.size());
    out << Word(json.size()) << "JSON" << json << Word(m_buffer.size()) << std::string("BIN\0", 4);
    out << m_buffer;
    out.close();
    if (!out) throw std::runtime_error(path + " cannot be written");
  }

 private:
  static std::string Word(size_t value) {
    const auto word = static_cast<uint32_t>(value);
    return {reinterpret_cast<const char*>(&word), 4};
  }

  Json m_json = {{"asset", {{"version", "2.0"}}}, {"scene", 0}};
  std::string m_buffer;
};

// The shapes have two bones at a vertex at most.
void AddSkin(const Model& model, GlbWriter& glb, Json& attributes) {
  const size_t boneCount = model.skin->m_bones.size();
  std::vector<std::array<uint16_t, 4>> joints(model.mesh.m_positions.size());
  std::vector<std::array<float, 4>> weights(joints.size());
  std::vector<uint8_t> used(joints.size(), 0);
  std::vector<std::array<float, 16>> matrices(boneCount);
  Json jointNodes = Json::array();
  for (size_t bone = 0; bone < boneCount; ++bone) {
    for (const VertexWeight& weight : model.skin->m_bones[bone]->m_weights) {
      const uint8_t slot = used[weight.vertex]++;
      joints[weight.vertex][slot] = static_cast<uint16_t>(bone);
      weights[weight.vertex][slot] = weight.weight;
    }
    for (size_t i = 0; i < 16; i += 5) matrices[bone][i] = 1;
    glb["nodes"].push_back({{"name", model.skin->m_bones[bone]->m_name}});
    jointNodes.push_back(glb["nodes"].size() - 1);
    glb["scenes"][0]["nodes"].push_back(jointNodes.back());
  }
  attributes["JOINTS_0"] = glb.AddArray(joints, "VEC4", kShorts);
  attributes["WEIGHTS_0"] = glb.AddArray(weights, "VEC4", kFloats);
  glb["skins"].push_back(
      {{"joints", jointNodes}, {"inverseBindMatrices", glb.AddArray(matrices, "MAT4", kFloats)}});
  glb["nodes"][0]["skin"] = 0;
}

}  // namespace

void WriteGlb(const Model& model, const std::string& path) {
  const GenericMesh& mesh = model.mesh;
  std::vector<uint32_t> indices;
  indices.reserve(3 * mesh.m_faces.size());
  for (size_t i = 0; i < mesh.m_faces.size(); ++i) {
    for (const FaceCorner& corner : mesh.m_faces[i].corners) indices.push_back(corner.position);
  }
  GlbWriter glb;
  Json attributes;
  attributes["POSITION"] = glb.AddArray(mesh.m_positions, "VEC3", kFloats);
  Json low = Json::array(), high = Json::array();
  for (float Vec3::*axis : {&Vec3::x, &Vec3::y, &Vec3::z}) {
    const auto [least, most] = std::ranges::minmax(mesh.m_positions, {}, axis);
    low.push_back(least.*axis);
    high.push_back(most.*axis);
  }
  glb["accessors"][0]["min"] = low;
  glb["accessors"][0]["max"] = high;
  attributes["NORMAL"] = glb.AddArray(mesh.m_normals, "VEC3", kFloats);
  attributes["TEXCOORD_0"] = glb.AddArray(mesh.m_texCoords, "VEC2", kFloats);
  glb["scenes"].push_back({{"nodes", {0}}});
  glb["nodes"].push_back({{"name", "shape"}, {"mesh", 0}});
  const size_t indexArray = glb.AddArray(indices, "SCALAR", kWords);
  if (model.skin) AddSkin(model, glb, attributes);
  glb["meshes"].push_back(
      {{"primitives",
        Json::array({{{"attributes", attributes}, {"indices", indexArray}, {"material", 0}}})}});
  glb["images"].push_back({{"uri", "grid.png"}});
  glb["textures"].push_back({{"source", 0}});
  glb["materials"].push_back({{"name", "shape.m.onetex"},
                              {"pbrMetallicRoughness", {{"baseColorTexture", {{"index", 0}}}}}});
  glb.Write(path);
}

}  // namespace orv::bench
