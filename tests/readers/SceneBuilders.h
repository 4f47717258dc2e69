#pragma once

#include <cmath>
#include <initializer_list>
#include <vector>

#include "host/memory/MemoryHost.h"
#include "host/memory/Scene.h"

namespace orv {

struct HostFace {
  DWORD a, b, c;
  DWORD groups = 1;
  MtlID material = 0;
};

// Texture vertex i lies at point i, seen from above.
inline Mesh MeshOf(const std::vector<Point3>& points, const std::vector<HostFace>& faces) {
  Mesh mesh;
  mesh.setNumVerts(static_cast<int>(points.size()));
  mesh.setNumTVerts(static_cast<int>(points.size()));
  mesh.setNumFaces(static_cast<int>(faces.size()));
  mesh.setNumTVFaces(static_cast<int>(faces.size()));
  for (int i = 0; i < mesh.getNumVerts(); ++i) {
    mesh.setVert(i, points[static_cast<size_t>(i)]);
    mesh.setTVert(i, {points[static_cast<size_t>(i)].x, points[static_cast<size_t>(i)].y, 0});
  }
  for (int f = 0; f < mesh.getNumFaces(); ++f) {
    const HostFace& face = faces[static_cast<size_t>(f)];
    mesh.faces[f].setVerts(face.a, face.b, face.c);
    mesh.faces[f].setSmGroup(face.groups);
    mesh.faces[f].setMatID(face.material);
    mesh.tvFace[f].setTVerts(face.a, face.b, face.c);
  }
  return mesh;
}

inline Mesh TriangleMesh() { return MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}}); }

inline Mesh WithoutTextureVertices(Mesh mesh) {
  mesh.setNumTVerts(0);
  return mesh;
}

inline Matrix3 MovedBy(float x, float y, float z) {
  return {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {x, y, z}};
}

inline Matrix3 ScaledBy(float x, float y, float z) {
  return {{x, 0, 0}, {0, y, 0}, {0, 0, z}, {0, 0, 0}};
}

// +90 degrees about z, then moved.
inline Matrix3 QuarterTurnAt(float x, float y, float z) {
  return {{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {x, y, z}};
}

// Of another class than the standard and the multi/sub-object material.
class BlendMaterial final : public Mtl {
 public:
  explicit BlendMaterial(const char* name) { SetName(name); }
  Class_ID ClassID() override { return Class_ID(0x250, 0); }
};

class NoiseMap final : public Texmap {
 public:
  Class_ID ClassID() override { return Class_ID(0x234, 0); }
};

// One list of weights for each vertex.
inline host::SkinWeights Weights(const std::vector<std::vector<host::BoneWeight>>& vertices) {
  host::SkinWeights result;
  for (const auto& vertex : vertices) {
    result.starts.push_back(static_cast<uint32_t>(result.weights.size()));
    result.weights.insert(result.weights.end(), vertex.begin(), vertex.end());
  }
  result.starts.push_back(static_cast<uint32_t>(result.weights.size()));
  return result;
}

// Where everything that stands below the node is handed over, parents first.
inline void CollectNodes(INode& node, std::vector<INode*>& nodes) {
  nodes.push_back(&node);
  for (int i = 0; i < node.NumberOfChildren(); ++i) CollectNodes(*node.GetChildNode(i), nodes);
}

inline std::vector<INode*> AllNodes(host::Scene& scene) {
  std::vector<INode*> nodes;
  CollectNodes(scene.Root(), nodes);
  return nodes;
}

}  // namespace orv
