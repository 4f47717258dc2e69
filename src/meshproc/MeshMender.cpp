#include "meshproc/MeshMender.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <numeric>
#include <span>
#include <utility>

#include "meshproc/GrowthOrder.h"

namespace orv {

namespace {

using Vertex = MeshMender::Vertex;
using Settings = MeshMender::Settings;

// Without a guard: a zero vector becomes NaN.
Vec3 Unit(Vec3 v) { return v * (1 / Length(v)); }

// A triangle's share of a smoothed vector.
struct FaceVector {
  Vec3 vector;
  Vec3 unit;

  void Set(Vec3 v) {
    vector = v;
    unit = Unit(v);
  }
};

}  // namespace

struct MeshMender::Triangle {
  FaceVector normal, tangent, binormal;
};

class MeshMender::CanSmoothChecker {
 public:
  virtual ~CanSmoothChecker() = default;
  virtual bool CanSmooth(const Triangle& a, const Triangle& b, float minCosine) const = 0;

 protected:
  // Lengths that overflow leave zero vectors; those may be shared whatever the cosine. Vectors
  // without a length are NaN here and are never shared.
  static bool Within(const FaceVector& a, const FaceVector& b, float minCosine) {
    return Dot(a.unit, b.unit) >= minCosine || (a.unit == Vec3{} && b.unit == Vec3{});
  }
};

class MeshMender::CanSmoothNormalsChecker final : public CanSmoothChecker {
  bool CanSmooth(const Triangle& a, const Triangle& b, float minCosine) const override {
    return Within(a.normal, b.normal, minCosine);
  }
};

class MeshMender::CanSmoothTangentsChecker final : public CanSmoothChecker {
  bool CanSmooth(const Triangle& a, const Triangle& b, float minCosine) const override {
    return Within(a.tangent, b.tangent, minCosine);
  }
};

class MeshMender::CanSmoothBinormalsChecker final : public CanSmoothChecker {
  bool CanSmooth(const Triangle& a, const Triangle& b, float minCosine) const override {
    return Within(a.binormal, b.binormal, minCosine);
  }
};

namespace {

using Triangle = MeshMender::Triangle;

// Twice the area long; nearer to unit length the lower the area weight.
Vec3 FaceNormal(Vec3 e1, Vec3 e2, float areaWeight) {
  const Vec3 n = Cross(e1, e2);
  return areaWeight < 1 ? Unit(n) * (1 - areaWeight) + n * areaWeight : n;
}

Triangle BuildTriangle(std::span<const Vertex> vertices, std::span<const uint32_t, 3> indices,
                       const Settings& settings) {
  assert(std::ranges::all_of(indices, [&](uint32_t index) { return index < vertices.size(); }));
  const Vertex &v0 = vertices[indices[0]], &v1 = vertices[indices[1]], &v2 = vertices[indices[2]];
  const Vec3 e1 = v1.position - v0.position, e2 = v2.position - v0.position;
  const float ds1 = v1.s - v0.s, dt1 = v1.t - v0.t;
  const float ds2 = v2.s - v0.s, dt2 = v2.t - v0.t;
  const float det = ds1 * dt2 - ds2 * dt1;
  const float r = std::fabs(det) <= 0.0001 ? 1.0f : 1 / det;

  Triangle triangle;
  if (settings.computeNormals) triangle.normal.Set(FaceNormal(e1, e2, settings.areaWeight));
  triangle.tangent.Set((e1 * dt2 - e2 * dt1) * r);
  triangle.binormal.Set((e2 * ds1 - e1 * ds2) * r);
  return triangle;
}

std::vector<Triangle> BuildTriangles(std::span<const Vertex> vertices,
                                     std::span<const uint32_t> indices, const Settings& settings) {
  std::vector<Triangle> triangles;
  triangles.reserve(indices.size() / 3);
  for (size_t i = 0; i + 3 <= indices.size(); i += 3)
    triangles.push_back(BuildTriangle(vertices, indices.subspan(i).first<3>(), settings));
  return triangles;
}

// The distinct positions of a mesh, numbered in ascending order (x, then y, then z, compared
// exactly), and the list of the triangle corners at each. A position with a NaN equals none, not
// even itself, and has no number.
class PositionMap {
 public:
  static constexpr uint32_t kNowhere = 0xFFFFFFFF;

