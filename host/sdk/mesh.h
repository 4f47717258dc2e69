#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "maxtypes.h"
#include "point3.h"

using UVVert = Point3;  // u, v, w; v runs up

// A triangle, counter-clockwise seen from its front.
class Face {
 public:
  DWORD v[3] = {};    // into Mesh::verts
  DWORD smGroup = 0;  // one bit per smoothing group; 0: flat
  DWORD flags = 0;    // material number in the upper 16 bits

  void setVerts(DWORD a, DWORD b, DWORD c) { v[0] = a, v[1] = b, v[2] = c; }
  DWORD getVert(int i) const { return v[i]; }
  DWORD getSmGroup() const { return smGroup; }
  void setSmGroup(DWORD bits) { smGroup = bits; }
  MtlID getMatID() const { return static_cast<MtlID>(flags >> 16); }
  void setMatID(MtlID id) { flags = (flags & 0xFFFF) | (DWORD{id} << 16); }
};

// The same triangle in Mesh::tVerts.
class TVFace {
 public:
  DWORD t[3] = {};

  void setTVerts(DWORD a, DWORD b, DWORD c) { t[0] = a, t[1] = b, t[2] = c; }
};

// A vertex normal and the smoothing groups of the faces it is for.
class RNormal {
 public:
  RNormal() = default;
  RNormal(const Point3& normal, DWORD smGroup) : m_normal(normal), m_smGroup(smGroup) {}
  Point3 getNormal() const { return m_normal; }
  void setNormal(const Point3& normal) { m_normal = normal; }
  DWORD getSmGroup() const { return m_smGroup; }
  void setSmGroup(DWORD bits) { m_smGroup = bits; }

 private:
  Point3 m_normal;  // unit length
  DWORD m_smGroup = 0;
};

constexpr DWORD NORCT_MASK = 0xFF;

// The normals of one vertex; rFlags & NORCT_MASK says how many.
class RVertex {
 public:
  RNormal* ern = nullptr;  // all of them when there are several; the mesh's
  RNormal rn;              // the only one
  DWORD rFlags = 0;
};

// Triangle mesh. Positions, texture vertices and normals are indexed apart, so that a million
// triangles of a smooth closed surface take about 60 MB. The arrays belong to the mesh and move
// when their count is set. Moving a mesh keeps them where they are.
class Mesh {
 public:
  Point3* verts = nullptr;
  UVVert* tVerts = nullptr;
  Face* faces = nullptr;
  TVFace* tvFace = nullptr;  // one per face when there are texture vertices

  Mesh() = default;
  Mesh(const Mesh& other);
  Mesh(Mesh&& other) noexcept { swap(other); }
  Mesh& operator=(Mesh other) noexcept { return swap(other), *this; }
  ~Mesh() = default;
  void swap(Mesh& other) noexcept;

  int getNumVerts() const { return static_cast<int>(m_verts.size()); }
  int getNumTVerts() const { return static_cast<int>(m_tVerts.size()); }
  int getNumFaces() const { return static_cast<int>(m_faces.size()); }
  // Entries that were there are kept, new ones are zero. Vertices and faces drop the normals.
  void setNumVerts(int count);
  void setNumTVerts(int count);
  void setNumFaces(int count);
  void setNumTVFaces(int count);

  void setVert(int i, const Point3& point) { verts[i] = point; }
  const Point3& getVert(int i) const { return verts[i]; }
  void setTVert(int i, const UVVert& point) { tVerts[i] = point; }
  const UVVert& getTVert(int i) const { return tVerts[i]; }

  // Makes the vertex normals. Around each vertex, faces that share a smoothing group, directly or
  // through a third one there, get one normal, weighted by their angles; flat faces give none.
  // Normals given by specifyNormals are kept as they are.
  void buildNormals();

  // Gives the mesh normals of its own: counts[v] of them for each vertex, the vertices in order.
  // Call it when the vertices and faces are complete. False, and nothing done, when the counts do
  // not fit the vertices or the normals.
  bool specifyNormals(std::span<const uint8_t> counts, std::span<const RNormal> normals);

  // Valid after buildNormals or specifyNormals. A normal can be set here, not their number.
  RVertex& getRVert(int i) { return m_rVerts[static_cast<size_t>(i)]; }
  const RVertex& getRVert(int i) const { return m_rVerts[static_cast<size_t>(i)]; }

  // From the corners; as long as twice the area unless `normalize` is set. A face without area has
  // the normal (0, 0, 0).
  Point3 FaceNormal(int face, BOOL normalize = FALSE) const;

 private:
  void DropNormals();
  void PointErnIntoPool();

  std::vector<Point3> m_verts;
  std::vector<UVVert> m_tVerts;
  std::vector<Face> m_faces;
  std::vector<TVFace> m_tvFaces;
  std::vector<RVertex> m_rVerts;
  std::vector<RNormal> m_ernPool;  // the runs behind every RVertex::ern, in vertex order
  bool m_normalsSpecified = false;
};

static_assert(sizeof(Face) == 20 && sizeof(TVFace) == 12 && sizeof(RVertex) == 32);
