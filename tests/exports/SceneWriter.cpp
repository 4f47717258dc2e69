#include "exports/SceneWriter.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "TemporaryFolder.h"

namespace orv {
namespace {

using Json = nlohmann::json;
using Floats = std::vector<float>;

// The words NAME=VALUE of a line; NAME alone has an empty value.
class Settings {
 public:
  Settings(const Words& words, size_t first) {
    for (size_t i = first; i < words.size(); ++i) {
      const size_t end = std::min(words[i].find('='), words[i].size());
      m_values[words[i].substr(0, end)] = words[i].substr(std::min(end + 1, words[i].size()));
    }
  }
  std::optional<std::string> Take(const std::string& name) {
    const auto node = m_values.extract(name);
    return node ? std::optional(node.mapped()) : std::nullopt;
  }
  bool Has(const std::string& name) { return Take(name).has_value(); }
  unsigned Number(const std::string& name, unsigned otherwise) {
    const auto value = Take(name);
    return value ? static_cast<unsigned>(std::stoul(*value)) : otherwise;
  }
  void PutRestInto(Json& object) const {
    for (const auto& [name, value] : m_values)
      object[Json::json_pointer("/" + name)] = Value(name, value);
  }

 private:
  static Json Value(const std::string& name, const std::string& text) {
    const Json value = Json::parse(text, nullptr, false);
    if (value.is_discarded()) throw std::runtime_error("no value of JSON: " + name + "=" + text);
    return value;
  }

  std::map<std::string, std::string> m_values;
};

class GltfWriter {
 public:
  explicit GltfWriter(const Words& words) : m_name(words.at(1)) {
    m_json["asset"]["version"] = "2.0";
    m_json["scene"] = 0;
    m_json["scenes"][0]["nodes"] = Json::array();
    Settings(words, 2).PutRestInto(m_json);
  }

  void Take(const Words& words) {
    const std::string& kind = words[0];
    if (kind == "material") return AddMaterial(words);
    if (kind == "node") return AddNode(words);
    if (kind == "part") return AddPart(words);
    if (kind == "animate") return Animate(words);
    if (kind == "animation") return void(Push("animations", {{"name", words.at(1)}}));
    if (kind != "skin") throw std::runtime_error("a scene has no " + kind);
    AddSkin(words);
  }

  void Write(const std::string& folder) {
    if (!m_bytes.empty())
      m_json["buffers"][0] = {{"uri", m_name + ".bin"}, {"byteLength", m_bytes.size()}};
    WriteContent(folder + "/" + m_name + ".gltf", m_json.dump(1) + "\n");
    WriteContent(folder + "/" + m_name + ".bin", m_bytes);
  }

 private:
  size_t Push(const char* list, Json entry) {
    m_json[list].push_back(std::move(entry));
    return m_json[list].size() - 1;
  }
  size_t IndexOf(const char* list, const std::string& name) const {
    for (size_t i = m_json.value(list, Json::array()).size(); i-- > 0;)
      if (m_json[list][i]["name"] == name) return i;
    throw std::runtime_error(m_name + " has no " + name);
  }

  void AddMaterial(const Words& words) {
    Settings settings(words, 2);
    Json material = {{"name", words.at(1)}};
    for (const auto& [name, path] : {std::pair("map", "/pbrMetallicRoughness/baseColorTexture"),
                                     {"gloss", "/pbrMetallicRoughness/metallicRoughnessTexture"},
                                     {"normal", "/normalTexture"},
                                     {"glow", "/emissiveTexture"}}) {
      if (const auto map = settings.Take(name)) material[Json::json_pointer(path)] = Texture(*map);
    }
    settings.PutRestInto(material);
    Push("materials", material);
  }
  Json Texture(const std::string& text) {
    std::string image, members, modes;
    std::istringstream in(text);
    std::getline(std::getline(std::getline(in, image, '|'), members, '|'), modes);
    Json texture = {{"source", Push("images", {{"uri", image}})}};
    if (!modes.empty()) {
      const Json wrap = Json::parse("[" + modes + "]");
      texture["sampler"] = Push("samplers", {{"wrapS", wrap[0]}, {"wrapT", wrap[1]}});
    }
    Json reference = Json::parse("{" + members + "}");
    reference["index"] = Push("textures", texture);
    return reference;
  }

