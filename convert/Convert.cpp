#include "convert/Convert.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "convert/Parts.h"
#include "platform/ExString.h"

namespace orv::convert {

namespace {

// Numbered with 16 bits, and one is kept for what stands still.
constexpr size_t kMostBones = 65535;

void Place(Json& node, const Pose& pose) {
  const auto narrow = [](double value) { return static_cast<float>(value); };
  const Rotation& q = pose.rotation;
  node["translation"] = {narrow(pose.position.x), narrow(pose.position.y), narrow(pose.position.z)};
  node["rotation"] = {narrow(q.x), narrow(q.y), narrow(q.z), narrow(q.w)};
  if (pose.mirrored) node["scale"] = {-1, -1, -1};
}

class SceneBuilder {
 public:
  SceneBuilder(const Source& source, Messages& messages)
      : m_source(source),
        m_file(source.mesh),
        m_mesh(source.mesh.mesh),
        m_messages(messages),
        m_textures(source.textureFolder, m_document, messages) {}

  GlbDocument Build() {
    FindUnit();
    FindBones();
    AddPrimitives();
    AddBoneNodes();
    AddMeshNodes();
    AddAttachments();
    if (m_source.animation) {
      AddAnimation(m_document, *m_source.animation, m_metresPerUnit, m_bones, m_messages);
    }
    return std::move(m_document);
  }

 private:
  // What stands below one node.
  struct Part {
    int32_t bone = -1;  // whose space it is in; -1: the world's
    bool skinned = false;
    auto operator<=>(const Part&) const = default;
  };

  void FindUnit() {
    const AnimationFile* const animation = m_source.animation;
    const bool isStated =
        animation && std::isfinite(animation->masterScale) && animation->masterScale > 0;
    m_metresPerUnit = isStated ? animation->masterScale : m_source.metresPerUnit.value_or(1);
    if (isStated || m_source.metresPerUnit || (m_file.bones.empty() && !animation)) return;
    m_messages.notes.push_back(
        "no unit is stated, the bones' positions are taken for metres (see --unit)");
  }

  void FindBones() {
    if (!m_file.bones.empty()) {
      m_bones = RigidBones(m_file, m_metresPerUnit, m_messages);
    } else if (!m_mesh.influences.empty()) {
      m_bones = SkinBones(m_mesh, m_source.animation, m_metresPerUnit, m_messages);
      m_skinBoneCount = m_bones.size();
    }
    m_modelBoneCount = m_bones.size();
    if (m_skinBoneCount > kMostBones) {
      m_skinBoneCount = 0;
      m_messages.mended.push_back("more than 65535 bones: the skin is left out");
    }
    if (m_source.animation) {
      JoinAnimation(*m_source.animation, m_metresPerUnit, m_bones, m_messages);
    }
  }

  using BoneNumbers = std::unordered_map<std::string, size_t>;  // by name in lower case

  // The first bone of each name.
  BoneNumbers ModelBones(size_t count) const {
    BoneNumbers bones;
    for (size_t i = 0; i < count; ++i) {
      bones.try_emplace(LowerCase(m_bones[i].name), i);
    }
    return bones;
  }

  int32_t BoneOf(size_t chunk, const BoneNumbers& bones) {
    const std::string& name = m_file.chunks[chunk].boneName;
    if (name.empty()) return -1;
    if (const auto found = bones.find(LowerCase(name)); found != bones.end())
      return static_cast<int32_t>(found->second);
    m_messages.mended.push_back("chunk " + std::to_string(chunk) + ": its bone " + name +
                                " is not in the file, put at the origin");
    return -1;
  }

  void AddPrimitives() {
    SkinWeights skin(ModelBones(m_skinBoneCount), static_cast<uint16_t>(m_skinBoneCount));
    const BoneNumbers rigid = ModelBones(m_skinBoneCount == 0 ? m_modelBoneCount : 0);
    for (size_t i = 0; i < m_mesh.chunks.size(); ++i) {
      VertexJoints joints;
      if (m_skinBoneCount > 0) joints = skin.Of(m_mesh, i, m_messages);
      std::optional<Json> primitive =
          AddPrimitive(m_document, m_mesh.chunks[i], i, joints, m_messages);
      if (!primitive) continue;
      (*primitive)["material"] = MaterialNumber(m_mesh.chunks[i].material);
      m_parts[{BoneOf(i, rigid), !joints.empty()}].push_back(std::move(*primitive));
    }
    if (!skin.NeedsStillJoint()) return;
    m_stillBone = m_bones.size();
    m_bones.push_back({m_source.name + " still", -1, Pose{}, -1});
  }

