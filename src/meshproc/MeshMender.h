#pragma once

#include <cstdint>
#include <vector>

#include "scene/Vector.h"

namespace orv {

// Gives the vertices of an indexed triangle list a tangent and a binormal, smoothed over the
// triangles that meet at a position; a vertex between two smoothing groups is duplicated.
// Nothing is guarded against zero: a vector without a direction comes out as NaN.
class MeshMender {
 public:
  struct Vertex {
    Vec3 position;
    float s = 0, t = 0;
    Vec3 normal;
    Vec3 tangent;
    Vec3 binormal;
  };

  struct Settings {
    float normalCreaseCosine = 0;  // vectors at a smaller cosine are not smoothed together
    float tangentCreaseCosine = 0;
    float binormalCreaseCosine = 0;
    float areaWeight = 1;  // of face normals: 1 by area, 0 all alike
    bool computeNormals = false;
    bool respectExistingSplits = true;  // triangles are neighbours only through shared vertices
  };

  // indices: three per triangle, each below vertices.size().
  // newToOld[i]: the input vertex that output vertex i stems from; copies are appended behind the
  // input vertices.
  void Mend(std::vector<Vertex>& vertices, std::vector<uint32_t>& indices,
            std::vector<uint32_t>& newToOld, const Settings& settings);

  struct Triangle;

  // May two triangles share a smoothed vector? One answer for each of the vectors.
  class CanSmoothChecker;
  class CanSmoothNormalsChecker;
  class CanSmoothTangentsChecker;
  class CanSmoothBinormalsChecker;
};

}  // namespace orv