  void AddNode(const Words& words) {
    Settings settings(words, 2);
    const auto parent = settings.Take("in");
    Json node = {{"name", words.at(1)}};
    settings.PutRestInto(node);
    const size_t index = Push("nodes", node);
    (parent ? m_json["nodes"][IndexOf("nodes", *parent)]["children"] : m_json["scenes"][0]["nodes"])
        .push_back(index);
  }

  // Bound where the joints stand in a row along x.
  void AddSkin(const Words& words) {
    Json joints;
    Floats bind;
    for (size_t i = 1; i < words.size(); ++i) {
      joints.push_back(IndexOf("nodes", words[i]));
      const float x = 1 - static_cast<float>(i);
      bind.insert(bind.end(), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, 0, 0, 1});
    }
    Push("skins", {{"joints", joints}, {"inverseBindMatrices", Accessor(bind, 16)}});
  }

  void AddPart(const Words& words) {
    Settings settings(words, 2);
    Json primitive;
    if (words.at(1) != "-") primitive["material"] = IndexOf("materials", words[1]);
    const unsigned side = settings.Number("grid", 1), row = side + 1;
    std::vector<unsigned> corners;
    for (unsigned square = 0; square < side * side; ++square) {
      const unsigned a = square / side * row + square % side;
      corners.insert(corners.end(), {a, a + 1, a + row + 1, a, a + row + 1, a + row});
    }
    const bool fold = settings.Has("fold");
    for (size_t i = 0; fold && i < corners.size(); i += 15) corners[i + 1] = corners[i];
    std::vector<unsigned> vertices(row * row);
    for (unsigned i = 0; i < vertices.size(); ++i) vertices[i] = i;
    if (settings.Has("split")) {
      vertices = corners;
      for (unsigned i = 0; i < corners.size(); ++i) corners[i] = i;
    }
    AddVertices(vertices, row, settings, primitive["attributes"]);
    if (!settings.Has("noindices")) primitive["indices"] = Accessor(corners, 1);
    settings.PutRestInto(primitive);
    Json& node = m_json["nodes"].back();
    if (!node.contains("mesh")) node["mesh"] = Push("meshes", {{"name", node["name"]}});
    m_json["meshes"].back()["primitives"].push_back(primitive);
  }
  // Each vertex by the number of its place in rows of that many.
  void AddVertices(const std::vector<unsigned>& vertices, unsigned row, Settings& settings,
                   Json& attributes) {
    const unsigned at = settings.Number("at", 0), noise = settings.Number("noise", 1);
    const bool flat = settings.Has("flat");
    const float step = static_cast<float>(settings.Number("uv", 1)) / static_cast<float>(row - 1);
    Floats heights(row * row), positions, normals, uvs;
    for (float& height : heights) height = static_cast<float>(Random(noise)) / 64;
    for (const unsigned vertex : vertices) {
      const float x = static_cast<float>(vertex % row), z = static_cast<float>(vertex / row);
      positions.insert(positions.end(),
                       {static_cast<float>(at) + x, heights[vertex], flat ? 0 : -z});
      const float slope = static_cast<float>(Random(7)) - 3, size = std::sqrt(slope * slope + 16);
      normals.insert(normals.end(), {slope / size, 4 / size, 0});
      uvs.insert(uvs.end(), {x * step, z * step});
    }
    const size_t begin = m_bytes.size();
    attributes["POSITION"] = Accessor(positions, 3);
    if (settings.Has("bad")) m_bytes.replace(begin, 4, {0, 0, '\xC0', '\x7F'});
    if (!settings.Has("nonormals")) attributes["NORMAL"] = Accessor(normals, 3);
    if (!settings.Has("nouv")) attributes["TEXCOORD_0"] = Accessor(uvs, 2);
    if (const unsigned bones = settings.Number("bones", 0))
      AddWeights(vertices, bones, settings.Number("each", 1), settings.Has("loose"), attributes);
  }
  void AddWeights(const std::vector<unsigned>& vertices, unsigned bones, unsigned each, bool loose,
                  Json& attributes) {
    for (unsigned set = 0; set < each; set += 4) {
      std::vector<uint16_t> joints;
      Floats weights;
      for (const unsigned vertex : vertices) {
        for (unsigned k = set; k < set + 4; ++k) {
          const bool none = k >= each || (loose && vertex % 7 == 0);
          joints.push_back(static_cast<uint16_t>(none ? 0 : (vertex + k) % bones));
          weights.push_back(
              none ? 0 : 2 * static_cast<float>(each - k) / static_cast<float>(each * (each + 1)));
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

  void Animate(const Words& words) {
    const size_t width = words.at(2) == "rotation" ? 4 : 3;
    const size_t step = 1 + width * (words.at(3) == "CUBICSPLINE" ? 3 : 1);
    Floats times, values;
    for (size_t i = 4; i < words.size(); ++i)
      ((i - 4) % step == 0 ? times : values).push_back(std::stof(words[i]));
    const size_t input = Accessor(times, 1), output = Accessor(values, width);
    const Json target = {{"node", IndexOf("nodes", words[1])}, {"path", words[2]}};
    Json& animation = m_json["animations"].back();
    animation["channels"].push_back(
        {{"sampler", animation["samplers"].size()}, {"target", target}});
    animation["samplers"].push_back(
        {{"input", input}, {"output", output}, {"interpolation", words[3]}});
  }

  template <typename Number>
  size_t Accessor(const std::vector<Number>& values, size_t width) {
    const size_t begin = m_bytes.size(), bytes = values.size() * sizeof(Number);
    m_bytes.append(reinterpret_cast<const char*>(values.data()), bytes);
    const size_t view =
        Push("bufferViews", {{"buffer", 0}, {"byteOffset", begin}, {"byteLength", bytes}});
    const int type = std::is_same_v<Number, float> ? 5126 : sizeof(Number) == 2 ? 5123 : 5125;
    Json accessor = {{"bufferView", view}, {"componentType", type}};
    accessor["count"] = values.size() / width;
    accessor["type"] = width == 1 ? "SCALAR" : width == 16 ? "MAT4" : "VEC" + std::to_string(width);
    for (size_t column = 0; column < width; ++column) {
      std::vector<Number> numbers;
      for (size_t i = column; i < values.size(); i += width) numbers.push_back(values[i]);
      accessor["min"].push_back(*std::min_element(numbers.begin(), numbers.end()));
      accessor["max"].push_back(*std::max_element(numbers.begin(), numbers.end()));
    }
    return Push("accessors", accessor);
  }

  std::string m_name, m_bytes;
  Json m_json;
  uint32_t m_random = 1;
};

}  // namespace

Words WordsOf(const std::string& line) {
  Words words;
  std::istringstream in(line);
  for (std::string word; in >> std::quoted(word, '\'', '\1');) words.push_back(word);
  return words;
}

void WriteScenes(const std::string& text, const std::string& pictures, const std::string& folder) {
  std::optional<GltfWriter> scene;
  std::ofstream file;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("|")) file << line.substr(1) << '\n';
    const Words words = WordsOf(line);
    if (words.empty() || line.starts_with("|") || line.starts_with("#")) continue;
    const std::string& kind = words[0];
    if (scene && (kind == "scene" || kind == "file")) scene->Write(folder);
    if (kind == "scene") {
      scene.emplace(words);
    } else if (kind == "file") {
      scene.reset();
      file = std::ofstream(folder + "/" + words.at(1));
    } else if (kind == "copy") {
      std::filesystem::copy_file(pictures + "/" + words.at(1), folder + "/" + words.at(2));
    } else {
      scene.value().Take(words);
    }
  }
  if (scene) scene->Write(folder);
}

}  // namespace orv
