#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace orv::host {

inline std::string Base64(const std::string& bytes) {
  static const char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k) {
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    }
    for (size_t k = 0; k < 4; ++k) {
      result += i + k <= bytes.size() ? kDigits[group >> (18 - 6 * k) & 63] : '=';
    }
  }
  return result;
}

// Writes text glTF: arrays of numbers become accessors, all else is given as JSON.
//
//   Gltf file;
//   file.meshes = Join({file.Mesh({file.TrianglePrimitive()})});
//   file.nodes = R"({"mesh":0})";
//   WriteContent(path, file.Text("0"));
class Gltf {
 public:
  std::string nodes, meshes, materials, textures, images, samplers, skins, animations;

  // Answers the accessor's number. `type` is SCALAR, VEC2, ...
  int Floats(const std::string& type, const std::vector<float>& values) {
    return Add(type, 5126, values.size() * 4, values.data(), values.size() / ComponentsOf(type));
  }
  int Indices(const std::vector<uint16_t>& values) {
    return Add("SCALAR", 5123, values.size() * 2, values.data(), values.size());
  }
  int Joints(const std::vector<uint8_t>& values) {
    return Add("VEC4", 5121, values.size(), values.data(), values.size() / 4);
  }

  // A right triangle at the origin with normals along +z; material -1 for none.
  std::string TrianglePrimitive(int material = -1, bool withTexCoords = true) {
    const std::string positions = std::to_string(Floats("VEC3", {0, 0, 0, 1, 0, 0, 0, 1, 0}));
    const std::string normals = std::to_string(Floats("VEC3", {0, 0, 1, 0, 0, 1, 0, 0, 1}));
    std::string text = R"({"attributes":{"POSITION":)" + positions + R"(,"NORMAL":)" + normals;
    if (withTexCoords) {
      text += R"(,"TEXCOORD_0":)" + std::to_string(Floats("VEC2", {0, 0, 1, 0, 0, 0.25f}));
    }
    text += "}";
    if (material >= 0) text += R"(,"material":)" + std::to_string(material);
    return text + "}";
  }
  static std::string Mesh(const std::string& primitives) {
    return R"({"primitives":[)" + primitives + "]}";
  }

  std::string Text(const std::string& rootNodes) const {
    std::string text =
        R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[)" + rootNodes + "]}]";
    const auto list = [&](const char* name, const std::string& items) {
      if (!items.empty()) text += std::string(",\"") + name + "\":[" + items + "]";
    };
    list("nodes", nodes);
    list("meshes", meshes);
    list("materials", materials);
    list("textures", textures);
    list("images", images);
    list("samplers", samplers);
    list("skins", skins);
    list("animations", animations);
    list("accessors", m_accessors);
    list("bufferViews", m_views);
    if (!m_bytes.empty()) {
      list("buffers", R"({"byteLength":)" + std::to_string(m_bytes.size()) +
                          R"(,"uri":"data:application/octet-stream;base64,)" + Base64(m_bytes) +
                          "\"}");
    }
    return text + "}";
  }

 private:
  static size_t ComponentsOf(const std::string& type) {
    return type == "SCALAR" ? 1 : type == "MAT4" ? 16 : static_cast<size_t>(type[3] - '0');
  }

  int Add(const std::string& type, int componentType, size_t size, const void* data, size_t count) {
    const std::string comma = m_count > 0 ? "," : "";
    m_views += comma + R"({"buffer":0,"byteOffset":)" + std::to_string(m_bytes.size()) +
               R"(,"byteLength":)" + std::to_string(size) + "}";
    m_accessors += comma + R"({"bufferView":)" + std::to_string(m_count) + R"(,"componentType":)" +
                   std::to_string(componentType) + R"(,"count":)" + std::to_string(count) +
                   R"(,"type":")" + type + "\"}";
    m_bytes.append(static_cast<const char*>(data), size);
    m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
    return m_count++;
  }

  std::string m_accessors, m_views, m_bytes;
  int m_count = 0;
};

}  // namespace orv::host
