#pragma once

#include <array>
#include <set>
#include <string>
#include <vector>

#include "IndependentReader.h"

namespace orv {

// How a scene file stands to the Z-up axes of the exported files.
enum class Axes {
  YUp,        // to be turned, each node in its own space
  TurnedZUp,  // made Z-up, and turned to Y-up by the importer's root
  AsItIs,
};

struct TruthSettings {
  Axes axes = Axes::YUp;
  double metresPerUnit = 1;
  std::set<std::string> hidden = {};
  std::set<std::string> selected = {};  // with all below; empty: everything
  bool standInMaterials = false;        // parts without a material take part
};

using Vector3 = std::array<double, 3>;

struct TruthCorner {
  Vector3 position, normal;
  std::array<double, 2> texCoord;
};

struct TruthTriangle {
  std::array<TruthCorner, 3> corners;
  std::string material;  // "" when it has no "m.": equal ones are merged whatever their names
  std::string bone;
};

struct TruthPoint {
  std::string name;
  std::array<Vector3, 3> rows;
  Vector3 position;
};

// What an .im file of a scene has to hold.
struct SceneTruth {
  std::vector<TruthTriangle> triangles;
  std::vector<TruthPoint> points;
};

// Evaluates a scene file straight from the importer's data, with code that shares nothing with the
// host. Throws std::runtime_error when the file cannot be read.
SceneTruth EvaluateScene(const std::string& path, const TruthSettings& settings);

// What is wrong in an .im file; "" when nothing is.
std::string CompareWithTruth(const independent::MeshFile& file, const SceneTruth& truth);

}  // namespace orv
