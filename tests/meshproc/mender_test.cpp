#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>
#include <ostream>
#include <random>
#include <string>

#include "meshproc/MeshMender.h"

namespace orv {

// Equal, or both NaN: results without a direction are compared too.
static bool Same(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }

static bool operator==(const MeshMender::Vertex& a, const MeshMender::Vertex& b) {
  using Floats = std::array<float, 14>;
  return std::ranges::equal(std::bit_cast<Floats>(a), std::bit_cast<Floats>(b), Same);
}

static void PrintTo(Vec3 v, std::ostream* out) {
  *out << "(" << v.x << ", " << v.y << ", " << v.z << ")";
}

namespace {

using Vertex = MeshMender::Vertex;
using Settings = MeshMender::Settings;
using Indices = std::vector<uint32_t>;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

struct Mesh {
  std::vector<Vertex> vertices;
  Indices indices;
  Indices newToOld{};
  bool operator==(const Mesh&) const = default;
};

Mesh Mended(Mesh mesh, const Settings& settings = {}) {
  MeshMender().Mend(mesh.vertices, mesh.indices, mesh.newToOld, settings);
  return mesh;
}

// In the plane z = 0, normal up.
Vertex Flat(float x, float y, float s, float t) { return {{x, y, 0}, s, t, {0, 0, 1}, {}, {}}; }

void ExpectNear(Vec3 actual, Vec3 expected, const std::string& what, float tolerance = 1e-6f) {
  const bool near = std::isnan(expected.x)
                        ? std::isnan(actual.x) && std::isnan(actual.y) && std::isnan(actual.z)
                        : Length(actual - expected) <= tolerance;
  EXPECT_TRUE(near) << what << " is " << testing::PrintToString(actual) << ", expected "
                    << testing::PrintToString(expected);
}

Vec3 Unit(Vec3 v) { return v * (1 / Length(v)); }

// The same procedure in its plainest form: an ordered map, recursion, and a search through the
// whole list for everything.
class PlainMender {
 public:
  PlainMender(Mesh& mesh, const Settings& settings) : m_mesh(mesh), m_settings(settings) {}

  void Mend() {
    for (uint32_t i = 0; i < m_mesh.vertices.size(); ++i) m_mesh.newToOld.push_back(i);
    for (size_t i = 0; i + 3 <= m_mesh.indices.size(); i += 3) AddTriangle(&m_mesh.indices[i]);
    for (const auto& entry : m_map) {
      const auto smooth = [&](Vec3 Record::*from, Vec3 Vertex::*to, float cosine) {
        BuildGroups(entry.second, from, cosine);
        AssignGroups(entry.first, from, to);
      };
      if (m_settings.computeNormals)
        smooth(&Record::normal, &Vertex::normal, m_settings.normalCreaseCosine);
      smooth(&Record::tangent, &Vertex::tangent, m_settings.tangentCreaseCosine);
      smooth(&Record::binormal, &Vertex::binormal, m_settings.binormalCreaseCosine);
    }
    for (size_t i = 0; i < m_triangles.size(); ++i)
      std::copy(m_triangles[i].v, m_triangles[i].v + 3, &m_mesh.indices[3 * i]);
    m_mesh.vertices = Mended({m_mesh.vertices, {}}).vertices;  // only orthonormalises
  }

 private:
  static constexpr size_t kNoGroup = ~size_t{0};

  struct Record {
    uint32_t v[3];
    Vec3 normal, tangent, binormal;
    bool handled = false;
    size_t group = kNoGroup;
  };

  struct Less {
    bool operator()(Vec3 a, Vec3 b) const {
      return a.x != b.x ? a.x < b.x : a.y != b.y ? a.y < b.y : a.z < b.z;
    }
  };

  Vec3 Position(uint32_t vertex) const { return m_mesh.vertices[vertex].position; }

  void AddTriangle(const uint32_t* v) {
    const Vertex &a = m_mesh.vertices[v[0]], &b = m_mesh.vertices[v[1]], &c = m_mesh.vertices[v[2]];
    const Vec3 e1 = b.position - a.position, e2 = c.position - a.position;
    const float ds1 = b.s - a.s, dt1 = b.t - a.t, ds2 = c.s - a.s, dt2 = c.t - a.t;
    const float det = ds1 * dt2 - ds2 * dt1, w = m_settings.areaWeight;
    const float r = std::fabs(det) <= 0.0001f ? 1 : 1 / det;
    Vec3 normal = Cross(e1, e2);
    if (w < 1) normal = Unit(normal) * (1 - w) + normal * w;
    m_triangles.push_back(
        {{v[0], v[1], v[2]}, normal, (e1 * dt2 - e2 * dt1) * r, (e2 * ds1 - e1 * ds2) * r});
    for (int i = 0; i < 3; ++i)
      if (Position(v[i]) == Position(v[i])) m_map[Position(v[i])].push_back(m_triangles.size() - 1);
  }

