#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

// Reads .im and .kin files with code of its own, so that what the exporter writes is not proved by
// the exporter's own reader. Strict: current versions only, and every length has to be exact.
// Throws std::runtime_error at the first thing that is not as it should be.
namespace independent {

struct Map {
  uint32_t channel;
  std::string name;
  float amount;
};

struct MeshChunk {
  std::string materialName;
  std::vector<std::pair<std::string, std::string>> properties;
  uint32_t twoSided, opacityBits;
  std::array<float, 12> colours;
  float shininess;
  std::vector<Map> maps;
  uint32_t word, flags;
  float area;
  uint32_t maxInfluences;
  std::string boneName;
  std::vector<std::array<float, 5>> vertices;
  std::vector<std::array<uint16_t, 3>> triangles;
  std::vector<std::array<float, 3>> normals, faceNormals, tangents;
};

struct Bone {
  std::string name;
  int parent;
  std::array<float, 7> pose;  // position x, y, z; rotation x, y, z, w; zero in an animation
};

struct Weight {
  int32_t vertex;
  float weight;
  std::array<float, 3> offset;
};

struct Match {
  uint32_t chunk;
  std::vector<Weight> weights;
};

struct Influence {
  std::string name, parentName;
  std::array<float, 3> position;
  std::array<float, 9> rotation;
  std::vector<Match> matches;
};

struct Attachment {
  std::string name;
  std::array<float, 9> rotation;
  std::array<float, 3> position;
};

struct MeshFile {
  std::array<float, 6> vectors;
  uint32_t word, maxInfluences, maxBones;
  std::array<float, 3> minimum, maximum;
  std::vector<MeshChunk> chunks;
  std::vector<Bone> bones;
  std::vector<Influence> influences;
  std::vector<Attachment> attachments;
  bool hasInfluences = false;
};

struct Event {
  int32_t frame;
  uint32_t type;
  std::string name;
};

struct AnimationFile {
  std::string name;
  uint32_t frameCount, frameRate;
  float masterScale;
  std::vector<Event> events;
  std::vector<Bone> bones;
  std::vector<std::vector<std::array<float, 7>>> frames;
};

class Parser {
 public:
  explicit Parser(const std::string& bytes) : m_bytes(bytes) {}

  MeshFile Mesh() {
    MeshFile file{};
    const size_t end = Open("QIRF");
    Expect(Tag() == "IDXM", "file type");
    const size_t info = OpenVersion("INFO", 104);
    file.vectors = Array<6>();
    file.word = U32();
    const uint32_t chunkCount = U32();
    file.maxInfluences = U32();
    file.maxBones = U32();
    file.minimum = Array<3>();
    file.maximum = Array<3>();
    Close(info);
    for (uint32_t i = 0; i < chunkCount; ++i) file.chunks.push_back(ReadChunk(i));
    if (m_at < end && PeekTag() == "SKEL") {
      const size_t skeleton = OpenVersion("SKEL", 100);
      ReadBone(file.bones, -1, true);
      Close(skeleton);
    } else if (m_at < end && PeekTag() == "INFL") {
      file.hasInfluences = true;
      const size_t influences = OpenVersion("INFL", 100);
      for (uint32_t left = U32(); left > 0; --left) file.influences.push_back(ReadInfluence());
      Close(influences);
    }
    if (m_at < end) {
      const size_t attachments = OpenVersion("ATCH", 100);
      for (uint32_t left = U32(); left > 0; --left) {
        std::string name = String();
        const auto rotation = Array<9>();
        file.attachments.push_back({std::move(name), rotation, Array<3>()});
      }
      Close(attachments);
    }
    Close(end);
    Expect(m_at == m_bytes.size(), "end of file");
    return file;
  }

  AnimationFile Animation() {
    AnimationFile file{};
    const size_t end = Open("QIRF");
    Expect(Tag() == "ANIM", "file type");
    const size_t info = OpenVersion("INFO", 100);
    file.name = String();
    file.frameCount = U32();
    file.frameRate = U32();
    file.masterScale = F32();
    Close(info);
    const size_t events = OpenVersion("EVNT", 100);
    for (uint32_t left = U32(); left > 0; --left) {
      const auto frame = static_cast<int32_t>(U32());
      const uint32_t type = U32();
      file.events.push_back({frame, type, String()});
    }
    Close(events);
    const size_t skeleton = OpenVersion("SKEL", 100);
    ReadBone(file.bones, -1, false);
    Close(skeleton);
    while (m_at < end) {
      const size_t frame = OpenVersion("FRAM", 100);
      Expect(U32() == file.frames.size(), "frame number");
      auto& poses = file.frames.emplace_back();
      for (size_t bone = 0; bone < file.bones.size(); ++bone) poses.push_back(Array<7>());
      Close(frame);
    }
    Close(end);
    Expect(m_at == m_bytes.size(), "end of file");
    return file;
  }

