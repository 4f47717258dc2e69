#include "convert/Parts.h"

#include <optional>
#include <unordered_map>

#include "platform/ExString.h"

namespace orv::convert {

namespace {

// The entries of one bone, one for each chunk that lists it, or more.
struct BoneEntry {
  size_t chunk = 0;
  const GenericBoneInfluence* bone = nullptr;  // not owned
};

struct TreeBone {
  const GenericBoneInfluence* header = nullptr;
  std::vector<BoneEntry> entries;
  int32_t parent = -1;
  bool parentMissing = false;  // it has one that the file lacks
  Pose local;                  // relative to the parent
  std::optional<size_t> top;   // the bone that it stands below and that stands below none
  Pose belowTop;               // relative to that one
  Pose world;                  // a top bone's; of the others, once all are placed
};

class SkinTree {
 public:
  SkinTree(const IndexedMesh& mesh, Messages& messages) : m_mesh(mesh), m_messages(messages) {
    CollectBones();
    for (TreeBone& bone : m_bones) ReadHeader(bone);
    CutCircles();
  }

  void Place(const AnimationFile* animation, double metresPerUnit) {
    for (size_t i = 0; i < m_bones.size(); ++i) FindTop(i);
    const auto fromVertices = TopsFromVertices();
    const auto fromAnimation = FirstFrame(animation, metresPerUnit);
    for (size_t i = 0; i < m_bones.size(); ++i) {
      if (m_bones[i].parent < 0) PlaceTop(m_bones[i], fromVertices[i], fromAnimation);
    }
    for (TreeBone& bone : m_bones) {
      if (bone.parent >= 0) bone.world = Compose(m_bones[*bone.top].world, bone.belowTop);
    }
  }

  std::vector<SceneBone> Result() const {
    std::vector<SceneBone> result;
    for (const TreeBone& bone : m_bones) {
      Pose rest = bone.world;
      rest.mirrored = false;  // the animation's quaternions cannot mirror either
      result.push_back({bone.header->m_name, bone.parent, rest, -1});
    }
    return result;
  }

 private:
  void CollectBones() {
    for (size_t chunk = 0; chunk < m_mesh.influences.size(); ++chunk) {
      for (const auto& bone : m_mesh.influences[chunk]->m_bones) {
        const auto [place, isNew] = m_byName.try_emplace(LowerCase(bone->m_name), m_bones.size());
        if (isNew) m_bones.emplace_back().header = bone.get();
        m_bones[place->second].entries.push_back({chunk, bone.get()});
      }
    }
  }

  void ReadHeader(TreeBone& bone) {
    const GenericBoneInfluence& header = *bone.header;
    if (!header.m_parentName.empty()) {
      const auto parent = m_byName.find(LowerCase(header.m_parentName));
      bone.parentMissing = parent == m_byName.end();
      if (!bone.parentMissing) bone.parent = static_cast<int32_t>(parent->second);
    }
    const std::optional<Pose> local = PoseFrom(header.m_position, header.m_rotation);
    if (local) bone.local = *local;
    if (!local) {
      m_messages.mended.push_back("bone " + header.m_name +
                                  ": has no usable rotation or position, stands at its parent's");
    }
  }

  // The topmost bone of a circle is the one that is met twice first.
  void CutCircles() {
    std::vector<size_t> seenFrom(m_bones.size(), SIZE_MAX);
    for (size_t i = 0; i < m_bones.size(); ++i) {
      size_t at = i;
      while (seenFrom[at] == SIZE_MAX) {
        seenFrom[at] = i;
        if (m_bones[at].parent < 0) break;
        at = static_cast<size_t>(m_bones[at].parent);
      }
      if (seenFrom[at] != i || m_bones[at].parent < 0) continue;
      m_bones[at].parent = -1;
      m_messages.mended.push_back("bone " + m_bones[at].header->m_name +
                                  ": stands below itself, now below nothing");
    }
  }

  void FindTop(size_t bone) {
    std::vector<size_t> below;
    size_t at = bone;
    for (; !m_bones[at].top && m_bones[at].parent >= 0;
         at = static_cast<size_t>(m_bones[at].parent)) {
      below.push_back(at);
    }
    if (!m_bones[at].top) m_bones[at].top = at;
    for (; !below.empty(); below.pop_back()) {
      TreeBone& next = m_bones[below.back()];
      const TreeBone& parent = m_bones[static_cast<size_t>(next.parent)];
      next.top = parent.top;
      next.belowTop = Compose(parent.belowTop, next.local);
    }
  }

  // Of the top bones below something that the file lacks: where the vertices of the first bone
  // that shows it put them.
  std::vector<std::optional<Pose>> TopsFromVertices() const {
    std::vector<std::optional<Pose>> tops(m_bones.size());
    for (const TreeBone& bone : m_bones) {
      if (!m_bones[*bone.top].parentMissing || tops[*bone.top]) continue;
      if (const std::optional<Pose> rest = PoseFrom(VerticesOf(bone))) {
        tops[*bone.top] = Compose(*rest, Inverse(bone.belowTop));
      }
    }
    return tops;
  }