  bool ShareEdge(const Record& a, const Record& b) const {
    const auto equal = [&](uint32_t p, uint32_t q) {
      return m_settings.respectExistingSplits ? p == q : Position(p) == Position(q);
    };
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        const uint32_t a0 = a.v[i], a1 = a.v[(i + 1) % 3], b0 = b.v[j], b1 = b.v[(j + 1) % 3];
        if ((equal(a0, b0) && equal(a1, b1)) || (equal(a0, b1) && equal(a1, b0))) return true;
      }
    }
    return false;
  }

  static bool CanSmooth(Vec3 a, Vec3 b, float cosine) {
    a = Unit(a), b = Unit(b);
    return Dot(a, b) >= cosine || (a == Vec3{} && b == Vec3{});
  }

  void BuildGroups(const std::vector<size_t>& list, Vec3 Record::*from, float cosine) {
    m_groups.clear();
    for (const size_t i : list) m_triangles[i].handled = false, m_triangles[i].group = kNoGroup;
    for (const size_t i : list) Grow(i, list, from, cosine);
  }

  void Grow(size_t index, const std::vector<size_t>& list, Vec3 Record::*from, float cosine) {
    Record& triangle = m_triangles[index];
    if (triangle.handled) return;
    std::vector<size_t> neighbours;
    for (const size_t other : list)
      if (other != index && neighbours.size() < 2 && ShareEdge(triangle, m_triangles[other]))
        neighbours.push_back(other);
    for (const size_t other : neighbours)
      if (m_triangles[other].group != kNoGroup &&
          CanSmooth(triangle.*from, m_triangles[other].*from, cosine))
        triangle.group = m_triangles[other].group;
    if (triangle.group == kNoGroup) {
      triangle.group = m_groups.size();
      m_groups.emplace_back();
    }
    m_groups[triangle.group].push_back(index);
    triangle.handled = true;
    for (const size_t other : neighbours) Grow(other, list, from, cosine);
  }

  void AssignGroups(Vec3 position, Vec3 Record::*from, Vec3 Vertex::*to) {
    std::map<uint32_t, size_t> groupOf;  // of each vertex that was reached
    for (size_t group = 0; group < m_groups.size(); ++group) {
      Vec3 sum;
      for (const size_t i : m_groups[group]) sum = sum + m_triangles[i].*from;
      for (const size_t i : m_groups[group]) {
        for (const uint32_t& corner : m_triangles[i].v) {
          if (Position(corner) != position) continue;
          if (groupOf.insert({corner, group}).first->second != group)
            groupOf[MoveToCopy(group, corner)] = group;
          m_mesh.vertices[corner].*to = Unit(sum);
        }
      }
    }
  }

  uint32_t MoveToCopy(size_t group, uint32_t vertex) {
    const uint32_t copy = static_cast<uint32_t>(m_mesh.vertices.size());
    m_mesh.vertices.push_back(Vertex(m_mesh.vertices[vertex]));
    m_mesh.newToOld.push_back(m_mesh.newToOld[vertex]);
    for (const size_t i : m_groups[group])
      std::replace(m_triangles[i].v, m_triangles[i].v + 3, vertex, copy);
    return copy;
  }

  Mesh& m_mesh;
  const Settings& m_settings;
  std::vector<Record> m_triangles;
  std::map<Vec3, std::vector<size_t>, Less> m_map;
  std::vector<std::vector<size_t>> m_groups;
};

// Few positions and vertices, so that triangles share, repeat and collapse, and lists grow long.
Mesh RandomMesh(uint32_t seed) {
  std::mt19937 random(seed);
  const auto oneOf = [&](std::initializer_list<float> values) {
    return values.begin()[random() % values.size()];
  };
  const bool hostile = seed % 4 == 0;
  const auto coordinate = [&] {
    return hostile && random() % 8 == 0 ? oneOf({kNan, 1e25f, 1e-30f, INFINITY})
                                        : oneOf({-1, -0.0f, 0, 0.5f, 1, 2});
  };
  Mesh mesh;
  const uint32_t positionCount = 3 + random() % 5, vertexCount = 3 + random() % 12;
  std::vector<Vec3> positions;
  for (uint32_t i = 0; i < positionCount; ++i)
    positions.push_back({coordinate(), coordinate(), coordinate()});
  for (uint32_t i = 0; i < vertexCount; ++i) {
    const Vec3 normal{coordinate(), coordinate(), coordinate()};
    mesh.vertices.push_back(
        {positions[random() % positionCount], coordinate(), coordinate(), normal, {}, {}});
  }
  const uint32_t indexCount = random() % 4 == 0 ? random() % 300 : random() % 40;
  for (uint32_t i = 0; i < indexCount; ++i) mesh.indices.push_back(random() % vertexCount);
  return mesh;
}

