#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "e2e/Orv.h"
#include "motion/SceneMotion.h"

namespace orv {

inline const std::vector<std::string> kWithJoints = {"--joints-as-bones", "--default-material",
                                                     "plain.m.notex"};

inline std::string ExampleFile(const std::string& name) { return ORV_EXAMPLES "/" + name; }

// A vertex of an .im file with everything that its bones hold about it.
struct ExportedVertex {
  struct Pull {
    std::string bone;
    size_t ordinal;  // which one of the chunk's bones of this name, they need not be one
    double weight;
    Point offset;
  };
  size_t chunk;
  Point position;
  std::vector<Pull> pulls;
};

// An .im file's skin on a .kin file's bones, all in metres.
class ExportedSkin {
 public:
  ExportedSkin(const SceneMotion& scene, const independent::MeshFile& mesh,
               independent::AnimationFile animation)
      : m_animation(std::move(animation)) {
    std::vector<size_t> firsts;
    for (size_t chunk = 0; chunk < mesh.chunks.size(); ++chunk) {
      firsts.push_back(m_vertices.size());
      for (const auto& v : mesh.chunks[chunk].vertices) {
        m_vertices.push_back({chunk, Point(v[0], v[1], v[2]), {}});
      }
    }
    for (const independent::Influence& bone : mesh.influences) {
      std::map<uint32_t, size_t> ordinals;
      for (const independent::Match& match : bone.matches) {
        const size_t ordinal = ordinals[match.chunk]++;
        for (const independent::Weight& entry : match.weights) {
          const auto [x, y, z] = entry.offset;
          m_vertices.at(firsts.at(match.chunk) + static_cast<size_t>(entry.vertex))
              .pulls.push_back(
                  {scene.NodeNameOf(bone.name), ordinal, entry.weight, Point(x, y, z)});
        }
      }
    }
    for (size_t bone = 0; bone < m_animation.bones.size(); ++bone) {
      m_bones[scene.NodeNameOf(m_animation.bones[bone].name)] = bone;
    }
    for (const auto& poses : m_animation.frames) {
      std::vector<Matrix>& frame = m_frames.emplace_back();
      for (auto pose : poses) {
        for (size_t i = 0; i < 3; ++i) pose[i] *= m_animation.masterScale;
        frame.push_back(MatrixOf(pose));
      }
    }
  }

  const std::vector<ExportedVertex>& Vertices() const { return m_vertices; }
  size_t FrameCount() const { return m_frames.size(); }
  uint32_t FrameRate() const { return m_animation.frameRate; }
  WorldMatrices Metres(WorldMatrices world) const {
    return Scaled(std::move(world), m_animation.masterScale);
  }
  std::vector<std::string> BoneNames() const {
    std::vector<std::string> names;
    for (const auto& [name, bone] : m_bones) names.push_back(name);
    return names;
  }

  Point Placed(const ExportedVertex::Pull& pull, size_t frame) const {
    return m_frames[frame][m_bones.at(pull.bone)] * pull.offset;
  }
  // Where an engine shows a vertex.
  Point Placed(const ExportedVertex& vertex, size_t frame) const {
    Point sum;
    for (const ExportedVertex::Pull& pull : vertex.pulls) sum += Placed(pull, frame) * pull.weight;
    return sum;
  }

 private:
  independent::AnimationFile m_animation;
  std::vector<ExportedVertex> m_vertices;
  std::map<std::string, size_t> m_bones;
  std::vector<std::vector<Matrix>> m_frames;
};

// Finds vertices by where they are posed.
class PlaceIndex {
 public:
  PlaceIndex(const std::vector<SourceVertex>& vertices, const WorldMatrices& world) {
    for (const SourceVertex& vertex : vertices) {
      m_byX.emplace(Posed(vertex, world).x, m_places.size());
      m_places.push_back(Posed(vertex, world));
    }
  }

  // The nearest ones first.
  std::vector<size_t> Near(const Point& place, double distance) const {
    std::vector<std::pair<double, size_t>> near;
    const auto end = m_byX.upper_bound(place.x + distance);
    for (auto at = m_byX.lower_bound(place.x - distance); at != end; ++at) {
      const double away = Distance(m_places[at->second], place);
      if (away <= distance) near.emplace_back(away, at->second);
    }
    std::ranges::sort(near);
    std::vector<size_t> numbers;
    for (const auto& [away, number] : near) numbers.push_back(number);
    return numbers;
  }

 private:
  std::vector<Point> m_places;
  std::multimap<double, size_t> m_byX;
};

// The same bones with the same weights, whatever their order.
inline bool SamePulls(const ExportedVertex& actual, const SourceVertex& expected) {
  if (actual.pulls.size() != expected.pulls.size()) return false;
  return std::ranges::all_of(expected.pulls, [&](const SourceVertex::Pull& wanted) {
    return std::ranges::any_of(actual.pulls, [&](const ExportedVertex::Pull& pull) {
      return pull.bone == wanted.bone && std::abs(pull.weight - wanted.weight) < 1e-6;
    });
  });
}

}  // namespace orv
