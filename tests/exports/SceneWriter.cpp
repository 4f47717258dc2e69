#include "exports/SceneWriter.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <sstream>

#include "TemporaryFolder.h"

namespace orv {
namespace {

using Json = nlohmann::json;
using Floats = std::vector<float>;

class SceneWriter {
 public:
  explicit SceneWriter(const std::string& text) : m_json(Json::parse(text)) {}

  void Write(const std::string& path) {
    for (Json& mesh : List("meshes")) {
      for (Json& primitive : mesh["primitives"]) {
        if (primitive.contains("grid")) BuildGrid(primitive);
      }
    }
    for (Json& skin : List("skins")) {
      if (skin.contains("inverseBindMatrices")) BindInRow(skin);
    }
    for (Json& animation : List("animations")) {
      for (Json& sampler : animation["samplers"]) {
        Floats values;
        for (const Json& value : sampler["output"])
          for (const float number : value) values.push_back(number);
        sampler["output"] = Accessor(values, sampler["output"][0].size());
        sampler["input"] = Accessor(sampler["input"].get<Floats>(), 1);
      }
    }
    m_json["asset"]["version"] = "2.0";
    m_json["scene"] = 0;
    if (!m_bytes.empty()) {
      const std::string name = std::filesystem::path(path).filename().string() + ".bin";
      m_json["buffers"] = {{{"uri", name}, {"byteLength", m_bytes.size()}}};
      WriteContent(path + ".bin", m_bytes);
    }
    WriteContent(path + ".gltf", m_json.dump(1));
  }

 private:
  Json& List(const char* name) { return m_json.contains(name) ? m_json[name] : m_none; }

  void BindInRow(Json& skin) {
    Floats matrices;
    for (size_t i = 0; i < skin["joints"].size(); ++i) {
      const float x = -static_cast<float>(i);
      matrices.insert(matrices.end(), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, 0, 0, 1});
    }
    skin["inverseBindMatrices"] = Accessor(matrices, 16);
  }

  void BuildGrid(Json& primitive) {
    const Json grid = primitive["grid"];
    primitive.erase("grid");
    const unsigned side = grid.value("side", 1u), row = side + 1;
    std::vector<unsigned> corners;
    for (unsigned square = 0; square < side * side; ++square) {
      const unsigned a = square / side * row + square % side;
      corners.insert(corners.end(), {a, a + 1, a + row + 1, a, a + row + 1, a + row});
    }
    for (size_t i = 0; grid.contains("fold") && i < corners.size(); i += 15)
      corners[i + 1] = corners[i];
    std::vector<unsigned> vertices(row * row);
    std::iota(vertices.begin(), vertices.end(), 0);
    if (grid.contains("split")) {
      vertices = corners;
      std::iota(corners.begin(), corners.end(), 0);
    }
    if (!grid.contains("noIndices")) primitive["indices"] = Accessor(corners, 1);
    AddVertices(vertices, row, grid, primitive["attributes"]);
    AddWeights(vertices, grid, primitive["attributes"]);
  }

  // Each vertex by the number of its place in rows of that many.
  void AddVertices(const std::vector<unsigned>& vertices, unsigned row, const Json& grid,
                   Json& attributes) {
    const float at = grid.value("at", 0.0f);
    const float step = grid.value("uv", 1.0f) / static_cast<float>(row - 1);
    Floats heights(row * row), positions, normals, texcoords;
    for (float& height : heights) height = static_cast<float>(Random(grid.value("noise", 1u))) / 64;
    for (const unsigned vertex : vertices) {
      const float x = static_cast<float>(vertex % row), z = static_cast<float>(vertex / row);
      positions.insert(positions.end(), {at + x, heights[vertex], grid.contains("flat") ? 0 : -z});
      const float slope = static_cast<float>(Random(7)) - 3, size = std::sqrt(slope * slope + 16);
      normals.insert(normals.end(), {slope / size, 4 / size, 0});
      texcoords.insert(texcoords.end(), {x * step, z * step});
    }
    const size_t begin = m_bytes.size();
    attributes["POSITION"] = Accessor(positions, 3);
    if (grid.contains("bad")) m_bytes.replace(begin, 4, {0, 0, '\xC0', '\x7F'});
    if (!grid.contains("noNormals")) attributes["NORMAL"] = Accessor(normals, 3);
    if (!grid.contains("noTexcoords")) attributes["TEXCOORD_0"] = Accessor(texcoords, 2);
  }

