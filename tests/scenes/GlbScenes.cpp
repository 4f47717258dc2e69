#include "scenes/GlbScenes.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace orv {
namespace {

// Collects the parts of a file while meshes are added to its one buffer.
class GlbWriter {
 public:
  // Index of the new mesh: a grid of side x side cells of the given width.
  size_t AddGrid(uint32_t side, float cell) {
    const std::string position = AddArray("VEC3", 34962, Positions(side, cell), cell * side);
    const std::string normal = AddArray("VEC3", 34962, Normals(side, cell));
    const std::string texCoord = AddArray("VEC2", 34962, TexCoords(side));
    const std::string indices = AddArray("SCALAR", 34963, Indices(side));
    Append(m_meshes, R"({"primitives":[{"material":0,"attributes":{"POSITION":)" + position +
                         R"(,"NORMAL":)" + normal + R"(,"TEXCOORD_0":)" + texCoord +
                         R"(},"indices":)" + indices + "}]}");
    return m_meshCount++;
  }

  void AddNode(const std::string& name, size_t mesh, float x, float z) {
    Append(m_children, std::to_string(++m_nodeCount));
    Append(m_nodes, R"({"name":")" + name + R"(","mesh":)" + std::to_string(mesh) +
                        R"(,"translation":[)" + std::to_string(x) + ",0," + std::to_string(z) +
                        "]}");
  }

  std::string Bytes() const {
    std::string json = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],)"
                       R"("nodes":[{"name":"all","children":[)" +
                       m_children + "]}," + m_nodes + R"(],"meshes":[)" + m_meshes +
                       R"(],"accessors":[)" + m_accessors + R"(],"bufferViews":[)" + m_views +
                       R"(],"buffers":[{"byteLength":)" + std::to_string(m_buffer.size()) +
                       R"(}],"images":[{"uri":"grid.png"}],"textures":[{"source":0}],)"
                       R"("materials":[{"name":"grid.m.onetex","pbrMetallicRoughness":)"
                       R"({"baseColorTexture":{"index":0}}}]})";
    json.resize((json.size() + 3) / 4 * 4, ' ');
    std::string bytes = "glTF" + Word(2) + Word(28 + json.size() + m_buffer.size());
    bytes += Word(json.size()) + "JSON" + json;
    return bytes + Word(m_buffer.size()) + std::string("BIN\0", 4) + m_buffer;
  }

 private:
  struct Array {
    std::string bytes;
    size_t count;
    int componentType;
  };

  static std::string Word(size_t value) {
    const auto word = static_cast<uint32_t>(value);
    return {reinterpret_cast<const char*>(&word), 4};
  }
  static void Append(std::string& list, const std::string& item) {
    if (!list.empty()) list += ',';
    list += item;
  }
  template <typename T>
  static Array ArrayOf(const std::vector<T>& values, size_t width, int componentType) {
    return {{reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)},
            values.size() / width,
            componentType};
  }

  template <typename Add>
  static std::vector<float> ForEachCorner(uint32_t side, Add add) {
    std::vector<float> values;
    for (uint32_t z = 0; z <= side; ++z) {
      for (uint32_t x = 0; x <= side; ++x)
        add(values, static_cast<float>(x), static_cast<float>(z));
    }
    return values;
  }
  static Array Positions(uint32_t side, float cell) {
    const auto add = [&](std::vector<float>& to, float x, float z) {
      to.insert(to.end(), {x * cell, std::sin(x * cell), z * cell});
    };
    return ArrayOf(ForEachCorner(side, add), 3, 5126);
  }
  static Array Normals(uint32_t side, float cell) {
    const auto add = [&](std::vector<float>& to, float x, float) {
      const float slope = std::cos(x * cell);
      const float length = std::sqrt(1 + slope * slope);
      to.insert(to.end(), {-slope / length, 1 / length, 0.0f});
    };
    return ArrayOf(ForEachCorner(side, add), 3, 5126);
  }
  static Array TexCoords(uint32_t side) {
    const float scale = 1.0f / static_cast<float>(side);
    const auto add = [&](std::vector<float>& to, float x, float z) {
      to.insert(to.end(), {x * scale, z * scale});
    };
    return ArrayOf(ForEachCorner(side, add), 2, 5126);
  }
  static Array Indices(uint32_t side) {
    std::vector<uint32_t> indices;
    for (uint32_t z = 0; z < side; ++z) {
      for (uint32_t x = 0; x < side; ++x) {
        const uint32_t a = z * (side + 1) + x, b = a + side + 1;
        indices.insert(indices.end(), {a, b, b + 1, a, b + 1, a + 1});
      }
    }
    return ArrayOf(indices, 1, 5125);
  }

  // Index of the new accessor; positions need the box that they fill.
  std::string AddArray(const char* type, int target, const Array& array, float extent = 0) {
    Append(m_views, R"({"buffer":0,"byteOffset":)" + std::to_string(m_buffer.size()) +
                        R"(,"byteLength":)" + std::to_string(array.bytes.size()) + R"(,"target":)" +
                        std::to_string(target) + "}");
    m_buffer += array.bytes;
    const std::string size = std::to_string(extent);
    const std::string box =
        extent > 0 ? R"(,"min":[0,-1,0],"max":[)" + size + ",1," + size + "]" : "";
    Append(m_accessors, R"({"bufferView":)" + std::to_string(m_arrayCount) +
                            R"(,"componentType":)" + std::to_string(array.componentType) +
                            R"(,"count":)" + std::to_string(array.count) + R"(,"type":")" + type +
                            "\"" + box + "}");
    return std::to_string(m_arrayCount++);
  }

  std::string m_meshes, m_nodes, m_children, m_accessors, m_views, m_buffer;
  size_t m_meshCount = 0, m_nodeCount = 0, m_arrayCount = 0;
};

}  // namespace

std::string GridGlb(size_t triangleCount) {
  const auto side =
      static_cast<uint32_t>(std::ceil(std::sqrt(static_cast<double>(triangleCount) / 2)));
  GlbWriter writer;
  writer.AddNode("grid", writer.AddGrid(side, 0.25f), 0, 0);
  return writer.Bytes();
}

std::string NodesGlb(size_t nodeCount) {
  GlbWriter writer;
  for (size_t i = 0; i < nodeCount; ++i) {
    const float x = static_cast<float>(i % 100) * 3, z = static_cast<float>(i / 100) * 3;
    writer.AddNode("part" + std::to_string(i), writer.AddGrid(2, 1), x, z);
  }
  return writer.Bytes();
}

}  // namespace orv