  PositionMap(std::span<const Vertex> vertices, std::span<const uint32_t> indices) {
    NumberPositions(vertices);
    ListCorners(indices);
  }

  uint32_t Count() const { return m_count; }
  uint32_t PositionOf(uint32_t vertex) const { return m_positionOf[vertex]; }
  // Ascending places in the indices.
  std::span<const uint32_t> CornersAt(uint32_t position) const {
    return std::span(m_corners).subspan(m_begins[position],
                                        m_begins[position + 1] - m_begins[position]);
  }

 private:
  void NumberPositions(std::span<const Vertex> vertices);
  void ListCorners(std::span<const uint32_t> indices);

  uint32_t m_count = 0;
  std::vector<uint32_t> m_positionOf;  // per vertex
  std::vector<uint32_t> m_begins;      // per position, into m_corners; one more at the end
  std::vector<uint32_t> m_corners;
};

// Compares as the number does; 0 and -0 are the same.
uint32_t OrderedBits(float number) {
  const uint32_t bits = std::bit_cast<uint32_t>(number + 0.0f);
  return bits & 0x80000000 ? ~bits : bits | 0x80000000;
}

void PositionMap::NumberPositions(std::span<const Vertex> vertices) {
  struct Placed {
    uint64_t xy;
    uint32_t z;
    uint32_t vertex;
    bool operator<(const Placed& other) const {
      return xy != other.xy ? xy < other.xy : z < other.z;
    }
  };
  std::vector<Placed> order;
  order.reserve(vertices.size());
  for (uint32_t i = 0; i < vertices.size(); ++i) {
    const Vec3 p = vertices[i].position;
    if (p != p) continue;
    order.push_back({uint64_t{OrderedBits(p.x)} << 32 | OrderedBits(p.y), OrderedBits(p.z), i});
  }
  std::sort(order.begin(), order.end());

  m_positionOf.assign(vertices.size(), kNowhere);
  for (size_t i = 0; i < order.size(); ++i) {
    if (i == 0 || order[i - 1] < order[i]) ++m_count;
    m_positionOf[order[i].vertex] = m_count - 1;
  }
}

void PositionMap::ListCorners(std::span<const uint32_t> indices) {
  m_begins.assign(m_count + 2, 0);
  for (const uint32_t vertex : indices)
    if (m_positionOf[vertex] != kNowhere) ++m_begins[m_positionOf[vertex] + 2];
  std::partial_sum(m_begins.begin(), m_begins.end(), m_begins.begin());

  // Filling moves each list's begin, kept one place too far, on to its end.
  m_corners.resize(m_begins.back());
  for (uint32_t i = 0; i < indices.size(); ++i)
    if (m_positionOf[indices[i]] != kNowhere)
      m_corners[m_begins[m_positionOf[indices[i]] + 1]++] = i;
  m_begins.pop_back();
}

// What one smoothing pass smooths.
struct Pass {
  const MeshMender::CanSmoothChecker& checker;
  float minCosine;
  FaceVector Triangle::*from;
  Vec3 Vertex::*to;
};

// Smooths position by position. A vertex that two groups reach is copied for the later one.
class Smoother {
 public:
  Smoother(std::vector<Vertex>& vertices, std::vector<uint32_t>& indices,
           std::vector<uint32_t>& newToOld, std::span<const Triangle> triangles,
           bool respectExistingSplits)
      : m_vertices(vertices),
        m_indices(indices),
        m_newToOld(newToOld),
        m_triangles(triangles),
        m_respectExistingSplits(respectExistingSplits),
        m_map(vertices, std::span(indices).first(3 * triangles.size())),
        m_claims(vertices.size()) {}

  void Smooth(std::span<const Pass> passes) {
    for (uint32_t position = 0; position < m_map.Count(); ++position)
      SmoothAt(m_map.CornersAt(position), passes);
  }

 private:
  struct Claim {
    uint32_t owner = 0;   // the last group that wrote to the vertex
    uint32_t copier = 0;  // the last group that had to copy it
    uint32_t copy = 0;    // that group's copy
  };

  void SmoothAt(std::span<const uint32_t> corners, std::span<const Pass> passes);
  void OrderGrowth(std::span<const uint32_t> corners);
  uint32_t NumberOf(uint32_t vertex, uint32_t unequal) const;
  void BuildGroups(const Pass& pass);
  uint32_t GroupToJoin(const GrowthOrder::Step& step, const Pass& pass) const;
  void SortStepsByGroup();
  void AssignVectors(Vec3 Vertex::*to);
  void Assign(uint32_t& vertex, uint32_t group, Vec3 vector, Vec3 Vertex::*to);
  uint32_t AppendCopy(uint32_t vertex, uint32_t group);