 private:
  void Expect(bool condition, const std::string& what) const {
    if (!condition) throw std::runtime_error(what + " at byte " + std::to_string(m_at));
  }
  uint32_t Byte() {
    Expect(m_at < m_bytes.size(), "unexpected end");
    return static_cast<unsigned char>(m_bytes[m_at++]);
  }
  uint16_t U16() {
    const uint32_t low = Byte();
    return static_cast<uint16_t>(low + 256 * Byte());
  }
  uint32_t U32() {
    const uint32_t low = U16();
    return low + 65536 * uint32_t{U16()};
  }
  float F32() {
    const uint32_t bits = U32();
    float value;
    std::memcpy(&value, &bits, 4);
    return value;
  }
  template <size_t N>
  std::array<float, N> Array() {
    std::array<float, N> values;
    for (float& value : values) value = F32();
    return values;
  }
  std::string String() {
    const uint32_t length = U32();
    Expect(length % 4 == 0, "text length");
    std::string text;
    for (uint32_t i = 0; i < length; ++i) text += static_cast<char>(Byte());
    const size_t end = std::min(text.find('\0'), text.size());
    Expect(length - end < 4 && text.find_first_not_of('\0', end) == std::string::npos, "padding");
    return text.substr(0, end);
  }
  std::string PeekTag() const { return m_bytes.substr(m_at, 4); }
  std::string Tag() {
    std::string tag = PeekTag();
    m_at += 4;
    return tag;
  }
  size_t Open(const std::string& tag) {
    Expect(PeekTag() == tag, tag);
    m_at += 4;
    const uint32_t length = U32();
    return m_at + length;
  }
  size_t OpenVersion(const std::string& tag, uint32_t version) {
    const size_t end = Open(tag);
    Expect(U32() == version, tag + " version");
    return end;
  }
  void Close(size_t end) const { Expect(m_at == end, "chunk length"); }

  MeshChunk ReadChunk(uint32_t index) {
    MeshChunk chunk{};
    const size_t end = OpenVersion("CHNK", 100);
    Expect(U32() == index, "chunk index");
    ReadMaterial(chunk);
    ReadGeometry(chunk);
    Close(end);
    return chunk;
  }

  void ReadMaterial(MeshChunk& chunk) {
    const size_t end = OpenVersion("MATL", 103);
    chunk.materialName = String();
    for (uint32_t left = U32(); left > 0; --left) {
      std::string key = String();
      chunk.properties.emplace_back(std::move(key), String());
    }
    chunk.twoSided = U32();
    chunk.opacityBits = U32();
    chunk.colours = Array<12>();
    chunk.shininess = F32();
    for (uint32_t left = U32(); left > 0; --left) {
      const uint32_t channel = U32();
      std::string name = String();
      chunk.maps.push_back({channel, std::move(name), F32()});
    }
    Close(end);
  }

  void ReadGeometry(MeshChunk& chunk) {
    const size_t end = OpenVersion("GEOM", 201);
    chunk.word = U32();
    chunk.flags = U32();
    chunk.area = F32();
    const uint32_t vertexCount = U32();
    const uint32_t triangleCount = U32();
    Expect(U32() == 3 * triangleCount, "index count");
    Expect(U32() == triangleCount, "second triangle count");
    chunk.maxInfluences = U32();
    chunk.boneName = String();
    for (uint32_t i = 0; i < vertexCount; ++i) chunk.vertices.push_back(Array<5>());
    for (uint32_t i = 0; i < triangleCount; ++i) {
      auto& triangle = chunk.triangles.emplace_back();
      for (uint16_t& corner : triangle) corner = U16();
    }
    for (uint32_t i = 0; i < vertexCount; ++i) chunk.normals.push_back(Array<3>());
    for (uint32_t i = 0; i < triangleCount; ++i) chunk.faceNormals.push_back(Array<3>());
    for (uint32_t i = 0; i < (chunk.flags & 1 ? vertexCount : 0); ++i) {
      chunk.tangents.push_back(Array<3>());
    }
    Close(end);
  }

  void ReadBone(std::vector<Bone>& bones, int parent, bool withPose) {
    const size_t end = OpenVersion("BONE", 100);
    const int index = static_cast<int>(bones.size());
    bones.push_back({String(), parent, {}});
    if (withPose) bones.back().pose = Array<7>();
    for (uint32_t left = U32(); left > 0; --left) ReadBone(bones, index, withPose);
    Close(end);
  }

