// Merging finds equal materials by fingerprint and remembers the survivors from one append to the
// next. Here is the rule read literally, to hold it against on materials that break every shortcut:
// NaN colours, -0.0, like maps within one material, near equals that are equal one way only.
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "MeshBuilders.h"
#include "scene/MeshMerger.h"

namespace orv {
namespace {

struct LiteralMesh {
  std::vector<GenericMaterial> materials;
  std::vector<int32_t> faces;  // material of each

  void Append(const LiteralMesh& other, bool ignoreColours) {
    for (const int32_t face : other.faces) faces.push_back(face + int32_t(materials.size()));
    materials.insert(materials.end(), other.materials.begin(), other.materials.end());
    Merge(ignoreColours);
  }

  void Merge(bool ignoreColours) {
    std::vector<int32_t> remap;
    std::vector<GenericMaterial> survivors;
    for (size_t i = 0; i < materials.size(); ++i) {
      size_t j = 0;
      while (j < i && !MaterialsEqual(materials[i], materials[j], ignoreColours)) ++j;
      remap.push_back(j < i ? remap[j] : int32_t(survivors.size()));
      if (j == i) survivors.push_back(materials[i]);
    }
    materials = survivors;
    for (int32_t& face : faces) face = remap[face];
  }
};

class Randomly {
 public:
  explicit Randomly(unsigned seed) : m_engine(seed) {}

  int Below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_engine); }

  template <typename T>
  T OneOf(std::initializer_list<T> values) {
    return values.begin()[Below(int(values.size()))];
  }

  GenericMaterial SomeMaterial(int tag) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    GenericMaterial material =
        Material(OneOf<const char*>({"", "wood", "a.m.onetex", "b.m.onetex"}), tag);
    if (Below(8) == 0) material.diffuse.x = OneOf({0.0f, -0.0f, 0.5f, nan});
    if (Below(8) == 0) material.shininess = 32;
    if (Below(8) == 0) material.twoSided = 1;
    if (Below(8) == 0) material.opacity = OneOf({0.5f, nan});
    if (Below(8) == 0) material.attachmentBone = &m_bone;
    for (int count = Below(4); count > 0; --count) {
      material.maps.push_back(Map(OneOf({1, 8}), OneOf<const char*>({"x.tga", "X.TGA", "y.tga"}),
                                  Below(16) ? OneOf({0.0f, -0.0f}) : nan));
    }
    for (int count = Below(8) ? 0 : 2; count > 0; --count) {
      material.properties.emplace_back(OneOf<const char*>({"k", "l"}), "value");
    }
    return material;
  }

 private:
  std::mt19937 m_engine;
  ExGenericSkeleton::Node m_bone{"b.arm"};
};

struct MeshPair {
  GenericMesh mesh;
  LiteralMesh literal;
};

MeshPair SomeMesh(Randomly& random, int& tag) {
  MeshPair pair;
  for (int count = random.Below(6); count > 0; --count) {
    pair.mesh.m_materials.push_back(random.SomeMaterial(tag++));
    pair.literal.materials.push_back(pair.mesh.m_materials.back());
  }
  for (int count = pair.literal.materials.empty() ? 0 : 4; count > 0; --count) {
    pair.literal.faces.push_back(random.Below(int(pair.literal.materials.size())));
    AddFace(pair.mesh, pair.literal.faces.back(), {0, 1, 2});
  }
  return pair;
}

TEST(Merging, GivesWhatTheLiteralRuleGives) {
  size_t folded = 0;
  for (unsigned seed = 0; seed < 500; ++seed) {
    Randomly random(seed);
    int tag = 0;
    const bool ignoreColours = random.Below(2);
    MeshPair first = SomeMesh(random, tag);
    MeshMerger merger(std::make_unique<GenericMesh>(first.mesh), ignoreColours);
    LiteralMesh& literal = first.literal;
    for (int others = random.Below(24); others > 0; --others) {
      const MeshPair other = SomeMesh(random, tag);
      merger.Append(other.mesh);
      literal.Append(other.literal, ignoreColours);
    }
    const auto mesh = merger.Finish();
    literal.Merge(ignoreColours);

    ASSERT_EQ(Tags(mesh->m_materials), Tags(literal.materials)) << "seed " << seed;
    for (size_t i = 0; i < literal.faces.size(); ++i) {
      ASSERT_EQ(mesh->m_faces[i].material, literal.faces[i]) << "seed " << seed << " face " << i;
    }
    folded += tag - literal.materials.size();
  }
  EXPECT_GT(folded, 1000u);  // the materials are alike enough to prove something
}

}  // namespace
}  // namespace orv
