#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "matrix3.h"
#include "mesh.h"

namespace orv::host {

inline void ExpectNear(const Point3& actual, const Point3& expected, float tolerance = 1e-5f) {
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}

inline void ExpectNear(const Matrix3& actual, const Matrix3& expected, float tolerance = 1e-5f) {
  for (int row = 0; row < 4; ++row) {
    SCOPED_TRACE("row " + std::to_string(row));
    ExpectNear(actual.GetRow(row), expected.GetRow(row), tolerance);
  }
}

// The normal that an exporter finds for a face's corner; none where it takes the face's own.
inline std::optional<Point3> LookUpNormal(const Mesh& mesh, int face, int corner) {
  const DWORD group = mesh.faces[face].getSmGroup();
  const RVertex& vertex = mesh.getRVert(static_cast<int>(mesh.faces[face].v[corner]));
  const DWORD count = vertex.rFlags & NORCT_MASK;
  if (group == 0) return std::nullopt;
  if (count == 1) return vertex.rn.getNormal();
  for (DWORD k = 0; k < count; ++k) {
    if ((vertex.ern[k].getSmGroup() & group) != 0) return vertex.ern[k].getNormal();
  }
  return std::nullopt;
}

}  // namespace orv::host