TEST(MeshMender, DoesWhatThePlainProcedureDoes) {
  constexpr float kCosines[] = {0, 0.7f, -1, 0.2f};
  size_t copies = 0;
  for (uint32_t seed = 0; seed < 2000 && !HasFailure(); ++seed) {
    for (uint32_t options = 0; options < 4; ++options) {
      const Settings settings{kCosines[seed / 3 % 4], kCosines[seed % 4], kCosines[seed / 7 % 4],
                              0.5f * (seed % 3),      options % 2 == 1,   options / 2 == 1};
      Mesh expected = RandomMesh(seed);
      const Mesh actual = Mended(expected, settings);
      PlainMender(expected, settings).Mend();
      EXPECT_EQ(actual.indices, expected.indices) << "seed " << seed;
      EXPECT_EQ(actual.newToOld, expected.newToOld) << "seed " << seed;
      EXPECT_EQ(actual.vertices, expected.vertices) << "seed " << seed;
      copies += actual.vertices.size() - RandomMesh(seed).vertices.size();
    }
  }
  EXPECT_GT(copies, 5000u);
}

TEST(MeshMender, OrthonormalisesWithoutGuards) {
  const Vec3 x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, nan{kNan}, zero{};
  const float huge = 1e30f;  // its square overflows, so unit length comes out as zero
  struct Case {
    Vec3 normal, tangent, binormal, expectedTangent, expectedBinormal;
  };
  const Case cases[] = {
      {z, x + z, y * 2 + x, x, y},               // plain
      {z, x * 0.5f, x, x, y},                    // parallel: binormal from the others
      {z, x * 2, x, x, x * -1},                  // turned over by the long tangent: stays
      {z, zero, y, nan, y},                      // no direction counts as long
      {z, x, zero, x, nan},                      //
      {z, x * huge, y, x, y},                    // too short: from the other
      {z, x, y * huge, x, y},                    //
      {z, x * huge, y * huge, x * -1, y * -1},   // both: from the normal
      {y, x * huge, z * huge, z * -1, x * -1},   //
      {y * -2, x * huge, z * huge, zero, zero},  // along the axis that is chosen
  };
  for (const Case& c : cases) {
    const Mesh mesh = Mended({{{{}, 0, 0, c.normal, c.tangent, c.binormal}}, {}});
    const std::string what = "of case " + std::to_string(&c - cases);
    ExpectNear(mesh.vertices[0].tangent, c.expectedTangent, "tangent " + what);
    ExpectNear(mesh.vertices[0].binormal, c.expectedBinormal, "binormal " + what);
  }
}