  void AddWeights(const std::vector<unsigned>& vertices, const Json& grid, Json& attributes) {
    const unsigned bones = grid.value("bones", 0u), each = grid.value("each", 1u);
    for (unsigned set = 0; bones > 0 && set < each; set += 4) {
      std::vector<uint16_t> joints;
      Floats weights;
      for (const unsigned vertex : vertices) {
        for (unsigned k = set; k < set + 4; ++k) {
          const bool none = k >= each || (grid.contains("loose") && vertex % 7 == 0);
          joints.push_back(static_cast<uint16_t>(none ? 0 : (vertex + k) % bones));
          weights.push_back(none ? 0
                                 : static_cast<float>(2 * (each - k)) /
                                       static_cast<float>(each * (each + 1)));
        }
      }
      attributes["JOINTS_" + std::to_string(set / 4)] = Accessor(joints, 4);
      attributes["WEIGHTS_" + std::to_string(set / 4)] = Accessor(weights, 4);
    }
  }

  unsigned Random(unsigned below) {
    m_random = m_random * 1664525 + 1013904223;
    return (m_random >> 16) % below;
  }

  template <typename Number>
  size_t Accessor(const std::vector<Number>& values, size_t width) {
    const size_t begin = m_bytes.size(), bytes = values.size() * sizeof(Number);
    m_bytes.append(reinterpret_cast<const char*>(values.data()), bytes);
    const size_t index = m_json["bufferViews"].size();  // one for each accessor
    m_json["bufferViews"].push_back({{"buffer", 0}, {"byteOffset", begin}, {"byteLength", bytes}});
    std::vector<Number> least(values.begin(), values.begin() + static_cast<long>(width));
    std::vector<Number> most = least;
    for (size_t i = 0; i < values.size(); ++i) {
      least[i % width] = std::min(least[i % width], values[i]);
      most[i % width] = std::max(most[i % width], values[i]);
    }
    const std::map<size_t, const char*> types = {
        {1, "SCALAR"}, {2, "VEC2"}, {3, "VEC3"}, {4, "VEC4"}, {16, "MAT4"}};
    const int number = std::is_same_v<Number, float> ? 5126 : sizeof(Number) == 2 ? 5123 : 5125;
    m_json["accessors"].push_back({{"bufferView", index},
                                   {"componentType", number},
                                   {"count", values.size() / width},
                                   {"type", types.at(width)},
                                   {"min", least},
                                   {"max", most}});
    return index;
  }

  Json m_json, m_none;
  std::string m_bytes;
  uint32_t m_random = 1;
};

}  // namespace

std::vector<std::string> WordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream in(line);
  for (std::string word; in >> std::quoted(word, '\'', '\1');) words.push_back(word);
  return words;
}

void WriteScenes(const std::string& text, const std::string& pictures, const std::string& folder) {
  std::istringstream in(text);
  std::string line, content;
  std::getline(in, line);
  while (in) {
    const std::vector<std::string> words = WordsOf(line);
    for (content.clear(); std::getline(in, line) && line.starts_with("|");)
      content += line.substr(1) + "\n";
    if (words.empty() || words[0].starts_with("#")) continue;
    const std::string path = folder + "/" + words.back();
    if (words[0] == "copy") std::filesystem::copy_file(pictures + "/" + words.at(1), path);
    if (words[0] == "file") WriteContent(path, content);
    if (words[0] == "scene") SceneWriter(content).Write(path);
  }
}

}  // namespace orv
