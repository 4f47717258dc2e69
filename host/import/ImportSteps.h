// Inside of OpenScene: its steps on the importer's side. Each takes what it needs and returns what
// it made.
#pragma once

#include <assimp/scene.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/import/OpenScene.h"
#include "host/import/SourceTree.h"

namespace orv::host {

// From the importer's axes to the host's. A Y-up scene is turned as a change of basis in every
// node's own space, so that a node at rest has no rotation afterwards.
class AxisTurn {
 public:
  explicit AxisTurn(UpAxis from) : m_fromYUp(from == UpAxis::Y) {}

  Point3 Point(const aiVector3D& p) const { return Vector(p.x, p.y, p.z); }
  Point3 Scale(const aiVector3D& s) const {
    return m_fromYUp ? Point3(s.x, s.z, s.y) : Point3(s.x, s.y, s.z);
  }
  Rotation Turn(const aiQuaternion& q) const;
  // Of a matrix for column vectors, which the importer's are, one for row vectors.
  Matrix3 Matrix(const aiMatrix4x4& m) const;

 private:
  // 0 - z: no negative zeros.
  Point3 Vector(float x, float y, float z) const {
    return m_fromYUp ? Point3(x, 0.0f - z, y) : Point3(x, y, z);
  }

  bool m_fromYUp;
};

// What a file's format and its head say.
struct FileFacts {
  std::string format;  // the importer's name for it
  UpAxis up = UpAxis::Y;
  aiMatrix4x4 rootTransform;  // without what the importer added to turn the scene
  double metresPerUnit = 1;
  std::optional<int> framesPerSecond;
};

FileFacts ReadFileFacts(const aiScene& source);

// A file as it was read, and how it is meant.
struct SourceFile {
  std::string path;
  std::unique_ptr<aiScene> scene;
  FileFacts facts;
  AxisTurn turn;
};

// What of a file's animations is played, and when.
struct Playback {
  std::vector<std::string> names;          // of all there are
  const aiAnimation* animation = nullptr;  // the source's; null when it has none
  int framesPerSecond = 30;
  int firstFrame = 0, lastFrame = 0;
};

// Throws SceneError when there is no animation of the wanted name.
Playback ChoosePlayback(const SourceFile& file, const SceneSettings& settings);

// Nodes move when the played animation has channels for them.
SourceTree ReadTree(const SourceFile& file, const Playback& playback);

// Gives the nodes their meshes and materials, each once; nodes with the same parts share one mesh.
// The file is taken apart on the way: big ones do not fit into memory twice.
void AddMeshes(Scene& scene, SourceFile file, const SourceTree& tree,
               const std::vector<AddedNode>& nodes, const SceneSettings& settings);

}  // namespace orv::host
