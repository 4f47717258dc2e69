#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "scene/GenericSkeleton.h"
#include "scene/Vector.h"

namespace orv {

// The host's standard-material map channels; the numbers go into the file.
enum MapChannel : int32_t {
  kAmbient = 0,
  kDiffuse = 1,
  kSpecular = 2,
  kShininess = 3,
  kShininessStrength = 4,
  kSelfIllumination = 5,
  kOpacity = 6,
  kFilterColor = 7,
  kBump = 8,
  kReflection = 9,
  kRefraction = 10,
  kDisplacement = 11,
  kMapChannelCount = 12
};

constexpr size_t kMaxMapFileName = 514;  // characters

struct MaterialMap {
  int32_t channel = -1;
  bool tileS = false;    // along u
  bool tileT = false;    // along v
  std::string fileName;  // at most kMaxMapFileName; once its side file is written, the name that
                         // the engine knows the texture by
  float amount = 0;
  bool flipGreen = false;      // of a normal map
  bool alphaFromFile = false;  // the bitmap's alpha comes from the image file
};

struct GenericMaterial {
  std::vector<MaterialMap> maps;  // in channel order
  uint32_t twoSided = 0;
  int32_t sourceSubMaterial = 0;  // index of the host's sub-material this record is filled from
  bool used = false;              // by at least one face
  float opacity = 1;
  Vec3 ambient{1, 1, 1};
  Vec3 diffuse{1, 1, 1};
  Vec3 specular{1, 1, 1};
  Vec3 emissive{0, 0, 0};
  float shininess = 0.25f;                                      // 100 times the host's once filled
  std::string name;                                             // lower case
  std::vector<std::pair<std::string, std::string>> properties;  // key, value
  const GenericSkeleton::Node* attachmentBone = nullptr;  // not owned: whose space the mesh is in
};

// A word of a material's type, which the engine chooses the shader by. The type stands in the name
// after "m.", its words joined by dots: "rail m.onetex.tbump".
struct MaterialType {
  const char* word;
  int32_t channel;  // of the map that it shows; -1: none
};
inline constexpr MaterialType kNoTexture{"notex", -1};
inline constexpr MaterialType kOneTexture{"onetex", kDiffuse};
inline constexpr MaterialType kReflect{"reflect", kReflection};
inline constexpr MaterialType kGloss{"gloss", kReflection};  // the alpha says where it reflects
inline constexpr MaterialType kBillboard{"billboard", kDiffuse};
inline constexpr MaterialType kTriBillboard{"tribillboard", kDiffuse};
inline constexpr MaterialType kTangentBump{"tbump", kBump};  // asks for tangents

// The word's entry, whatever its case, or null.
const MaterialType* FindMaterialType(std::string_view word);

// Whether a material name says its type itself.
bool HasTypeSuffix(std::string_view name);
// What stands after the name's last "m."; nothing without one.
std::optional<std::string_view> TypeSuffixOf(std::string_view name);
bool AsksForTangents(std::string_view name);
bool AlphaIsGloss(std::string_view name);

const MaterialMap* FindMap(const GenericMaterial& material, int32_t channel);  // the first, or null

// Whether a map may stand for another: channel, file name ignoring case, amount.
bool MapsEqual(const MaterialMap& a, const MaterialMap& b);

// Whether two materials may share a chunk. ignoreColours leaves colours and shininess out.
// Neither symmetric nor transitive, and a NaN does not even equal itself.
bool MaterialsEqual(const GenericMaterial& a, const GenericMaterial& b, bool ignoreColours);

}  // namespace orv