  Influence ReadInfluence() {
    Influence bone{};
    bone.name = String();
    bone.parentName = String();
    bone.position = Array<3>();
    bone.rotation = Array<9>();
    for (uint32_t matches = U32(); matches > 0; --matches) {
      Match& match = bone.matches.emplace_back();
      match.chunk = U32();
      for (uint32_t weights = U32(); weights > 0; --weights) {
        const auto vertex = static_cast<int32_t>(U32());
        const float weight = F32();
        match.weights.push_back({vertex, weight, Array<3>()});
      }
    }
    return bone;
  }

  const std::string& m_bytes;
  size_t m_at = 0;
};

inline MeshFile ParseMesh(const std::string& bytes) { return Parser(bytes).Mesh(); }
inline AnimationFile ParseAnimation(const std::string& bytes) { return Parser(bytes).Animation(); }

// The files as text, one field a line, for expectations that a person can read.
class Dump {
 public:
  template <typename... Values>
  void Line(const std::string& indent, const Values&... values) {
    m_out << indent;
    ((m_out << values << ' '), ...);
    m_out.seekp(-1, std::ios::cur);
    m_out << '\n';
  }
  template <typename Array>
  static std::string List(const Array& values) {
    std::ostringstream out;
    for (const auto& value : values) out << (out.tellp() > 0 ? " " : "") << value;
    return out.str();
  }
  std::string Text() const { return m_out.str(); }

 private:
  std::ostringstream m_out;
};

inline void DumpBones(Dump& dump, const std::vector<Bone>& bones, bool withPose) {
  for (const Bone& bone : bones) {
    dump.Line("", "bone", bone.name, "parent", bone.parent,
              withPose ? "pose " + Dump::List(bone.pose) : "");
  }
}

inline void DumpChunk(Dump& dump, const MeshChunk& chunk) {
  dump.Line("", "chunk", chunk.materialName);
  for (const auto& [key, value] : chunk.properties) dump.Line("  ", "property", key, value);
  dump.Line("  ", "two-sided", chunk.twoSided);
  dump.Line("  ", "colours", Dump::List(chunk.colours));
  dump.Line("  ", "shininess", chunk.shininess);
  for (const Map& map : chunk.maps) dump.Line("  ", "map", map.channel, map.name, map.amount);
  dump.Line("  ", "area", chunk.area);
  dump.Line("  ", "influences", chunk.maxInfluences);
  if (!chunk.boneName.empty()) dump.Line("  ", "bone", chunk.boneName);
  for (size_t i = 0; i < chunk.vertices.size(); ++i) {
    dump.Line("  ", "vertex", Dump::List(chunk.vertices[i]), "normal",
              Dump::List(chunk.normals[i]));
  }
  for (const auto& tangent : chunk.tangents) dump.Line("  ", "tangent", Dump::List(tangent));
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    dump.Line("  ", "triangle", Dump::List(chunk.triangles[i]), "normal",
              Dump::List(chunk.faceNormals[i]));
  }
}

inline std::string DumpOf(const MeshFile& file) {
  Dump dump;
  dump.Line("", "influences", file.maxInfluences, "bones", file.maxBones);
  dump.Line("", "box", Dump::List(file.minimum), "to", Dump::List(file.maximum));
  for (const MeshChunk& chunk : file.chunks) DumpChunk(dump, chunk);
  DumpBones(dump, file.bones, true);
  for (const Influence& bone : file.influences) {
    dump.Line("", "influence", bone.name, "parent", bone.parentName, "position",
              Dump::List(bone.position), "rotation", Dump::List(bone.rotation));
    for (const Match& match : bone.matches) {
      for (const Weight& weight : match.weights) {
        dump.Line("  ", "chunk", match.chunk, "vertex", weight.vertex, "weight", weight.weight,
                  "offset", Dump::List(weight.offset));
      }
    }
  }
  for (const Attachment& point : file.attachments) {
    dump.Line("", "attachment", point.name, "rotation", Dump::List(point.rotation), "position",
              Dump::List(point.position));
  }
  return dump.Text();
}

inline std::string DumpOf(const AnimationFile& file) {
  Dump dump;
  dump.Line("", "animation", file.name);
  dump.Line("", "frames", file.frameCount, "rate", file.frameRate);
  dump.Line("", "scale", file.masterScale);
  for (const Event& event : file.events)
    dump.Line("", "event", event.frame, event.type, event.name);
  DumpBones(dump, file.bones, false);
  for (size_t frame = 0; frame < file.frames.size(); ++frame) {
    for (size_t bone = 0; bone < file.bones.size(); ++bone) {
      dump.Line("", "frame", frame, file.bones[bone].name, Dump::List(file.frames[frame][bone]));
    }
  }
  return dump.Text();
}

}  // namespace independent