  // The vertices that follow the bone: they are stored in the world's space and in the bone's.
  std::vector<PointPair> VerticesOf(const TreeBone& bone) const {
    std::vector<PointPair> pairs;
    for (const BoneEntry& entry : bone.entries) {
      const auto& vertices = m_mesh.chunks[entry.chunk].vertices;
      for (const VertexWeight& weight : entry.bone->m_weights) {
        if (weight.vertex >= vertices.size()) continue;
        pairs.push_back({vertices[weight.vertex].Position(), weight.offset});
      }
    }
    return pairs;
  }

  using PosesByName = std::unordered_map<std::string, Pose>;  // names in lower case

  static PosesByName FirstFrame(const AnimationFile* animation, double metresPerUnit) {
    PosesByName poses;
    if (!animation || animation->frameCount == 0) return poses;
    for (size_t i = 0; i < animation->bones.size(); ++i) {
      const BonePose& pose = animation->Frame(0)[i];
      if (const auto world = PoseFrom(pose.position, pose.rotation, metresPerUnit)) {
        poses.try_emplace(LowerCase(animation->bones[i].name), *world);
      }
    }
    return poses;
  }

  void PlaceTop(TreeBone& bone, const std::optional<Pose>& fromVertices,
                const PosesByName& fromAnimation) {
    bone.world = bone.local;
    if (!bone.parentMissing) return;
    if (fromVertices) {
      bone.world = *fromVertices;
      return;
    }
    if (const auto found = fromAnimation.find(LowerCase(bone.header->m_name));
        found != fromAnimation.end()) {
      bone.world = found->second;
      return;
    }
    m_messages.notes.push_back("bone " + bone.header->m_name + ": its parent " +
                               bone.header->m_parentName +
                               " is not in the file and is taken to stand at the origin");
  }

  const IndexedMesh& m_mesh;
  Messages& m_messages;
  std::vector<TreeBone> m_bones;
  std::unordered_map<std::string, size_t> m_byName;
};

// The bones of a name, in their order, each given out once.
class UntakenBones {
 public:
  explicit UntakenBones(const std::vector<SceneBone>& bones) {
    for (size_t i = bones.size(); i-- > 0;) m_left[LowerCase(bones[i].name)].push_back(i);
  }

  std::optional<size_t> Take(const std::string& name) {
    const auto found = m_left.find(LowerCase(name));
    if (found == m_left.end() || found->second.empty()) return std::nullopt;
    const size_t bone = found->second.back();
    found->second.pop_back();
    return bone;
  }

 private:
  std::unordered_map<std::string, std::vector<size_t>> m_left;
};

}  // namespace

std::vector<SceneBone> RigidBones(const IndexedMeshFile& file, double metresPerUnit,
                                  Messages& messages) {
  std::vector<SceneBone> bones;
  for (size_t i = 0; i < file.bones.size(); ++i) {
    const BonePose& stored = file.bonePoses[i];
    const std::optional<Pose> pose = PoseFrom(stored.position, stored.rotation, metresPerUnit);
    if (!pose) {
      messages.mended.push_back("bone " + file.bones[i].name +
                                ": has no usable rotation or position, stands at its parent's");
    }
    const int32_t parent = file.bones[i].parent;
    const Pose local = pose.value_or(Pose{});
    const Pose world = parent < 0 ? local : Compose(bones[static_cast<size_t>(parent)].rest, local);
    bones.push_back({file.bones[i].name, parent, world, -1});
  }
  return bones;
}

std::vector<SceneBone> SkinBones(const IndexedMesh& mesh, const AnimationFile* animation,
                                 double metresPerUnit, Messages& messages) {
  SkinTree tree(mesh, messages);
  tree.Place(animation, metresPerUnit);
  return tree.Result();
}

void JoinAnimation(const AnimationFile& animation, double metresPerUnit,
                   std::vector<SceneBone>& bones, Messages& messages) {
  UntakenBones known(bones);
  const bool hadBones = !bones.empty();
  size_t added = 0;
  std::vector<size_t> placeOfTrack;
  for (size_t track = 0; track < animation.bones.size(); ++track) {
    const BoneNode& node = animation.bones[track];
    std::optional<size_t> place = known.Take(node.name);
    if (!place) {
      std::optional<Pose> rest;
      if (animation.poses.size() > track) {
        const BonePose& first = animation.poses[track];
        rest = PoseFrom(first.position, first.rotation, metresPerUnit);
      }
      ++added;
      place = bones.size();
      bones.push_back({node.name, -1, rest.value_or(Pose{}), -1});
    }
    bones[*place].track = static_cast<int32_t>(track);
    bones[*place].parent =
        node.parent < 0 ? -1 : static_cast<int32_t>(placeOfTrack[static_cast<size_t>(node.parent)]);
    placeOfTrack.push_back(*place);
  }
  if (hadBones && added > 0) {
    messages.notes.push_back(std::to_string(added) + " of " +
                             std::to_string(animation.bones.size()) +
                             " bones are in the animation only");
  }
}

}  // namespace orv::convert
