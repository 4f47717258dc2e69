#pragma once

#include <assimp/scene.h>

#include <assimp/Importer.hpp>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "IndependentReader.h"

namespace orv {

using Matrix = aiMatrix4x4t<double>;  // for column vectors
using Point = aiVector3t<double>;

// The matrix of a position and a rotation as the exported files hold them: the rotation is the
// conjugate of the usual one.
Matrix MatrixOf(const std::array<float, 7>& pose);

// Every node's world matrix by the node's name, Z-up.
using WorldMatrices = std::map<std::string, Matrix>;

// Ends in other units.
WorldMatrices Scaled(WorldMatrices world, double factor);

// A vertex and the bones that move it, with weights that sum up to 1.
struct SourceVertex {
  struct Pull {
    std::string bone;
    double weight;
    Point inBone;  // at the skin's own rest, not at time 0
  };
  std::vector<Pull> pulls;
};

// Evaluates a Y-up scene file straight from the importer's data, in double and with code that
// shares nothing with the host; takes the first animation.
class SceneMotion {
 public:
  explicit SceneMotion(const std::string& path);

  WorldMatrices At(double seconds) const;
  double Seconds() const;
  // A bone's node: without what --joints-as-bones has put before its name.
  std::string NodeNameOf(const std::string& bone) const;
  // Name of the nearest node above that is one of `names`; "" without one.
  std::string NearestAbove(const std::string& name, const std::vector<std::string>& names) const;

  // In the order of the nodes.
  const std::vector<const aiMesh*>& Meshes() const { return m_meshes; }
  // The positions of a mesh: those that differ in no bit and in no weight are one.
  std::vector<SourceVertex> VerticesOf(const aiMesh& mesh) const;

 private:
  void CollectMeshes(const aiNode& node);
  Matrix LocalAt(const aiNode& node, double ticks) const;
  void Walk(const aiNode& node, const Matrix& above, double ticks, WorldMatrices& world) const;

  Assimp::Importer m_importer;
  const aiScene* m_scene;
  const aiAnimation* m_animation = nullptr;
  std::map<std::string, const aiNodeAnim*> m_channels;
  std::vector<const aiMesh*> m_meshes;
};

// Where a bone alone takes a vertex, and where all of them do.
Point MovedBy(const SourceVertex::Pull& pull, const WorldMatrices& world);
Point Posed(const SourceVertex& vertex, const WorldMatrices& world);

double Distance(const Point& a, const Point& b);

// Without the scale; the axes of a mirrored one are turned round.
Matrix Rigid(Matrix matrix);

}  // namespace orv
