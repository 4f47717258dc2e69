#include "readers/MaxExInfluence.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "modstack.h"
#include "phyexp.h"
#include "readers/MaxExHost.h"

namespace orv {
namespace {

Matrix3 RestPose(INode* node) { return WithoutScale(node->GetObjTMAfterWSM(0, nullptr)); }

// Null when the bone stands right below the scene root.
INode* ParentBelowRoot(INode* bone) {
  INode* const parent = bone->GetParentNode();
  return parent && !parent->IsRootNode() ? parent : nullptr;
}

// Relative to the parent, which can be the scene root.
Matrix3 RelativeRestPose(INode* bone) {
  INode* const parent = bone->GetParentNode();
  return parent ? RestPose(bone) * Inverse(RestPose(parent)) : RestPose(bone);
}

// Writes down which bones move a vertex. Each bone's rest pose is looked up once.
class WeightCollector {
 public:
  WeightCollector(GenericMeshInfluence& influence, float scale)
      : m_influence(influence), m_scale(scale) {}

  void Add(uint32_t vertex, const Point3& world, INode* bone, float weight) {
    const BoneSpace& space = SpaceOf(bone);
    space.influence->m_weights.push_back(
        {vertex, weight, ToVec3((world * space.fromWorld) * m_scale)});
  }

 private:
  struct BoneSpace {
    GenericBoneInfluence* influence;
    Matrix3 fromWorld;
  };

  const BoneSpace& SpaceOf(INode* bone) {
    const auto [entry, isNew] = m_spaces.try_emplace(bone);
    if (isNew) entry->second = {FindOrAdd(bone), Inverse(RestPose(bone))};
    return entry->second;
  }

  // Bones are told apart by name: two nodes of one name make one bone.
  GenericBoneInfluence* FindOrAdd(INode* bone) {
    if (GenericBoneInfluence* known = m_influence.FindBone(RecordName(bone->GetName()))) {
      return known;
    }
    m_influence.AddBone(std::make_unique<MaxExGenericBoneInfluence>(bone, m_scale));
    return m_influence.m_bones.back().get();
  }

  GenericMeshInfluence& m_influence;
  float m_scale;
  std::unordered_map<INode*, BoneSpace> m_spaces;
};

using NodeWeights = std::vector<std::pair<INode*, float>>;

// Each node once, in the order of first mention, with the sum of its weights.
void SumWeights(IPhyBlendedRigidVertex& vertex, NodeWeights& sums) {
  sums.clear();
  for (int k = 0; k < vertex.GetNumberNodes(); ++k) {
    INode* const node = vertex.GetNode(k);
    if (!node) continue;
    const auto known = std::find_if(sums.begin(), sums.end(),
                                    [node](const auto& sum) { return sum.first == node; });
    if (known == sums.end()) {
      sums.emplace_back(node, vertex.GetWeight(k));
    } else {
      known->second += vertex.GetWeight(k);
    }
  }
}

void ReadWeights(IPhyVertexExport& vertex, INode* node, NodeWeights& weights) {
  switch (vertex.GetVertexType()) {
    case RIGID_TYPE:
      weights.assign(1, {static_cast<IPhyRigidVertex&>(vertex).GetNode(), 1.0f});
      if (!weights.front().first) weights.clear();
      break;
    case RIGID_BLENDED_TYPE:
      SumWeights(static_cast<IPhyBlendedRigidVertex&>(vertex), weights);
      break;
    default:
      throw MakeFinding("skin-vertex-not-rigid", node->GetName());
  }
}

IPhyContextExport* OpenContext(Modifier* physique, INode* node) {
  auto* const access = static_cast<IPhysiqueExport*>(physique->GetInterface(I_PHYINTERFACE));
  return access ? access->GetContextInterface(node) : nullptr;
}

}  // namespace

MaxExGenericBoneInfluence::MaxExGenericBoneInfluence(INode* bone, float scale) {
  m_name = RecordName(bone->GetName());
  if (INode* parent = ParentBelowRoot(bone)) m_parentName = RecordName(parent->GetName());
  const Matrix3 relative = RelativeRestPose(bone);
  m_position = ToVec3(relative.GetTrans() * scale);
  m_rotation = RotationPart(relative);
}

MaxExGenericMeshInfluence::MaxExGenericMeshInfluence(Modifier* physique, const Mesh& mesh,
                                                     INode* node, float scale) {
  IPhyContextExport* const context = OpenContext(physique, node);
  if (!context) return;
  context->ConvertToRigid(TRUE);
  const Matrix3 toWorld = node->GetObjTMAfterWSM(0, nullptr);
  const int vertexCount = std::min(context->GetNumberVertices(), mesh.getNumVerts());
  WeightCollector collector(*this, scale);
  NodeWeights weights;
  for (int i = 0; i < vertexCount; ++i) {
    IPhyVertexExport* const vertex = context->GetVertexInterface(i);
    if (!vertex) continue;
    ReadWeights(*vertex, node, weights);
    const Point3 world = mesh.verts[i] * toWorld;
    for (const auto& [bone, weight] : weights) {
      collector.Add(static_cast<uint32_t>(i), world, bone, weight);
    }
  }
}

Modifier* FindPhysique(INode* node) {
  Object* object = node->GetObjectRef();
  while (object && object->SuperClassID() == GEN_DERIVOB_CLASS_ID) {
    auto* const derived = static_cast<IDerivedObject*>(object);
    for (int i = 0; i < derived->NumModifiers(); ++i) {
      Modifier* const modifier = derived->GetModifier(i);
      if (modifier->ClassID() == Class_ID(PHYSIQUE_CLASS_ID_A, PHYSIQUE_CLASS_ID_B)) {
        return modifier;
      }
    }
    object = derived->GetObjRef();
  }
  return nullptr;
}

}  // namespace orv
