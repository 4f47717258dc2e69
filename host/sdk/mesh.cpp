#include "mesh.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace {

struct Vector {
  double x = 0, y = 0, z = 0;
};

Vector Between(const Point3& from, const Point3& to) {
  return {double{to.x} - from.x, double{to.y} - from.y, double{to.z} - from.z};
}
double Dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vector Cross(const Vector& a, const Vector& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double Length(const Vector& v) { return std::sqrt(Dot(v, v)); }

Point3 Narrow(const Vector& v, double divisor) {
  if (divisor == 0) return Point3();
  return {static_cast<float>(v.x / divisor), static_cast<float>(v.y / divisor),
          static_cast<float>(v.z / divisor)};
}

// The face's unit normal times its angle at the vertex: the sum over a fan does not depend on how
// the fan was cut into triangles. A face without area counts for nothing.
Vector WeightedNormal(const Mesh& mesh, const Face& face, int corner) {
  const Point3& vertex = mesh.verts[face.v[corner]];
  const Vector next = Between(vertex, mesh.verts[face.v[(corner + 1) % 3]]);
  const Vector last = Between(vertex, mesh.verts[face.v[(corner + 2) % 3]]);
  const Vector cross = Cross(next, last);
  const double length = Length(cross);
  if (length == 0) return {};
  const double weight = std::atan2(length, Dot(next, last)) / length;
  return {cross.x * weight, cross.y * weight, cross.z * weight};
}

// Faces around one vertex that are joined by their smoothing groups.
struct Fan {
  DWORD smGroup;
  Vector sum;
};

// Joins the new face with every fan it shares a group with; the result takes the first one's place.
void AddToFans(std::vector<Fan>& fans, Fan added) {
  size_t place = fans.size();
  for (size_t i = 0; i < fans.size();) {
    if ((fans[i].smGroup & added.smGroup) == 0) {
      ++i;
      continue;
    }
    added.smGroup |= fans[i].smGroup;
    added.sum.x += fans[i].sum.x;
    added.sum.y += fans[i].sum.y;
    added.sum.z += fans[i].sum.z;
    place = std::min(place, i);
    fans.erase(fans.begin() + static_cast<std::ptrdiff_t>(i));
  }
  fans.insert(fans.begin() + static_cast<std::ptrdiff_t>(std::min(place, fans.size())), added);
}

// For each vertex the corners (3 x face + corner) of the faces around it, in face order: those of
// vertex v stand from starts[v] to starts[v + 1].
struct CornersByVertex {
  std::vector<uint32_t> starts;
  std::vector<uint32_t> corners;

  explicit CornersByVertex(const Mesh& mesh)
      : starts(static_cast<size_t>(mesh.getNumVerts()) + 1),
        corners(static_cast<size_t>(mesh.getNumFaces()) * 3) {
    const auto vertexOf = [&](size_t corner) { return mesh.faces[corner / 3].v[corner % 3]; };
    for (size_t i = 0; i < corners.size(); ++i) ++starts[vertexOf(i)];
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    for (size_t i = corners.size(); i-- > 0;) {
      corners[--starts[vertexOf(i)]] = static_cast<uint32_t>(i);
    }
  }
};

}  // namespace

Mesh::Mesh(const Mesh& other)
    : m_verts(other.m_verts),
      m_tVerts(other.m_tVerts),
      m_faces(other.m_faces),
      m_tvFaces(other.m_tvFaces),
      m_rVerts(other.m_rVerts),
      m_ernPool(other.m_ernPool),
      m_normalsSpecified(other.m_normalsSpecified) {
  verts = m_verts.data();
  tVerts = m_tVerts.data();
  faces = m_faces.data();
  tvFace = m_tvFaces.data();
  PointErnIntoPool();
}

