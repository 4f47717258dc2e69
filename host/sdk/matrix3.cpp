#include "matrix3.h"

#include <cmath>
#include <cstring>

Matrix3::Matrix3(BOOL identity) {
  if (identity) {
    IdentityMatrix();
  } else {
    std::memset(m_rows, 0, sizeof m_rows);
  }
}

Matrix3::Matrix3(const Point3& row0, const Point3& row1, const Point3& row2, const Point3& row3) {
  SetRow(0, row0);
  SetRow(1, row1);
  SetRow(2, row2);
  SetRow(3, row3);
}

void Matrix3::IdentityMatrix() {
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 3; ++column) m_rows[row][column] = row == column ? 1.0f : 0.0f;
  }
}

void Matrix3::SetRow(int i, const Point3& row) {
  m_rows[i][0] = row.x;
  m_rows[i][1] = row.y;
  m_rows[i][2] = row.z;
}

void Matrix3::NoScale() {
  for (int row = 0; row < 3; ++row) {
    const double x = m_rows[row][0], y = m_rows[row][1], z = m_rows[row][2];
    const double length = std::sqrt(x * x + y * y + z * z);
    if (length == 0) continue;
    SetRow(row, {static_cast<float>(x / length), static_cast<float>(y / length),
                 static_cast<float>(z / length)});
  }
}

Matrix3 Matrix3::operator*(const Matrix3& then) const {
  Matrix3 product;
  for (int row = 0; row < 3; ++row) product.SetRow(row, VectorTransform(then, GetRow(row)));
  product.SetRow(3, GetRow(3) * then);
  return product;
}

bool Matrix3::operator==(const Matrix3& other) const {
  for (int row = 0; row < 4; ++row) {
    if (GetRow(row) != other.GetRow(row)) return false;
  }
  return true;
}

namespace {

// vector * (rows 0 to 2 of the matrix) + offset
Point3 Transform(const Matrix3& matrix, const Point3& vector, const Point3& offset) {
  const Point3 row0 = matrix.GetRow(0), row1 = matrix.GetRow(1), row2 = matrix.GetRow(2);
  Point3 result;
  for (int i = 0; i < 3; ++i) {
    result[i] = static_cast<float>(double{vector.x} * row0[i] + double{vector.y} * row1[i] +
                                   double{vector.z} * row2[i] + double{offset[i]});
  }
  return result;
}

}  // namespace

Point3 operator*(const Point3& point, const Matrix3& matrix) {
  return Transform(matrix, point, matrix.GetRow(3));
}

Point3 VectorTransform(const Matrix3& matrix, const Point3& vector) {
  return Transform(matrix, vector, Point3());
}

Matrix3 Inverse(const Matrix3& matrix) {
  double m[4][3];
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 3; ++column) m[row][column] = matrix.GetRow(row)[column];
  }
  double inverse[3][3];
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      const int r1 = (column + 1) % 3, r2 = (column + 2) % 3;
      const int c1 = (row + 1) % 3, c2 = (row + 2) % 3;
      inverse[row][column] = m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
    }
  }
  const double determinant =
      m[0][0] * inverse[0][0] + m[0][1] * inverse[1][0] + m[0][2] * inverse[2][0];
  Matrix3 result(FALSE);
  if (determinant == 0) return result;

  double translation[3] = {};
  for (int row = 0; row < 3; ++row) {
    Point3 narrowed;
    for (int column = 0; column < 3; ++column) {
      const double value = inverse[row][column] / determinant;
      narrowed[column] = static_cast<float>(value);
      translation[column] -= m[3][row] * value;
    }
    result.SetRow(row, narrowed);
  }
  result.SetRow(3, {static_cast<float>(translation[0]), static_cast<float>(translation[1]),
                    static_cast<float>(translation[2])});
  return result;
}
