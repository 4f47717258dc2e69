#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "motion/SkinTesting.h"

namespace orv {
namespace {

constexpr double kTolerance = 1e-4;  // metres

// One of several skinned nodes, all merged into one mesh.
struct Part {
  std::vector<SourceVertex> vertices;
  // The mesh's position that its first vertex's weights name. Counted when its positions are in
  // already, so that from the second part on weights go past the part that they are of.
  size_t firstWeighted;
  std::map<std::string, size_t> ordinals;  // which one of the mesh's bones of a name is its
};

// The parts of all positions, one after the other, and their bones, kept apart by part.
struct MergedParts {
  std::vector<Part> parts;
  std::vector<SourceVertex> positions;
  std::vector<std::string> boneOrder;
  std::map<std::string, size_t> boneCounts;

  explicit MergedParts(const SceneMotion& scene) {
    for (const aiMesh* mesh : scene.Meshes()) {
      Part part{scene.VerticesOf(*mesh), 0, {}};
      positions.insert(positions.end(), part.vertices.begin(), part.vertices.end());
      if (!parts.empty()) part.firstWeighted = positions.size();
      for (const SourceVertex& vertex : part.vertices) {
        for (const SourceVertex::Pull& pull : vertex.pulls) {
          if (part.ordinals.contains(pull.bone)) continue;
          if (boneCounts[pull.bone] == 0) boneOrder.push_back(pull.bone);
          part.ordinals[pull.bone] = boneCounts[pull.bone]++;
        }
      }
      parts.push_back(std::move(part));
    }
  }