  std::vector<Vertex>& m_vertices;
  std::vector<uint32_t>& m_indices;
  std::vector<uint32_t>& m_newToOld;
  const std::span<const Triangle> m_triangles;
  const bool m_respectExistingSplits;
  const PositionMap m_map;  // as it was before any copy

  std::vector<Claim> m_claims;  // per vertex
  uint32_t m_firstGroup = 1;    // claims count the groups of all passes through

  // Of the position and the pass that are being worked on.
  std::vector<GrowthOrder::Item> m_items;
  GrowthOrder m_growth;
  std::vector<uint32_t> m_groupOf;  // per step of growth
  std::vector<Vec3> m_groupVectors;
  std::vector<uint32_t> m_byGroup;  // steps of growth
};

void Smoother::SmoothAt(std::span<const uint32_t> corners, std::span<const Pass> passes) {
  size_t knownVertices = 0;
  for (const Pass& pass : passes) {
    // Neighbours stay the same until corners move to a copy.
    if (knownVertices != m_vertices.size()) OrderGrowth(corners);
    knownVertices = m_vertices.size();
    BuildGroups(pass);
    SortStepsByGroup();
    AssignVectors(pass.to);
  }
}

void Smoother::OrderGrowth(std::span<const uint32_t> corners) {
  m_items.resize(corners.size());
  for (uint32_t i = 0; i < corners.size(); ++i) {
    const uint32_t corner = corners[i], triangle = corner / 3, place = corner % 3;
    const uint32_t* const indices = &m_indices[3 * triangle];
    const uint32_t next = indices[place == 2 ? 0 : place + 1];
    const uint32_t previous = indices[place == 0 ? 2 : place - 1];
    m_items[i] = {NumberOf(indices[place], 3 * i),
                  {NumberOf(next, 3 * i + 1), NumberOf(previous, 3 * i + 2)},
                  triangle,
                  corner};
  }
  m_growth.Build(m_items);
}

// Corners are the same when their vertices are, or their positions. A vertex that is nowhere gets a
// number of its own.
uint32_t Smoother::NumberOf(uint32_t vertex, uint32_t unequal) const {
  if (m_respectExistingSplits) return vertex;
  const uint32_t position = m_map.PositionOf(m_newToOld[vertex]);
  return position != PositionMap::kNowhere ? position : m_map.Count() + unequal;
}

// Fills the group of every step and the group vectors, which are summed in the order of growth.
void Smoother::BuildGroups(const Pass& pass) {
  const std::span<const GrowthOrder::Step> steps = m_growth.Steps();
  m_groupOf.resize(steps.size());
  m_groupVectors.clear();
  for (size_t i = 0; i < steps.size(); ++i) {
    const Vec3& vector = (m_triangles[steps[i].triangle].*pass.from).vector;
    const uint32_t group = GroupToJoin(steps[i], pass);
    if (group == m_groupVectors.size()) {
      m_groupVectors.push_back(vector);
    } else {
      m_groupVectors[group] = m_groupVectors[group] + vector;
    }
    m_groupOf[i] = group;
  }
  for (Vec3& vector : m_groupVectors) vector = Unit(vector);
}

// The second neighbour's group goes before the first's, even where that parts triangles that a
// path of allowed pairs connects. Without either, the group is a new one.
uint32_t Smoother::GroupToJoin(const GrowthOrder::Step& step, const Pass& pass) const {
  uint32_t group = static_cast<uint32_t>(m_groupVectors.size());
  for (uint32_t i = 0; i < step.earlierCount; ++i) {
    const Triangle& neighbour = m_triangles[m_growth.Steps()[step.earlier[i]].triangle];
    if (pass.checker.CanSmooth(m_triangles[step.triangle], neighbour, pass.minCosine))
      group = m_groupOf[step.earlier[i]];
  }
  return group;
}

void Smoother::SortStepsByGroup() {
  m_byGroup.resize(m_groupOf.size());
  std::iota(m_byGroup.begin(), m_byGroup.end(), 0u);
  if (m_groupVectors.size() == 1) return;
  std::sort(m_byGroup.begin(), m_byGroup.end(), [this](uint32_t a, uint32_t b) {
    return std::pair(m_groupOf[a], a) < std::pair(m_groupOf[b], b);
  });
}

void Smoother::AssignVectors(Vec3 Vertex::*to) {
  for (const uint32_t stepIndex : m_byGroup) {
    const GrowthOrder::Step& step = m_growth.Steps()[stepIndex];
    const uint32_t group = m_groupOf[stepIndex];
    size_t place = step.place;
    do {
      Assign(m_indices[m_items[place].corner], m_firstGroup + group, m_groupVectors[group], to);
      ++place;
    } while (place < m_items.size() && m_items[place].triangle == step.triangle);
  }
  m_firstGroup += static_cast<uint32_t>(m_groupVectors.size());
}

// The first group to reach a vertex has it; each later one moves its corners to one copy.
void Smoother::Assign(uint32_t& vertex, uint32_t group, Vec3 vector, Vec3 Vertex::*to) {
  Claim& claim = m_claims[vertex];
  if (claim.owner < m_firstGroup) {
    claim.owner = group;
    m_vertices[vertex].*to = vector;
  } else if (claim.owner != group) {
    vertex = claim.copier == group ? claim.copy : AppendCopy(vertex, group);
    m_vertices[vertex].*to = vector;
  }
}

uint32_t Smoother::AppendCopy(uint32_t vertex, uint32_t group) {
  const uint32_t copy = static_cast<uint32_t>(m_vertices.size());
  m_claims[vertex].copier = group;
  m_claims[vertex].copy = copy;
  m_claims.push_back({group});
  m_vertices.push_back(m_vertices[vertex]);
  m_newToOld.push_back(m_newToOld[vertex]);
  return copy;
}

// Left unnormalised. The components are compared with their signs.
void TangentsFromNormal(Vertex& vertex) {
  const Vec3 axis = vertex.normal.y > vertex.normal.x ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
  vertex.tangent = Cross(vertex.normal, axis);
  vertex.binormal = Cross(vertex.normal, vertex.tangent);
}

// The lengths are those of unit vectors: 1, NaN (which counts as long) or, after an overflow, 0.
void Orthonormalise(Vertex& vertex) {
  const Vec3 n = vertex.normal;
  const Vec3 t = vertex.tangent - n * Dot(n, vertex.tangent);
  const Vec3 b = vertex.binormal - n * Dot(n, vertex.binormal) - t * Dot(t, vertex.binormal);
  vertex.tangent = Unit(t);
  vertex.binormal = Unit(b);

  const float tangentLength = Length(vertex.tangent), binormalLength = Length(vertex.binormal);
  const bool tangentShort = 0.001 >= tangentLength, binormalShort = 0.001 >= binormalLength;
  if (!tangentShort && !binormalShort) {
    if (Dot(vertex.tangent, vertex.binormal) > 0.999) vertex.binormal = Cross(n, vertex.tangent);
  } else if (tangentLength > 0.5) {
    vertex.binormal = Cross(n, vertex.tangent);
  } else if (binormalLength > 0.5) {
    vertex.tangent = Cross(vertex.binormal, n);
  } else {
    TangentsFromNormal(vertex);
  }
}

}  // namespace

void MeshMender::Mend(std::vector<Vertex>& vertices, std::vector<uint32_t>& indices,
                      std::vector<uint32_t>& newToOld, const Settings& settings) {
  newToOld.resize(vertices.size());
  std::iota(newToOld.begin(), newToOld.end(), 0u);
  const std::vector<Triangle> triangles = BuildTriangles(vertices, indices, settings);

  const CanSmoothNormalsChecker normals;
  const CanSmoothTangentsChecker tangents;
  const CanSmoothBinormalsChecker binormals;
  const Pass passes[] = {
      {normals, settings.normalCreaseCosine, &Triangle::normal, &Vertex::normal},
      {tangents, settings.tangentCreaseCosine, &Triangle::tangent, &Vertex::tangent},
      {binormals, settings.binormalCreaseCosine, &Triangle::binormal, &Vertex::binormal},
  };
  Smoother(vertices, indices, newToOld, triangles, settings.respectExistingSplits)
      .Smooth(std::span(passes).subspan(settings.computeNormals ? 0 : 1));
  for (Vertex& vertex : vertices) Orthonormalise(vertex);
}

}  // namespace orv
