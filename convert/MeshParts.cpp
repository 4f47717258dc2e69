#include "convert/Parts.h"

#include <algorithm>
#include <cmath>

#include "platform/ExString.h"

namespace orv::convert {

namespace {

constexpr size_t kJointsPerSet = 4;
constexpr size_t kMostJoints = 16;  // of a vertex: four sets

// How many were found, for one message each.
struct Faults {
  size_t off = 0, bad = 0, twice = 0, unequal = 0, tooMany = 0, still = 0;
};

void Tell(const Faults& faults, size_t chunk, Messages& messages) {
  const std::string place = "chunk " + std::to_string(chunk);
  messages.Mended(place, faults.off, "weights of vertices that it lacks left out");
  messages.Mended(place, faults.bad, "weights below 0 or not finite left out");
  messages.Mended(place, faults.twice, "vertices follow a bone twice, weights added up");
  messages.Mended(place, faults.tooMany, "vertices follow more than 16 bones, the strongest kept");
  messages.Mended(place, faults.unequal, "vertices with weights that do not sum to 1, scaled");
  messages.Mended(place, faults.still, "vertices follow no bone, bound to one that stands still");
}

// Adds up what one joint has twice. Returns whether there was such a joint.
bool MergeJoints(std::vector<JointWeight>& weights) {
  std::stable_sort(weights.begin(), weights.end(),
                   [](const auto& a, const auto& b) { return a.joint < b.joint; });
  size_t kept = 0;
  for (size_t i = 0; i < weights.size(); ++i) {
    if (kept > 0 && weights[kept - 1].joint == weights[i].joint) {
      weights[kept - 1].weight += weights[i].weight;
    } else {
      weights[kept++] = weights[i];
    }
  }
  const bool merged = kept < weights.size();
  weights.resize(kept);
  return merged;
}

void Normalise(std::vector<JointWeight>& weights, Faults& faults) {
  std::stable_sort(weights.begin(), weights.end(),
                   [](const auto& a, const auto& b) { return a.weight > b.weight; });
  double all = 0, sum = 0;
  for (const JointWeight& entry : weights) all += entry.weight;
  if (std::abs(all - 1) > 1e-4) ++faults.unequal;
  if (weights.size() > kMostJoints) {
    ++faults.tooMany;
    weights.resize(kMostJoints);
  }
  for (const JointWeight& entry : weights) sum += entry.weight;
  for (JointWeight& entry : weights) entry.weight = static_cast<float>(entry.weight / sum);
}

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

  std::optional<Json> Build(const VertexJoints& joints) {
    const std::vector<uint32_t> indices = Indices();
    if (indices.empty()) {
      m_messages.mended.push_back(m_place + ": has no triangles, left out");
      return std::nullopt;
    }
    AddPositions();
    AddNormals();
    if (m_chunk.tangents.size() == Count()) AddTangents();
    AddTextureCoordinates();
    if (!joints.empty()) AddJoints(joints);
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

  void AddJoints(const VertexJoints& jointsOfVertex) {
    size_t most = 0;
    for (const auto& entries : jointsOfVertex) most = std::max(most, entries.size());
    for (size_t first = 0; first < most; first += kJointsPerSet) {
      std::vector<uint16_t> joints;
      std::vector<float> weights;
      for (const auto& entries : jointsOfVertex) {
        for (size_t i = first; i < first + kJointsPerSet; ++i) {
          const JointWeight entry = i < entries.size() ? entries[i] : JointWeight{};
          joints.push_back(entry.joint);
          weights.push_back(entry.weight);
        }
      }
      const std::string set = std::to_string(first / kJointsPerSet);
      m_attributes["JOINTS_" + set] = m_document.AddShorts(joints, Count(), "VEC4", Use::Vertices);
      AddAttribute(("WEIGHTS_" + set).c_str(), weights, "VEC4");
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

VertexJoints SkinWeights::Of(const IndexedMesh& mesh, size_t chunk, Messages& messages) {
  Faults faults;
  VertexJoints weights(mesh.chunks[chunk].vertices.size());
  bool any = false;
  for (const auto& bone : mesh.influences[chunk]->m_bones) {
    const auto joint = static_cast<uint16_t>(m_joints.at(LowerCase(bone->m_name)));
    for (const VertexWeight& entry : bone->m_weights) {
      const bool isOn = entry.vertex < weights.size();
      const bool isGood = std::isfinite(entry.weight) && entry.weight >= 0;
      if (!isOn) ++faults.off;
      if (isOn && !isGood) ++faults.bad;
      if (!isOn || !isGood || entry.weight < 1e-12f) continue;
      weights[entry.vertex].push_back({joint, entry.weight});
      any = true;
    }
  }
  if (!any) weights.clear();
  for (std::vector<JointWeight>& entries : weights) {
    if (entries.empty()) {
      ++faults.still;
      m_needsStillJoint = true;
      entries.push_back({m_stillJoint, 1});
      continue;
    }
    if (MergeJoints(entries)) ++faults.twice;
    Normalise(entries, faults);
  }
  Tell(faults, chunk, messages);
  return weights;
}

std::optional<Json> AddPrimitive(GlbDocument& document, const IndexedMesh::Chunk& chunk,
                                 size_t number, const VertexJoints& joints, Messages& messages) {
  return PrimitiveBuilder(document, chunk, number, messages).Build(joints);
}

}  // namespace orv::convert