void Mesh::swap(Mesh& other) noexcept {
  std::swap(verts, other.verts);
  std::swap(tVerts, other.tVerts);
  std::swap(faces, other.faces);
  std::swap(tvFace, other.tvFace);
  m_verts.swap(other.m_verts);
  m_tVerts.swap(other.m_tVerts);
  m_faces.swap(other.m_faces);
  m_tvFaces.swap(other.m_tvFaces);
  m_rVerts.swap(other.m_rVerts);
  m_ernPool.swap(other.m_ernPool);
  std::swap(m_normalsSpecified, other.m_normalsSpecified);
}

void Mesh::setNumVerts(int count) {
  m_verts.resize(static_cast<size_t>(count));
  verts = m_verts.data();
  DropNormals();
}

void Mesh::setNumTVerts(int count) {
  m_tVerts.resize(static_cast<size_t>(count));
  tVerts = m_tVerts.data();
}

void Mesh::setNumFaces(int count) {
  m_faces.resize(static_cast<size_t>(count));
  faces = m_faces.data();
  DropNormals();
}

void Mesh::setNumTVFaces(int count) {
  m_tvFaces.resize(static_cast<size_t>(count));
  tvFace = m_tvFaces.data();
}

void Mesh::DropNormals() {
  m_rVerts.clear();
  m_ernPool.clear();
  m_normalsSpecified = false;
}

void Mesh::PointErnIntoPool() {
  RNormal* next = m_ernPool.data();
  for (RVertex& vertex : m_rVerts) {
    const DWORD count = vertex.rFlags & NORCT_MASK;
    vertex.ern = count > 1 ? next : nullptr;
    if (count > 1) next += count;
  }
}

bool Mesh::specifyNormals(std::span<const uint8_t> counts, std::span<const RNormal> normals) {
  size_t total = 0;
  size_t pooled = 0;
  for (const uint8_t count : counts) {
    total += count;
    if (count > 1) pooled += count;
  }
  if (counts.size() != m_verts.size() || total != normals.size()) return false;

  m_rVerts.assign(counts.size(), RVertex());
  m_ernPool.clear();
  m_ernPool.reserve(pooled);
  const RNormal* next = normals.data();
  for (size_t v = 0; v < counts.size(); ++v) {
    m_rVerts[v].rFlags = counts[v];
    if (counts[v] == 1) m_rVerts[v].rn = *next;
    if (counts[v] > 1) m_ernPool.insert(m_ernPool.end(), next, next + counts[v]);
    next += counts[v];
  }
  PointErnIntoPool();
  m_normalsSpecified = true;
  return true;
}

void Mesh::buildNormals() {
  if (m_normalsSpecified) return;
  DropNormals();
  const CornersByVertex around(*this);
  m_rVerts.resize(m_verts.size());
  std::vector<Fan> fans;
  for (size_t v = 0; v < m_rVerts.size(); ++v) {
    fans.clear();
    for (uint32_t i = around.starts[v]; i < around.starts[v + 1]; ++i) {
      const uint32_t corner = around.corners[i];
      const Face& face = m_faces[corner / 3];
      if (face.smGroup == 0) continue;
      AddToFans(fans, {face.smGroup, WeightedNormal(*this, face, static_cast<int>(corner % 3))});
    }
    m_rVerts[v].rFlags = static_cast<DWORD>(fans.size());  // at most 32, one per group bit
    for (const Fan& fan : fans) {
      const RNormal normal(Narrow(fan.sum, Length(fan.sum)), fan.smGroup);
      if (fans.size() == 1) {
        m_rVerts[v].rn = normal;
      } else {
        m_ernPool.push_back(normal);
      }
    }
  }
  PointErnIntoPool();
}

Point3 Mesh::FaceNormal(int face, BOOL normalize) const {
  const DWORD* v = faces[face].v;
  const Vector cross = Cross(Between(verts[v[0]], verts[v[1]]), Between(verts[v[0]], verts[v[2]]));
  return Narrow(cross, normalize ? Length(cross) : 1.0);
}
