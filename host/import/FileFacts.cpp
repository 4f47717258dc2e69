#include <assimp/commonMetaData.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "host/import/ImportSteps.h"

namespace orv::host {
namespace {

// Importers that turn Z-up files by the root's transform.
constexpr std::array kTurningFormats = {
    "Discreet 3DS", "ASE",         "Collada",       "Drawing Interchange", "Quake",
    "Doom 3",       "Inter-Quake", "3D GameStudio", "Industry Foundation", "Return To Castle"};

// Importers whose ticks are the frames of the file.
constexpr std::array kFrameTickFormats = {"BVH",    "CharacterStudio", "LightWave Scene",
                                          "Doom 3", "BlitzBasic",      "Milkshape"};

template <size_t N>
bool StartsWithAny(std::string_view text, const std::array<const char*, N>& starts) {
  return std::ranges::any_of(starts, [&](const char* start) { return text.starts_with(start); });
}

const aiMatrix4x4 kZUpToYUp(1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1);

// The matrix is the turn and maybe a scale.
bool IsTurn(const aiMatrix4x4& matrix) {
  const float scale = matrix.a1;
  if (!(scale > 0)) return false;
  for (unsigned row = 0; row < 3; ++row) {
    for (unsigned column = 0; column < 3; ++column) {
      const float expected = kZUpToYUp[row][column] * scale;
      if (!(std::abs(matrix[row][column] - expected) <= 1e-5f * scale)) return false;
    }
  }
  return true;
}

double NumberOf(const aiMetadata& data, const char* key, double otherwise) {
  double number = 0;
  if (data.Get(key, number)) return number;
  float single = 0;
  if (data.Get(key, single)) return single;
  int32_t integer = 0;
  if (data.Get(key, integer)) return integer;
  return otherwise;
}

// By the number that the file has for it.
std::optional<int> FbxFrameRate(const aiMetadata& data) {
  constexpr int kRates[] = {0, 120, 100, 60, 50, 48, 30, 30, 30, 30, 25, 24, 1000, 24};
  constexpr int kCustom = 14;
  const int mode = static_cast<int>(NumberOf(data, "FrameRate", 0));
  double rate = 0;
  if (mode == kCustom) rate = NumberOf(data, "CustomFrameRate", 0);
  if (mode > 0 && mode < kCustom) rate = kRates[mode];
  if (!(rate >= 1 && rate <= 10000)) return std::nullopt;
  return static_cast<int>(std::floor(rate + 0.5));
}

std::optional<int> TickRate(const aiScene& source) {
  if (source.mNumAnimations == 0) return std::nullopt;
  const double rate = source.mAnimations[0]->mTicksPerSecond;
  if (!(rate >= 1 && rate <= 10000)) return std::nullopt;
  return static_cast<int>(std::floor(rate + 0.5));
}

}  // namespace

FileFacts ReadFileFacts(const aiScene& source) {
  FileFacts facts;
  facts.rootTransform = source.mRootNode->mTransformation;
  aiString format;
  if (source.mMetaData && source.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format)) {
    facts.format = format.C_Str();
  }
  if (StartsWithAny(facts.format, kTurningFormats) && IsTurn(facts.rootTransform)) {
    facts.rootTransform = aiMatrix4x4(kZUpToYUp).Transpose() * facts.rootTransform;
    facts.up = UpAxis::Z;
  }
  if (facts.format.starts_with("Blender")) facts.up = UpAxis::Z;  // its importer turns nothing
  if (facts.format.starts_with("Autodesk FBX")) {
    if (NumberOf(*source.mMetaData, "UpAxis", 1) == 2) facts.up = UpAxis::Z;
    const double centimetres = NumberOf(*source.mMetaData, "UnitScaleFactor", 1);
    if (centimetres > 0 && std::isfinite(centimetres)) facts.metresPerUnit = centimetres / 100;
    facts.framesPerSecond = FbxFrameRate(*source.mMetaData);
  }
  if (StartsWithAny(facts.format, kFrameTickFormats)) facts.framesPerSecond = TickRate(source);
  return facts;
}

Rotation AxisTurn::Turn(const aiQuaternion& q) const {
  const double length =
      std::sqrt(double{q.x} * q.x + double{q.y} * q.y + double{q.z} * q.z + double{q.w} * q.w);
  if (!(length > 0)) return {};
  const Rotation unit{q.x / length, q.y / length, q.z / length, q.w / length};
  return m_fromYUp ? Rotation{unit.x, -unit.z, unit.y, unit.w} : unit;
}

Matrix3 AxisTurn::Matrix(const aiMatrix4x4& m) const {
  const Point3 x = Vector(m.a1, m.b1, m.c1);
  const Point3 y = Vector(m.a2, m.b2, m.c2);
  const Point3 z = Vector(m.a3, m.b3, m.c3);
  const Point3 translation = Vector(m.a4, m.b4, m.c4);
  if (!m_fromYUp) return Matrix3(x, y, z, translation);
  // The host's y axis is the file's -z axis, its z axis the file's y axis.
  const Point3 zero;
  return Matrix3(x, zero - z, y, translation);
}

}  // namespace orv::host
