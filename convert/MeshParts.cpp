#include "convert/MeshParts.h"

#include <algorithm>
#include <cmath>

#include "convert/Pose.h"

namespace orv::convert {

namespace {

bool IsFinite(Vec3 v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

bool IsUnit(Vec3 v) { return IsFinite(v) && std::abs(Length(v) - 1) <= 1e-3f; }

// The same direction at unit length, or nothing.
std::optional<Vec3> Unit(Vec3 v) {
  const float length = Length(v);
  if (!std::isfinite(length) || length < 1e-6f) return std::nullopt;
  return v * (1 / length);
}

void Append(std::vector<float>& values, Vec3 v) {
  const Vec3 turned = YUp(v);
  values.insert(values.end(), {turned.x, turned.y, turned.z});
}

// What a chunk has that glTF forbids is replaced on the way into the document.
class PrimitiveBuilder {
 public:
  PrimitiveBuilder(GlbDocument& document, const IndexedMesh::Chunk& chunk, size_t number,
                   Messages& messages)
      : m_document(document),
        m_chunk(chunk),
        m_messages(messages),
        m_place("chunk " + std::to_string(number)) {}

  std::optional<Json> Build(const ChunkWeights& weights) {
    const std::vector<uint32_t> indices = Indices();
    if (indices.empty()) {
      m_messages.mended.push_back(m_place + ": has no triangles, left out");
      return std::nullopt;
    }
    AddPositions();
    AddNormals();
    if (m_chunk.tangents.size() == Count()) AddTangents();
    AddTextureCoordinates();
    if (!weights.empty()) AddWeights(weights);
    // 65535 is not allowed as a short index.
    const size_t accessor = m_document.AddIndices(indices, Count() <= UINT16_MAX);
    return Json{{"attributes", m_attributes}, {"indices", accessor}};
  }

 private:
  size_t Count() const { return m_chunk.vertices.size(); }

  std::vector<uint32_t> Indices() {
    std::vector<uint32_t> indices;
    size_t dropped = 0;
    for (const Triangle& triangle : m_chunk.triangles) {
      const auto [a, b, c] = triangle;
      if (a == b || b == c || c == a) {
        ++dropped;
      } else {
        indices.insert(indices.end(), {a, b, c});
      }
    }
    m_messages.Mended(m_place, dropped, "triangles with a vertex twice left out");
    return indices;
  }

  void AddAttribute(const char* name, std::span<const float> values, const char* type,
                    bool withBounds = false) {
    m_attributes[name] = m_document.AddFloats(values, Count(), type, Use::Vertices, withBounds);
  }

  void AddPositions() {
    std::vector<float> values;
    size_t mended = 0;
    for (const IndexedVertex& vertex : m_chunk.vertices) {
      const bool isGood = IsFinite(vertex.Position());
      if (!isGood) ++mended;
      Append(values, isGood ? vertex.Position() : Vec3{});
    }
    m_messages.Mended(m_place, mended, "positions that are not finite put at the origin");
    AddAttribute("POSITION", values, "VEC3", true);
  }

  // Of the first triangle that has the vertex; upwards without one.
  std::vector<Vec3> NormalsOfFaces() const {
    std::vector<Vec3> normals(Count(), Vec3{0, 0, 1});
    for (size_t i = m_chunk.triangles.size(); i-- > 0;) {
      const Triangle& corners = m_chunk.triangles[i];
      const Vec3 p = m_chunk.vertices[corners[0]].Position();
      const auto normal = Unit(Cross(m_chunk.vertices[corners[1]].Position() - p,
                                     m_chunk.vertices[corners[2]].Position() - p));
      if (!normal) continue;
      for (const uint16_t corner : corners) normals[corner] = *normal;
    }
    return normals;
  }

  void AddNormals() {
    m_normals = m_chunk.normals;
    m_normals.resize(Count());
    std::vector<Vec3> ofFaces;
    size_t mended = 0;
    for (size_t i = 0; i < Count(); ++i) {
      if (IsUnit(m_normals[i])) continue;
      ++mended;
      if (ofFaces.empty()) ofFaces = NormalsOfFaces();
      m_normals[i] = Unit(m_normals[i]).value_or(ofFaces[i]);
    }
    m_messages.Mended(m_place, mended, "normals that were not of unit length made so");
    std::vector<float> values;
    for (const Vec3 normal : m_normals) Append(values, normal);
    AddAttribute("NORMAL", values, "VEC3");
  }

  void AddTangents() {
    std::vector<float> values;
    size_t mended = 0;
    for (size_t i = 0; i < Count(); ++i) {
      Vec3 tangent = m_chunk.tangents[i];
      if (!IsUnit(tangent)) {
        ++mended;
        const Vec3 n = m_normals[i];
        const Vec3 across = Cross(n, std::abs(n.x) < 0.9f ? Vec3{1, 0, 0} : Vec3{0, 1, 0});
        tangent = Unit(tangent).value_or(Unit(across).value_or(Vec3{1, 0, 0}));
      }
      Append(values, tangent);
      values.push_back(1);
    }
    m_messages.Mended(m_place, mended, "tangents that were not of unit length made so");
    AddAttribute("TANGENT", values, "VEC4");
  }

  void AddTextureCoordinates() {
    std::vector<float> values;
    size_t mended = 0;
    for (const IndexedVertex& vertex : m_chunk.vertices) {
      const bool isGood = std::isfinite(vertex.u) && std::isfinite(vertex.v);
      if (!isGood) ++mended;
      values.insert(values.end(), {isGood ? vertex.u : 0, isGood ? vertex.v : 0});
    }
    m_messages.Mended(m_place, mended, "texture coordinates that are not finite put at 0");
    AddAttribute("TEXCOORD_0", values, "VEC2");
  }

  void AddWeights(const ChunkWeights& weights) {
    size_t most = 0;
    for (const auto& entries : weights) most = std::max(most, entries.size());
    for (size_t first = 0; first < most; first += kJointsPerSet) {
      std::vector<uint16_t> joints;
      std::vector<float> values;
      for (const auto& entries : weights) {
        for (size_t i = first; i < first + kJointsPerSet; ++i) {
          const JointWeight entry = i < entries.size() ? entries[i] : JointWeight{};
          joints.push_back(entry.joint);
          values.push_back(entry.weight);
        }
      }
      const std::string set = std::to_string(first / kJointsPerSet);
      m_attributes["JOINTS_" + set] = m_document.AddShorts(joints, Count(), "VEC4", Use::Vertices);
      AddAttribute(("WEIGHTS_" + set).c_str(), values, "VEC4");
    }
  }

  GlbDocument& m_document;
  const IndexedMesh::Chunk& m_chunk;
  Messages& m_messages;
  std::string m_place;
  std::vector<Vec3> m_normals;  // as mended; z up
  Json m_attributes;
};

}  // namespace

std::optional<Json> AddPrimitive(GlbDocument& document, const IndexedMesh::Chunk& chunk,
                                 size_t number, const ChunkWeights& weights, Messages& messages) {
  return PrimitiveBuilder(document, chunk, number, messages).Build(weights);
}

}  // namespace orv::convert
