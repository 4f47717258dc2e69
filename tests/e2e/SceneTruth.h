#pragma once

#include <assimp/scene.h>

#include <assimp/Importer.hpp>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"

namespace orv {

using Matrix = aiMatrix4x4t<double>;  // for column vectors
using Point = aiVector3t<double>;

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

struct TruthCorner {
  Point position, normal;
  double u, v;
};

struct TruthTriangle {
  std::array<TruthCorner, 3> corners;
  std::string material;  // "" when it has no "m.": equal ones are merged whatever their names
  std::string bone;
};

// Evaluates a scene file straight from the importer's data, in double and with code that shares
// nothing with the host; takes the first animation.
class SceneTruth {
 public:
  // Throws std::runtime_error when the file cannot be read.
  explicit SceneTruth(const std::string& path, const TruthSettings& settings = {});

  // What an .im file has to hold, a skin as its joints pose it at that time. In metres.
  std::vector<TruthTriangle> Triangles(double seconds = 0) const;
  std::vector<AttachmentPoint> AttachmentPoints() const;

  double Seconds() const;
  const aiNode* Find(const std::string& name) const;
  // Without what --joints-as-bones has put before its name.
  const aiNode* NodeOfBone(const std::string& bone) const;
  // In the exported axes and the scene's units.
  Matrix World(const aiNode& node, double seconds) const;

 private:
  void Walk(const aiNode& node, bool selected, const auto& take) const;
  void TakeParts(const aiNode& node, double seconds, std::vector<TruthTriangle>& triangles) const;
  std::vector<TruthCorner> CornersOf(const aiNode& node, const aiMesh& part, double seconds) const;
  bool IsExported(const aiNode& node) const;
  Matrix Composed(const aiNode& node, double seconds) const;
  Matrix LocalAt(const aiNode& node, double seconds) const;

  TruthSettings m_settings;
  Assimp::Importer m_importer;
  const aiScene* m_scene;
  const aiAnimation* m_animation = nullptr;
  std::map<std::string, const aiNodeAnim*> m_channels;
  std::set<std::string> m_noPoints;  // nodes with a camera or a light, and joints
  Matrix m_space, m_toLocal, m_fromLocal;
};

// A position and a rotation as the exported files hold them: the rotation is the conjugate of the
// usual one.
Matrix MatrixOf(const BonePose& pose);

// Without the scale; the axes of a mirrored one are turned round.
Matrix Rigid(Matrix matrix);

// An .im file's triangles. With an animation a skin stands where an engine shows it in the frame;
// its normals stay.
std::vector<TruthTriangle> TrianglesOf(const IndexedMeshFile& file,
                                       const AnimationFile* animation = nullptr, size_t frame = 0);

// What is wrong in the triangles; "" when nothing is.
std::string CompareTriangles(const std::vector<TruthTriangle>& actual,
                             const std::vector<TruthTriangle>& expected, bool withNormals = true);

// What is wrong in an .im file; "" when nothing is.
std::string CompareWithTruth(const IndexedMeshFile& file, const SceneTruth& truth);

}  // namespace orv
