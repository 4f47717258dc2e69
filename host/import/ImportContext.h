// Inside of OpenScene: what all its steps share.
#pragma once

#include <assimp/scene.h>

#include <optional>
#include <string>

#include "host/import/OpenScene.h"
#include "host/memory/TransformTrack.h"

namespace orv::host {

// From the importer's axes to the host's. A Y-up scene is turned as a change of basis in every
// node's own space, so that a node at rest has no rotation afterwards.
class AxisTurn {
 public:
  explicit AxisTurn(bool fromYUp) : m_fromYUp(fromYUp) {}

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
  bool zUp = false;
  aiMatrix4x4 rootTransform;  // without what the importer added to turn the scene
  double metresPerUnit = 1;
  std::optional<int> framesPerSecond;
};

struct ImportContext {
  aiScene& source;
  Scene& scene;
  const SceneSettings& settings;
  std::string path;
  FileFacts facts;
  AxisTurn turn;
};

FileFacts ReadFileFacts(const aiScene& source);

std::string FolderOf(const std::string& path);  // "." when it has none
std::string FileNameOf(const std::string& path);
std::string StemOf(const std::string& path);  // the file's name without its extension

}  // namespace orv::host
