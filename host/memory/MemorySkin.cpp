#include "host/memory/MemorySkin.h"

#include <cmath>

namespace orv::host {
namespace {

constexpr int kDeformableType = 2;

// A transform as a weighted sum of others.
class Blend {
 public:
  void Add(const Matrix3& matrix, double weight) {
    for (int row = 0; row < 4; ++row) {
      const Point3 values = matrix.GetRow(row);
      for (int column = 0; column < 3; ++column) m_rows[row][column] += weight * values[column];
    }
  }
  Point3 MovePoint(const Point3& p) const {
    double sum[3];
    Move(p, sum);
    for (int i = 0; i < 3; ++i) sum[i] += m_rows[3][i];
    return Narrow(sum, 1);
  }
  // Unit length, unless it is taken to nothing.
  Point3 MoveNormal(const Point3& p) const {
    double sum[3];
    Move(p, sum);
    const double length = std::sqrt(sum[0] * sum[0] + sum[1] * sum[1] + sum[2] * sum[2]);
    return Narrow(sum, length > 0 ? length : 1);
  }

 private:
  void Move(const Point3& p, double (&sum)[3]) const {
    for (int i = 0; i < 3; ++i) {
      sum[i] = p.x * m_rows[0][i] + p.y * m_rows[1][i] + p.z * m_rows[2][i];
    }
  }
  static Point3 Narrow(const double (&v)[3], double divisor) {
    return {static_cast<float>(v[0] / divisor), static_cast<float>(v[1] / divisor),
            static_cast<float>(v[2] / divisor)};
  }

  double m_rows[4][3] = {};
};

}  // namespace

MemoryPhysique::MemoryPhysique(INode& owner, std::vector<SkinBone> bones, SkinWeights weights)
    : m_owner(owner), m_bones(std::move(bones)), m_weights(std::move(weights)) {
  m_blendedVertex.bones = &m_bones;
}

void* MemoryPhysique::GetInterface(ULONG id) {
  return id == I_PHYINTERFACE ? static_cast<IPhysiqueExport*>(this) : nullptr;
}

IPhyContextExport* MemoryPhysique::GetContextInterface(INode* node) {
  return node == &m_owner ? this : nullptr;
}

int MemoryPhysique::DeformableVertex::GetVertexType() { return kDeformableType; }

INode* MemoryPhysique::BlendedVertex::GetNode(int i) {
  return (*bones)[weights[static_cast<size_t>(i)].bone].node;
}

IPhyVertexExport* MemoryPhysique::GetVertexInterface(int i) {
  if (!m_rigid) return &m_deformable;
  const std::span<const BoneWeight> weights = m_weights.Of(static_cast<size_t>(i));
  if (weights.size() == 1) {
    m_rigidVertex.node = m_bones[weights[0].bone].node;
    return &m_rigidVertex;
  }
  m_blendedVertex.weights = weights;
  return &m_blendedVertex;
}

SkinnedObject::SkinnedObject(INode& owner, Mesh mesh, std::vector<SkinBone> bones,
                             SkinWeights weights)
    : m_owner(owner),
      m_physique(owner, std::move(bones), std::move(weights)),
      m_posed(std::move(mesh)) {
  Mesh& posed = m_posed.mesh;
  posed.buildNormals();
  m_restPositions.assign(posed.verts, posed.verts + posed.getNumVerts());
  m_firstNormal.reserve(m_restPositions.size());
  for (size_t v = 0; v < m_restPositions.size(); ++v) {
    m_firstNormal.push_back(static_cast<uint32_t>(m_restNormals.size()));
    for (const RNormal& normal : NormalsOf(v)) m_restNormals.push_back(normal.getNormal());
  }
}

std::span<RNormal> SkinnedObject::NormalsOf(size_t vertex) {
  RVertex& record = m_posed.mesh.getRVert(static_cast<int>(vertex));
  const DWORD count = record.rFlags & NORCT_MASK;
  return {count > 1 ? record.ern : &record.rn, count};
}

TriObject& SkinnedObject::PosedAt(TimeValue t) {
  if (m_isPosed && m_posedAt == t) return m_posed;
  const Matrix3 toOwner = Inverse(m_owner.GetObjectTM(t));
  std::vector<Matrix3> poses;
  for (const SkinBone& bone : m_physique.Bones()) {
    poses.push_back(bone.toBone * bone.node->GetNodeTM(t) * toOwner);
  }
  for (size_t v = 0; v < m_restPositions.size(); ++v) PoseVertex(v, poses);
  m_posedAt = t;
  m_isPosed = true;
  return m_posed;
}

void SkinnedObject::PoseVertex(size_t vertex, const std::vector<Matrix3>& poses) {
  const std::span<const BoneWeight> weights = m_physique.WeightsOf(vertex);
  Blend blend;
  for (const BoneWeight& weight : weights) blend.Add(poses[weight.bone], weight.weight);
  if (weights.empty()) blend.Add(Matrix3(TRUE), 1);  // no bone: it stays where it is
  m_posed.mesh.verts[vertex] = blend.MovePoint(m_restPositions[vertex]);
  size_t rest = m_firstNormal[vertex];
  for (RNormal& normal : NormalsOf(vertex)) {
    normal.setNormal(blend.MoveNormal(m_restNormals[rest++]));
  }
}

}  // namespace orv::host
