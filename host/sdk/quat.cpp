#include "quat.h"

#include <algorithm>
#include <cmath>

namespace {

double Determinant(const double (&m)[3][3]) {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
         m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

// Divides by the component that is largest, so that nothing is lost near half turns. The four
// candidates for its square sum up to 4: the largest is never below 1.
void FromRows(const double (&m)[3][3], double (&q)[4]) {
  const double trace = m[0][0] + m[1][1] + m[2][2];
  const double largest = std::max({m[0][0], m[1][1], m[2][2]});
  if (trace >= largest) {
    q[0] = m[2][1] - m[1][2];
    q[1] = m[0][2] - m[2][0];
    q[2] = m[1][0] - m[0][1];
    q[3] = 1 + trace;
    return;
  }
  const int i = largest == m[0][0] ? 0 : largest == m[1][1] ? 1 : 2;
  const int j = (i + 1) % 3, k = (i + 2) % 3;
  q[i] = 1 + m[i][i] - m[j][j] - m[k][k];
  q[j] = m[i][j] + m[j][i];
  q[k] = m[i][k] + m[k][i];
  q[3] = m[k][j] - m[j][k];
}

}  // namespace

Quat::Quat(const Matrix3& matrix) {
  double m[3][3];
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) m[row][column] = matrix.GetRow(row)[column];
  }
  if (Determinant(m) < 0) {
    for (auto& row : m) {
      for (double& value : row) value = -value;
    }
  }
  double q[4];
  FromRows(m, q);
  const double length = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  const double scale = (q[3] < 0 ? -1.0 : 1.0) / length;
  // Adding 0 turns -0 into 0, so that equal rotations are equal bytes.
  x = static_cast<float>(q[0] * scale + 0.0);
  y = static_cast<float>(q[1] * scale + 0.0);
  z = static_cast<float>(q[2] * scale + 0.0);
  w = static_cast<float>(q[3] * scale + 0.0);
}