  // Whether the vertex holds what every part says about the position, and nothing else.
  bool Explains(const ExportedVertex& vertex, size_t position, const ExportedSkin& skin,
                const WorldMatrices& atZero) const {
    size_t expected = 0;
    for (const Part& part : parts) {
      const size_t index = position - part.firstWeighted;
      if (position < part.firstWeighted || index >= part.vertices.size()) continue;
      const SourceVertex& source = part.vertices[index];
      for (const SourceVertex::Pull& pull : source.pulls) {
        ++expected;
        if (std::ranges::none_of(vertex.pulls, [&](const ExportedVertex::Pull& actual) {
              return actual.bone == pull.bone && actual.ordinal == part.ordinals.at(pull.bone) &&
                     std::abs(actual.weight - pull.weight) < 1e-6 &&
                     Distance(skin.Placed(actual, 0), Posed(source, atZero)) < kTolerance;
            })) {
          return false;
        }
      }
    }
    return vertex.pulls.size() == expected;
  }
};

// Exports three skinned nodes and answers how many bones several of them have.
size_t ExpectMerged(const Workplace& place, const std::string& path) {
  std::vector<std::string> arguments = kWithJoints;
  arguments.insert(arguments.end(), {"--frames", "0:0"});
  const Outcome run = place.Export(path, "out", arguments);
  EXPECT_LE(run.status, 1) << run.err;
  const independent::MeshFile file = place.Mesh("out.im");
  const SceneMotion scene(path);
  const ExportedSkin skin(scene, file, place.Animation("out.kin"));
  const WorldMatrices atZero = skin.Metres(scene.At(0));
  const MergedParts merged(scene);
  EXPECT_EQ(merged.parts.size(), 3u);

  const PlaceIndex index(merged.positions, atZero);
  size_t weightless = 0;
  for (const ExportedVertex& vertex : skin.Vertices()) {
    const std::vector<size_t> candidates = index.Near(vertex.position, kTolerance);
    EXPECT_TRUE(std::ranges::any_of(candidates, [&](size_t position) {
      return merged.Explains(vertex, position, skin, atZero);
    }));
    weightless += vertex.pulls.empty();
  }
  EXPECT_GT(weightless, 0u);  // those of the second part
  EXPECT_LT(weightless, skin.Vertices().size() / 2);

  // Every chunk has every part's bones, and each bone that pulls nothing once.
  size_t repeated = 0;
  for (size_t bone = 0; bone < file.influences.size(); ++bone) {
    const std::string name = scene.NodeNameOf(file.influences[bone].name);
    if (bone < merged.boneOrder.size()) {
      EXPECT_EQ(name, merged.boneOrder[bone]);
    }
    const auto found = merged.boneCounts.find(name);
    const size_t count = found == merged.boneCounts.end() ? 1 : found->second;
    EXPECT_EQ(file.influences[bone].matches.size(), count * file.chunks.size()) << name;
    repeated += count > 1;
  }
  EXPECT_EQ(file.influences.size(), skin.BoneNames().size());
  return repeated;
}

// A skinned node's triangles by the bones that move all corners of each alike. No two share a
// corner, and the corners' x coordinates count them.
using SkinnedTriangles = std::vector<std::vector<size_t>>;

std::string Joined(const std::vector<std::string>& items) {
  std::string text = std::to_string(items.size()) + "; ";
  for (const std::string& item : items) text += (&item == &items[0] ? "" : ", ") + item;
  return text + "; ";
}

// A text file of the kind that names each bone's vertices, as many bones a vertex as one likes.
std::string SkinnedFile(size_t boneCount, const std::vector<SkinnedTriangles>& nodes) {
  std::string file = "xof 0303txt 0032\nFrame top {\n";
  for (size_t bone = 0; bone < boneCount; ++bone) {
    file += "Frame bone" + std::to_string(bone) + " { }\n";
  }
  file += "}\n";
  size_t corner = 0;
  for (size_t node = 0; node < nodes.size(); ++node) {
    std::vector<std::string> positions, faces, texCoords;
    std::vector<std::vector<std::string>> numbers(boneCount), weights(boneCount);
    for (const std::vector<size_t>& bones : nodes[node]) {
      const std::string weight = std::to_string(1.0 / static_cast<double>(bones.size()));
      std::string face = "3;";
      for (int c = 0; c < 3; ++c) {
        const std::string number = std::to_string(positions.size());
        face += (c ? ", " : " ") + number;
        positions.push_back(std::to_string(corner++) + "; " + std::to_string(c % 2) + "; 0;");
        texCoords.push_back("0; 0;");
        for (const size_t bone : bones) {
          numbers[bone].push_back(number);
          weights[bone].push_back(weight);
        }
      }
      faces.push_back(face + ";");
    }
    file += "Frame body" + std::to_string(node) + " { Mesh { " + Joined(positions) + "\n" +
            Joined(faces) + "\nMeshTextureCoords { " + Joined(texCoords) + "}\n";
    for (size_t bone = 0; bone < boneCount; ++bone) {
      const std::string list = Joined(weights[bone]);
      if (numbers[bone].empty()) continue;
      file += "SkinWeights { \"bone" + std::to_string(bone) + "\"; " + Joined(numbers[bone]) +
              list.substr(list.find(' ')) + "1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1;; }\n";
    }
    file += "} }\n";
  }
  return file;
}

TEST(MergedInfluences, NamePositionsPastTheirOwnPart) {
  EXPECT_EQ(ExpectMerged(Workplace(), ModelFile("X/BCN_Epileptic.X")), 0u);
}

TEST(MergedInfluences, KeepTheBonesOfTheirPartsApart) {
  const Workplace place;
  WriteContent(place.Path("parts.x"),
               SkinnedFile(5, {{{0}, {1, 2}, {2}}, {{2, 0}, {3}}, {{0}, {3, 2}, {1}, {0, 1, 2}}}));
  EXPECT_EQ(ExpectMerged(place, place.Path("parts.x")), 4u);
}

// More triangles than a chunk holds and more bones than a piece. As corners are not shared, the
// numbers that splitting looks up are those that the weights name.
SkinnedTriangles ManyBones() {
  constexpr size_t kBones = 40, kTriangles = 10'800;
  SkinnedTriangles triangles;
  for (size_t t = 0; t < kTriangles; ++t) triangles.push_back({t % kBones});
  triangles[0] = {0, 1, 2, 3, 4};           // 15 entries: fits a new piece
  triangles[1] = {34, 35, 36, 37, 38, 39};  // 18 do not
  triangles.back() = {0, 1, 2, 3, 4, 5};    // its bones are all in a piece by now
  return triangles;
}

TEST(SplitSkin, KeepsEachPieceToItsBones) {
  const Workplace place;
  const SkinnedTriangles triangles = ManyBones();
  WriteContent(place.Path("many.x"), SkinnedFile(40, {triangles}));
  const Outcome run = place.Export("many.x", "out", kWithJoints);
  ASSERT_LE(run.status, 1) << run.err;
  EXPECT_TRUE(run.Says("warning: Mesh limits exceeded, 1 chunks split into 3 chunks.")) << run.err;
  const independent::MeshFile file = place.Mesh("out.im");
  const ExportedSkin skin(SceneMotion(place.Path("many.x")), file, place.Animation("out.kin"));
  EXPECT_EQ(file.maxInfluences, 6u);
  // A new bone counts once for each corner that it moves, so the 15th is one too many.
  EXPECT_EQ(file.maxBones, 14u);

  std::vector<std::set<std::string>> bones(file.chunks.size());
  std::set<size_t> found;
  for (const ExportedVertex& vertex : skin.Vertices()) {
    const auto number = static_cast<size_t>(std::lround(vertex.position.x));
    EXPECT_TRUE(found.insert(number).second) << number;
    const std::vector<size_t>& expected = triangles.at(number / 3);
    ASSERT_EQ(vertex.pulls.size(), expected.size()) << number;
    for (size_t i = 0; i < expected.size(); ++i) {
      EXPECT_EQ(vertex.pulls[i].bone, "bone" + std::to_string(expected[i])) << number;
      EXPECT_NEAR(vertex.pulls[i].weight, 1.0 / static_cast<double>(expected.size()), 1e-6);
      bones[vertex.chunk].insert(vertex.pulls[i].bone);
    }
  }
  for (const auto& names : bones) EXPECT_LE(names.size(), 16u);
  size_t kept = 0;
  for (const independent::MeshChunk& chunk : file.chunks) kept += chunk.triangles.size();
  EXPECT_EQ(kept, triangles.size() - 1);
  EXPECT_EQ(found.size(), 3 * kept);
  for (size_t corner = 3; corner < 6; ++corner) EXPECT_FALSE(found.contains(corner));
}

}  // namespace
}  // namespace orv
