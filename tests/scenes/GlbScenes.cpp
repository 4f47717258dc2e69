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
  // Index of the new mesh: a grid of side x side cells of the given width. With bones, each vertex
  // hangs on two of them, in stripes from the first to the last.
  size_t AddGrid(uint32_t side, float cell, size_t boneCount = 0) {
    const std::string size = std::to_string(cell * static_cast<float>(side));
    const std::string position = AddArray("VEC3", kVertices, Positions(side, cell),
                                          R"(,"min":[0,-1,0],"max":[)" + size + ",1," + size + "]");
    const std::string normal = AddArray("VEC3", kVertices, Normals(side, cell));
    const std::string texCoord = AddArray("VEC2", kVertices, TexCoords(side));
    const std::string indices = AddArray("SCALAR", kIndices, Indices(side));
    const std::string skin = boneCount > 0 ? AddSkinWeights(side, boneCount) : "";
    Append(m_meshes, R"({"primitives":[{"material":0,"attributes":{"POSITION":)" + position +
                         R"(,"NORMAL":)" + normal + R"(,"TEXCOORD_0":)" + texCoord + skin +
                         R"(},"indices":)" + indices + "}]}");
    return m_meshCount++;
  }

  void AddNode(const std::string& name, size_t mesh, float x, float z) {
    Append(m_children, std::to_string(++m_nodeCount));
    Append(m_nodes, R"({"name":")" + name + R"(","mesh":)" + std::to_string(mesh) +
                        R"(,"translation":[)" + std::to_string(x) + ",0," + std::to_string(z) +
                        "]}");
  }

  // A mesh on all the bones that are added next.
  void AddSkinnedNode(const std::string& name, size_t mesh) {
    Append(m_children, std::to_string(++m_nodeCount));
    Append(m_nodes,
           R"({"name":")" + name + R"(","mesh":)" + std::to_string(mesh) + R"(,"skin":0})");
    m_isSkinned = true;
  }

  // Four bones below each, all turning and moving in every frame.
  void AddBones(size_t count, size_t frameCount) {
    const size_t first = m_nodeCount + 1;
    Append(m_children, std::to_string(first));
    std::vector<float> times;
    for (size_t i = 0; i < frameCount; ++i) times.push_back(static_cast<float>(i) / 30);
    const std::string input =
        AddArray("SCALAR", kNoTarget, ArrayOf(times, 1, kFloats),
                 R"(,"min":[0],"max":[)" + std::to_string(times.back()) + "]");
    std::string joints;
    for (size_t bone = 0; bone < count; ++bone) {
      std::string below;
      for (size_t child = 4 * bone + 1; child <= 4 * bone + 4 && child < count; ++child) {
        Append(below, std::to_string(first + child));
      }
      if (!below.empty()) below = R"(,"children":[)" + below + "]";
      Append(m_nodes, R"({"name":"b.)" + std::to_string(bone) + "\"" + below + "}");
      Append(joints, std::to_string(++m_nodeCount));
      AddTracks(bone, frameCount, input);
    }
    if (!m_isSkinned) return;
    std::vector<float> matrices;  // the importer cannot do without
    for (size_t i = 0; i < 16 * count; ++i) matrices.push_back(i % 16 % 5 == 0 ? 1.0f : 0.0f);
    m_skins = R"(,"skins":[{"joints":[)" + joints + R"(],"inverseBindMatrices":)" +
              AddArray("MAT4", kNoTarget, ArrayOf(matrices, 16, kFloats)) + "}]";
  }

  std::string Bytes() const {
    const std::string animations = m_samplers.empty()
                                       ? ""
                                       : R"(,"animations":[{"name":"all","samplers":[)" +
                                             m_samplers + R"(],"channels":[)" + m_channels + "]}]";
    std::string json = R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],)"
                       R"("nodes":[{"name":"all","children":[)" +
                       m_children + "]}," + m_nodes + R"(],"meshes":[)" + m_meshes + "]" + m_skins +
                       animations + R"(,"accessors":[)" + m_accessors + R"(],"bufferViews":[)" +
                       m_views + R"(],"buffers":[{"byteLength":)" +
                       std::to_string(m_buffer.size()) +
                       R"(}],"images":[{"uri":"grid.png"}],"textures":[{"source":0}],)"
                       R"("materials":[{"name":"grid.m.onetex","pbrMetallicRoughness":)"
                       R"({"baseColorTexture":{"index":0}}}]})";
    json.resize((json.size() + 3) / 4 * 4, ' ');
    std::string bytes = "glTF" + Word(2) + Word(28 + json.size() + m_buffer.size());
    bytes += Word(json.size()) + "JSON" + json;
    return bytes + Word(m_buffer.size()) + std::string("BIN\0", 4) + m_buffer;
  }

 private:
  static constexpr int kFloats = 5126, kShorts = 5123, kWords = 5125;
  static constexpr int kVertices = 34962, kIndices = 34963, kNoTarget = 0;

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
    return ArrayOf(ForEachCorner(side, add), 3, kFloats);
  }
  static Array Normals(uint32_t side, float cell) {
    const auto add = [&](std::vector<float>& to, float x, float) {
      const float slope = std::cos(x * cell);
      const float length = std::sqrt(1 + slope * slope);
      to.insert(to.end(), {-slope / length, 1 / length, 0.0f});
    };
    return ArrayOf(ForEachCorner(side, add), 3, kFloats);
  }
  static Array TexCoords(uint32_t side) {
    const float scale = 1.0f / static_cast<float>(side);
    const auto add = [&](std::vector<float>& to, float x, float z) {
      to.insert(to.end(), {x * scale, z * scale});
    };
    return ArrayOf(ForEachCorner(side, add), 2, kFloats);
  }
  static Array Indices(uint32_t side) {
    std::vector<uint32_t> indices;
    for (uint32_t z = 0; z < side; ++z) {
      for (uint32_t x = 0; x < side; ++x) {
        const uint32_t a = z * (side + 1) + x, b = a + side + 1;
        indices.insert(indices.end(), {a, b, b + 1, a, b + 1, a + 1});
      }
    }
    return ArrayOf(indices, 1, kWords);
  }

  std::string AddSkinWeights(uint32_t side, size_t boneCount) {
    std::vector<uint16_t> joints;
    std::vector<float> weights;
    for (uint32_t corner = 0; corner < (side + 1) * (side + 1); ++corner) {
      const float at = static_cast<float>(corner % (side + 1)) / static_cast<float>(side + 1) *
                       static_cast<float>(boneCount - 1);
      const auto bone = static_cast<uint16_t>(at);
      joints.insert(joints.end(), {bone, static_cast<uint16_t>(bone + 1), 0, 0});
      weights.insert(weights.end(), {1 - (at - bone), at - bone, 0, 0});
    }
    const std::string first = AddArray("VEC4", kVertices, ArrayOf(joints, 4, kShorts));
    return R"(,"JOINTS_0":)" + first + R"(,"WEIGHTS_0":)" +
           AddArray("VEC4", kVertices, ArrayOf(weights, 4, kFloats));
  }

  void AddTracks(size_t bone, size_t frameCount, const std::string& input) {
    std::vector<float> rotations, translations;
    for (size_t frame = 0; frame < frameCount; ++frame) {
      const float moment = static_cast<float>(frame) / 10;
      const float angle = std::sin(moment + static_cast<float>(bone)) / 2;
      rotations.insert(rotations.end(), {std::sin(angle), 0, 0, std::cos(angle)});
      translations.insert(translations.end(), {0.1f, 0.2f + moment / 10, 0.3f});
    }
    AddTrack("rotation", input, AddArray("VEC4", kNoTarget, ArrayOf(rotations, 4, kFloats)));
    AddTrack("translation", input, AddArray("VEC3", kNoTarget, ArrayOf(translations, 3, kFloats)));
  }
  // Of the node that was added last.
  void AddTrack(const std::string& path, const std::string& input, const std::string& output) {
    Append(m_samplers, R"({"input":)" + input + R"(,"output":)" + output + "}");
    Append(m_channels, R"({"sampler":)" + std::to_string(m_trackCount++) + R"(,"target":{"node":)" +
                           std::to_string(m_nodeCount) + R"(,"path":")" + path + R"("}})");
  }

  // Index of the new accessor; `box` are its extremes, where it needs them.
  std::string AddArray(const char* type, int target, const Array& array,
                       const std::string& box = "") {
    Append(m_views, R"({"buffer":0,"byteOffset":)" + std::to_string(m_buffer.size()) +
                        R"(,"byteLength":)" + std::to_string(array.bytes.size()) +
                        (target == kNoTarget ? "" : R"(,"target":)" + std::to_string(target)) +
                        "}");
    m_buffer += array.bytes;
    Append(m_accessors, R"({"bufferView":)" + std::to_string(m_arrayCount) +
                            R"(,"componentType":)" + std::to_string(array.componentType) +
                            R"(,"count":)" + std::to_string(array.count) + R"(,"type":")" + type +
                            "\"" + box + "}");
    return std::to_string(m_arrayCount++);
  }

  std::string m_meshes, m_nodes, m_children, m_accessors, m_views, m_buffer;
  std::string m_skins, m_samplers, m_channels;
  size_t m_meshCount = 0, m_nodeCount = 0, m_arrayCount = 0, m_trackCount = 0;
  bool m_isSkinned = false;
};

uint32_t SideOf(size_t triangleCount) {
  return static_cast<uint32_t>(std::ceil(std::sqrt(static_cast<double>(triangleCount) / 2)));
}

}  // namespace

std::string GridGlb(size_t triangleCount) {
  GlbWriter writer;
  writer.AddNode("grid", writer.AddGrid(SideOf(triangleCount), 0.25f), 0, 0);
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

std::string SkinGlb(size_t triangleCount, size_t boneCount) {
  GlbWriter writer;
  writer.AddSkinnedNode("grid", writer.AddGrid(SideOf(triangleCount), 0.25f, boneCount));
  writer.AddBones(boneCount, 2);
  return writer.Bytes();
}

std::string BonesGlb(size_t boneCount, size_t frameCount) {
  GlbWriter writer;
  writer.AddNode("grid", writer.AddGrid(1, 1), 0, 0);
  writer.AddBones(boneCount, frameCount);
  return writer.Bytes();
}

}  // namespace orv