// One triangle or two beside each other, in the plane, with their texture coordinates.
TEST(MeshMender, FollowsTheTextureByHand) {
  const Vertex a = Flat(0, 0, 0, 0), b = Flat(1, 0, 1, 0), c = Flat(1, 1, 1, 1);
  const auto fourth = [](float s, float t) { return Flat(0, 1, s, t); };
  struct Case {
    const char* what;
    std::vector<Vertex> vertices;
    Indices indices;
    std::vector<Vec3> tangents;  // of the output vertices
    Indices newToOld;
  };
  const Vec3 x{1, 0, 0}, y{0, 1, 0}, left{-1, 0, 0}, nan{kNan};
  const Case cases[] = {
      {"one sheet", {a, b, c, fourth(0, 1)}, {0, 1, 2, 0, 2, 3}, {x, x, x, x}, {0, 1, 2, 3}},
      {"mirrored across the diagonal: its two vertices are there twice",
       {a, b, c, fourth(2, 1)},
       {0, 1, 2, 0, 2, 3},
       {x, x, x, left, left, left},
       {0, 1, 2, 3, 0, 2}},
      {"a seam: own vertices, turned texture, nothing shared",
       {a, b, c, Flat(0, 0, 0, 0), Flat(1, 1, 1, -1), Flat(0, 1, 1, 0)},
       {0, 1, 2, 3, 4, 5},
       {x, x, x, y, y, y},
       {0, 1, 2, 3, 4, 5}},
      {"a degenerate texture triangle: its unscaled vectors count",
       {a, Flat(1, 0, 0, 1), Flat(1, 1, 0, 3)},
       {0, 1, 2},
       {Unit({2, -1, 0}), Unit({2, -1, 0}), Unit({2, -1, 0})},
       {0, 1, 2}},
      {"no texture at all",
       {a, Flat(1, 0, 0, 0), Flat(1, 1, 0, 0)},
       {0, 1, 2},
       {nan, nan, nan},
       {0, 1, 2}},
      {"not a number", {a, b, Flat(1, 1, 1, kNan)}, {0, 1, 2}, {nan, nan, nan}, {0, 1, 2}},
  };
  for (const Case& test : cases) {
    const Mesh mended = Mended({test.vertices, test.indices});
    EXPECT_EQ(mended.newToOld, test.newToOld) << test.what;
    ASSERT_EQ(mended.vertices.size(), test.tangents.size()) << test.what;
    for (size_t i = 0; i < test.tangents.size(); ++i) {
      ExpectNear(mended.vertices[i].tangent, test.tangents[i],
                 std::string(test.what) + ", vertex " + std::to_string(i));
    }
  }
}

// A globe of one sheet, each pole a vertex for each of its triangles: tangents run east, there
// across the triangle. The columns at the seam see one side only.
TEST(MeshMender, SphereHasItsAnalyticTangents) {
  constexpr uint32_t kRings = 64, kSegments = 128;
  const auto turnOf = [](double segment) { return 2 * std::numbers::pi * segment / kSegments; };
  Mesh mesh;
  for (uint32_t ring = 0; ring <= kRings; ++ring) {
    for (uint32_t segment = 0; segment <= kSegments; ++segment) {
      const double height = std::numbers::pi * ring / kRings, turn = turnOf(segment);
      const double radius = ring % kRings == 0 ? 0 : std::sin(height);
      const Vec3 point{static_cast<float>(radius * std::cos(turn)),
                       static_cast<float>(radius * std::sin(turn)),
                       static_cast<float>(std::cos(height))};
      mesh.vertices.push_back({point,
                               4 * static_cast<float>(segment) / kSegments,
                               4 * static_cast<float>(ring) / kRings,
                               point,
                               {},
                               {}});
      if (ring == kRings || segment == kSegments) continue;
      const uint32_t v = ring * (kSegments + 1) + segment, below = v + kSegments + 1;
      if (ring + 1 < kRings) mesh.indices.insert(mesh.indices.end(), {v, below, below + 1});
      if (ring > 0) mesh.indices.insert(mesh.indices.end(), {v, below + 1, v + 1});
    }
  }
  const Mesh mended = Mended(mesh);
  EXPECT_EQ(mended.vertices.size(), mesh.vertices.size());
  for (uint32_t ring = 0; ring < kRings; ++ring) {
    // The circles round a pole are coarse, and the triangles at a vertex lie to one side.
    const float tolerance =
        0.015f / static_cast<float>(std::max(1u, std::min(ring, kRings - ring)));
    for (uint32_t segment = 1; segment < kSegments; ++segment) {
      const double turn = turnOf(ring == 0 ? segment + 0.5 : segment);
      const Vec3 east{static_cast<float>(-std::sin(turn)), static_cast<float>(std::cos(turn)), 0};
      ExpectNear(mended.vertices[ring * (kSegments + 1) + segment].tangent, east,
                 "ring " + std::to_string(ring), tolerance);
    }
  }
}

// Ends in good time, and without running out of stack.
TEST(MeshMender, ManyTrianglesRoundOneVertex) {
  constexpr uint32_t kCount = 100000;
  Mesh mesh{{Flat(0, 0, 0, 0)}, {}};
  for (uint32_t i = 0; i < kCount; ++i) {
    const double a = 2 * std::numbers::pi * i / kCount;
    const float x = static_cast<float>(std::cos(a)), y = static_cast<float>(std::sin(a));
    mesh.vertices.push_back(Flat(x, y, x, y));
    mesh.indices.insert(mesh.indices.end(), {0, 1 + i, 1 + (i + 1) % kCount});
  }
  const Mesh mended = Mended(mesh);
  EXPECT_EQ(mended.indices, mesh.indices);
  ExpectNear(mended.vertices[0].tangent, {1, 0, 0}, "centre");
}

}  // namespace
}  // namespace orv
