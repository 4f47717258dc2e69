#include "convert/BoneRest.h"

#include <algorithm>
#include <cmath>

namespace orv::convert {

namespace {

// One vertex in both spaces, metres, z up.
struct Pair {
  Vec3 world, offset;
};

std::vector<Pair> PairsOf(const IndexedMesh& mesh, const std::vector<BoneEntry>& entries) {
  std::vector<Pair> pairs;
  for (const BoneEntry& entry : entries) {
    const auto& vertices = mesh.chunks[entry.chunk].vertices;
    for (const VertexWeight& weight : entry.bone->m_weights) {
      if (weight.vertex >= vertices.size()) continue;
      pairs.push_back({vertices[weight.vertex].Position(), weight.offset});
    }
  }
  return pairs;
}

// Three right-angled directions along the triangle a, b, c.
Matrix33 FrameOf(Vec3 a, Vec3 b, Vec3 c) {
  const Vec3 x = (b - a) * (1 / Length(b - a));
  const Vec3 normal = Cross(x, c - a);
  const Vec3 z = normal * (1 / Length(normal));
  return {x, Cross(z, x), z};
}

float DistanceFromLine(Vec3 p, Vec3 a, Vec3 direction) { return Length(Cross(p - a, direction)); }

template <typename Measure>
const Pair& FarthestBy(const std::vector<Pair>& pairs, Measure measure) {
  return *std::max_element(pairs.begin(), pairs.end(),
                           [&](const Pair& a, const Pair& b) { return measure(a) < measure(b); });
}

bool Agrees(const std::vector<Pair>& pairs, const Matrix33& rotation, Vec3 position,
            float tolerance) {
  return std::all_of(pairs.begin(), pairs.end(), [&](const Pair& pair) {
    return Length(pair.offset * rotation + position - pair.world) <= tolerance;
  });
}

}  // namespace

std::optional<Pose> RestFromVertices(const IndexedMesh& mesh,
                                     const std::vector<BoneEntry>& entries) {
  const std::vector<Pair> pairs = PairsOf(mesh, entries);
  if (pairs.size() < 3) return std::nullopt;
  const Pair& a = pairs.front();
  const Pair& b = FarthestBy(pairs, [&](const Pair& p) { return Length(p.world - a.world); });
  const float size = Length(b.world - a.world);
  const Vec3 line = (b.world - a.world) * (1 / size);
  const Pair& c =
      FarthestBy(pairs, [&](const Pair& p) { return DistanceFromLine(p.world, a.world, line); });
  if (!(size > 0) || !(DistanceFromLine(c.world, a.world, line) > 1e-3f * size)) {
    return std::nullopt;
  }
  const Matrix33 toFrame = Transpose(FrameOf(a.offset, b.offset, c.offset));
  Matrix33 world = FrameOf(a.world, b.world, c.world);
  for (int attempt = 0; attempt < 2; ++attempt) {
    const Matrix33 rotation = {toFrame[0] * world, toFrame[1] * world, toFrame[2] * world};
    const Vec3 position = a.world - a.offset * rotation;
    if (Agrees(pairs, rotation, position, 1e-3f * size)) return PoseFrom(position, rotation);
    world[2] = world[2] * -1;  // a mirrored bone
  }
  return std::nullopt;
}

}  // namespace orv::convert