  // Pieces of a chunk that was too large share theirs.
  size_t MaterialNumber(const GenericMaterial& source) {
    Json material = MaterialOf(source, m_textures, m_messages);
    const auto [known, isNew] = m_materials.try_emplace(material.dump());
    if (isNew) known->second = m_document.Add("materials", std::move(material));
    return known->second;
  }

  void AddBoneNodes() {
    for (const SceneBone& bone : m_bones) {
      const Pose local =
          bone.parent < 0
              ? bone.rest
              : Compose(Inverse(m_bones[static_cast<size_t>(bone.parent)].rest), bone.rest);
      Json node = {{"name", Utf8(bone.name)}};
      Place(node, local);
      m_document.Add("nodes", std::move(node));
    }
    std::vector<size_t> tops;
    for (size_t i = 0; i < m_bones.size(); ++i) {
      if (m_bones[i].parent < 0) {
        tops.push_back(i);
      } else {
        AddChild(static_cast<size_t>(m_bones[i].parent), i);
      }
    }
    // The joints of a skin need a node above them all.
    if (m_skinBoneCount > 0 && tops.size() > 1) {
      tops = {
          m_document.Add("nodes", {{"name", Utf8(m_source.name + " bones")}, {"children", tops}})};
    }
    for (const size_t top : tops) m_document.AddRoot(top);
  }

  void AddChild(size_t parent, size_t child) {
    m_document.At("nodes", parent)["children"].push_back(child);
  }

  void AddMeshNodes() {
    for (auto& [part, primitives] : m_parts) {
      std::string name = m_source.name;
      if (part.bone >= 0) name += " " + m_bones[static_cast<size_t>(part.bone)].name;
      const size_t mesh =
          m_document.Add("meshes", {{"name", Utf8(name)}, {"primitives", std::move(primitives)}});
      Json node = {{"name", Utf8(name)}, {"mesh", mesh}};
      if (part.skinned) node["skin"] = AddSkin();
      const size_t number = m_document.Add("nodes", std::move(node));
      if (part.bone >= 0) {
        AddChild(static_cast<size_t>(part.bone), number);
      } else {
        m_document.AddRoot(number);
      }
    }
  }

  size_t AddSkin() {
    std::vector<size_t> joints;
    for (size_t i = 0; i < m_skinBoneCount; ++i) joints.push_back(i);
    if (m_stillBone) joints.push_back(*m_stillBone);
    std::vector<float> matrices;
    for (const size_t joint : joints) {
      const std::array<float, 16> matrix = MatrixOf(Inverse(m_bones[joint].rest));
      matrices.insert(matrices.end(), matrix.begin(), matrix.end());
    }
    const size_t accessor = m_document.AddFloats(matrices, joints.size(), "MAT4", Use::Other);
    return m_document.Add("skins", {{"inverseBindMatrices", accessor}, {"joints", joints}});
  }

  void AddAttachments() {
    for (const AttachmentPoint& point : m_mesh.attachmentPoints) {
      const std::optional<Pose> pose = PoseFrom(point.position, point.rotation);
      if (!pose) {
        m_messages.mended.push_back("attachment point " + point.name +
                                    ": has no usable rotation or position, stands at the origin");
      }
      Json node = {{"name", Utf8(point.name)}};
      Place(node, pose.value_or(Pose{}));
      m_document.AddRoot(m_document.Add("nodes", std::move(node)));
    }
  }

  const Source& m_source;
  const IndexedMeshFile& m_file;
  const IndexedMesh& m_mesh;
  Messages& m_messages;
  GlbDocument m_document;
  Textures m_textures;
  double m_metresPerUnit = 1;
  std::vector<SceneBone> m_bones;  // bone i is node i
  size_t m_modelBoneCount = 0;     // those first bones that the model has
  size_t m_skinBoneCount = 0;      // the same in a skin, where they are the joints
  std::optional<size_t> m_stillBone;
  std::map<Part, Json> m_parts;  // arrays of primitives
  std::map<std::string, size_t> m_materials;
};

}  // namespace

GlbDocument Convert(const Source& source, Messages& messages) {
  return SceneBuilder(source, messages).Build();
}

}  // namespace orv::convert
