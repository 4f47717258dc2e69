#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <numbers>
#include <ostream>
#include <random>
#include <string>

#include "meshproc/MeshMender.h"

namespace orv {

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
};

Mesh Mended(Mesh mesh, const Settings& settings = {}) {
  MeshMender().Mend(mesh.vertices, mesh.indices, mesh.newToOld, settings);
  return mesh;
}

// In the plane z = 0, normal up.
Vertex Flat(float x, float y, float s, float t) { return {{x, y, 0}, s, t, {0, 0, 1}, {}, {}}; }

void ExpectNear(Vec3 actual, Vec3 expected, const std::string& what) {
  const bool near = std::isnan(expected.x)
                        ? std::isnan(actual.x) && std::isnan(actual.y) && std::isnan(actual.z)
                        : Length(actual - expected) <= 1e-6f;
  EXPECT_TRUE(near) << what << " is " << testing::PrintToString(actual) << ", expected "
                    << testing::PrintToString(expected);
}

Vec3 Unit(Vec3 v) { return v * (1 / Length(v)); }

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
  const auto vector = [&] {
    const float x = coordinate(), y = coordinate();
    return Vec3{x, y, coordinate()};
  };
  Mesh mesh;
  std::vector<Vec3> positions(3 + random() % 5);
  for (Vec3& position : positions) position = vector();
  mesh.vertices.resize(3 + random() % 12);
  for (Vertex& vertex : mesh.vertices) {
    vertex.position = positions[random() % positions.size()];
    vertex.s = coordinate();
    vertex.t = coordinate();
    vertex.normal = vector();
  }
  mesh.indices.resize(random() % 4 == 0 ? random() % 300 : random() % 40);
  for (uint32_t& index : mesh.indices) index = random() % mesh.vertices.size();
  return mesh;
}

// Of all that comes out; every NaN counts alike, and so does every zero.
uint64_t Digest(const Mesh& mesh) {
  uint64_t digest = 0xCBF29CE484222325u;
  const auto add = [&](uint32_t word) { digest = (digest ^ word) * 0x100000001B3u; };
  for (const uint32_t index : mesh.indices) add(index);
  for (const uint32_t old : mesh.newToOld) add(old);
  for (const Vertex& vertex : mesh.vertices) {
    for (const float number : std::bit_cast<std::array<float, 14>>(vertex)) {
      add(std::isnan(number) ? 0x7FC00000u : std::bit_cast<uint32_t>(number + 0.0f));
    }
  }
  return digest;
}

// As a plain procedure gave them, with an ordered map, recursion, and a search through the whole
// list for everything: by whether normals are computed and existing splits respected.
TEST(MeshMender, RandomMeshesComeOutAsEver) {
  constexpr float kCosines[] = {0, 0.7f, -1, 0.2f};
  constexpr uint64_t kDigests[] = {0x9948DA1D16D83E0A, 0x995D1E9BA8D51725, 0xF16ADA68E0F3A2F7,
                                   0x491F5B9884019BA0};
  for (uint32_t options = 0; options < 4; ++options) {
    uint64_t digest = 0;
    for (uint32_t seed = 0; seed < 2000; ++seed) {
      const Settings settings{kCosines[seed / 3 % 4], kCosines[seed % 4], kCosines[seed / 7 % 4],
                              0.5f * (seed % 3),      options % 2 == 1,   options / 2 == 1};
      digest = digest * 31 + Digest(Mended(RandomMesh(seed), settings));
    }
    EXPECT_EQ(digest, kDigests[options]) << "options " << options;
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
