#pragma once

#include <utility>
#include <vector>

#include "host/memory/MeshAssembler.h"
#include "modstack.h"
#include "phyexp.h"
#include "triobj.h"

namespace orv::host {

// A bone of a skin.
struct SkinBone {
  INode* node = nullptr;
  Matrix3 toBone;  // takes the mesh's vertices at rest into the bone's space
};

// The Physique modifier of one node: rigid for vertices of one bone, blended-rigid otherwise.
class MemoryPhysique final : public Modifier, private IPhysiqueExport, private IPhyContextExport {
 public:
  MemoryPhysique(INode& owner, std::vector<SkinBone> bones, SkinWeights weights);

  // Stands for an assignment that the host cannot make rigid: the vertices stay deformable.
  bool staysDeformable = false;

  Class_ID ClassID() override { return Class_ID(PHYSIQUE_CLASS_ID_A, PHYSIQUE_CLASS_ID_B); }
  void* GetInterface(ULONG id) override;

  const std::vector<SkinBone>& Bones() const { return m_bones; }
  std::span<const BoneWeight> WeightsOf(size_t vertex) const { return m_weights.Of(vertex); }

 private:
  struct DeformableVertex final : IPhyVertexExport {
    int GetVertexType() override;
  };
  struct RigidVertex final : IPhyRigidVertex {
    INode* node = nullptr;
    int GetVertexType() override { return RIGID_TYPE; }
    INode* GetNode() override { return node; }
  };
  struct BlendedVertex final : IPhyBlendedRigidVertex {
    const std::vector<SkinBone>* bones = nullptr;
    std::span<const BoneWeight> weights;
    int GetVertexType() override { return RIGID_BLENDED_TYPE; }
    int GetNumberNodes() override { return static_cast<int>(weights.size()); }
    INode* GetNode(int i) override;
    float GetWeight(int i) override { return weights[static_cast<size_t>(i)].weight; }
  };

  IPhyContextExport* GetContextInterface(INode* node) override;
  void ConvertToRigid(BOOL convert) override { m_rigid = convert && !staysDeformable; }
  int GetNumberVertices() override { return static_cast<int>(m_weights.starts.size()) - 1; }
  IPhyVertexExport* GetVertexInterface(int i) override;

  INode& m_owner;
  std::vector<SkinBone> m_bones;
  SkinWeights m_weights;
  bool m_rigid = false;
  DeformableVertex m_deformable;
  RigidVertex m_rigidVertex;
  BlendedVertex m_blendedVertex;
};

// A skinned node's object: the mesh at rest with the modifier on it. It keeps one mesh, which it
// poses anew, and of the rest only what posing changes.
class SkinnedObject final : public IDerivedObject {
 public:
  SkinnedObject(INode& owner, Mesh mesh, std::vector<SkinBone> bones, SkinWeights weights);

  MemoryPhysique& Physique() { return m_physique; }
  // The mesh as its bones stand at `t`, in the owner's object space.
  TriObject& PosedAt(TimeValue t);
  // What was posed is void: the scene has changed.
  void Invalidate() { m_isPosed = false; }

  Class_ID ClassID() override { return Class_ID(GEN_DERIVOB_CLASS_ID, 0); }
  int NumModifiers() override { return 1; }
  Modifier* GetModifier(int i) override { return i == 0 ? &m_physique : nullptr; }
  Object* GetObjRef() override { return nullptr; }  // at rest the mesh is no object of its own
  int CanConvertToType(Class_ID type) override { return m_posed.CanConvertToType(type); }
  Object* ConvertToType(TimeValue t, Class_ID type) override {
    return CanConvertToType(type) ? &PosedAt(t) : nullptr;
  }

 private:
  void PoseVertex(size_t vertex, const std::vector<Matrix3>& poses);
  std::span<RNormal> NormalsOf(size_t vertex);

  INode& m_owner;
  MemoryPhysique m_physique;
  TriObject m_posed;
  std::vector<Point3> m_restPositions;
  std::vector<Point3> m_restNormals;    // the mesh's, vertex by vertex
  std::vector<uint32_t> m_firstNormal;  // by vertex
  TimeValue m_posedAt = 0;
  bool m_isPosed = false;
};

}  // namespace orv::host
