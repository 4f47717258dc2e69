#pragma once

#include "maxheap.h"
#include "maxtypes.h"
#include "point3.h"

// Affine transform of row vectors: p' = p * M. Rows 0 to 2 are the images of the axes, row 3 is the
// translation. `A * B` applies A first. Sums are formed in double and narrowed once.
class Matrix3 : public MaxHeapOperators {
 public:
  Matrix3() { IdentityMatrix(); }
  // TRUE: the identity, FALSE: all zero.
  explicit Matrix3(BOOL identity);
  Matrix3(const Point3& row0, const Point3& row1, const Point3& row2, const Point3& row3);

  void IdentityMatrix();
  Point3 GetRow(int i) const { return {m_rows[i][0], m_rows[i][1], m_rows[i][2]}; }
  void SetRow(int i, const Point3& row);
  Point3 GetTrans() const { return GetRow(3); }
  void SetTrans(const Point3& row) { SetRow(3, row); }

  // Makes rows 0 to 2 unit length, each on its own: shear and mirroring stay. A row of length 0
  // stays as it is.
  void NoScale();

  Matrix3 operator*(const Matrix3& then) const;
  bool operator==(const Matrix3& other) const;

 private:
  float m_rows[4][3];
  [[maybe_unused]] DWORD m_flags = 0;  // part of the layout
};

// A matrix that has no inverse gives all zeros.
Matrix3 Inverse(const Matrix3& matrix);

Point3 operator*(const Point3& point, const Matrix3& matrix);

// Without the translation.
Point3 VectorTransform(const Matrix3& matrix, const Point3& vector);
