#include "motion/SceneMotion.h"

#include <cmath>
#include <cstring>
#include <stdexcept>

namespace orv {
namespace {

using Quaternion = aiQuaterniont<double>;

const Matrix kToZUp(1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1);    // (x, -z, y)
const Matrix kFromZUp(1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1);  // (x, z, -y)

Matrix Wide(const aiMatrix4x4& m) {
  return {m.a1, m.a2, m.a3, m.a4, m.b1, m.b2, m.b3, m.b4,
          m.c1, m.c2, m.c3, m.c4, m.d1, m.d2, m.d3, m.d4};
}
Point Wide(const aiVector3D& v) { return {v.x, v.y, v.z}; }
Quaternion Wide(const aiQuaternion& q) {
  Quaternion wide(q.w, q.x, q.y, q.z);
  return wide.Normalize();
}

Point Between(const Point& a, const Point& b, double t) { return a + (b - a) * t; }
Quaternion Between(const Quaternion& a, const Quaternion& b, double t) {
  Quaternion result;
  Quaternion::Interpolate(result, a, b, t);
  return result.Normalize();
}

// The first or the last one outside of the keys.
template <typename Key>
auto ValueAt(const Key* keys, unsigned count, double ticks) {
  unsigned next = 0;
  while (next < count && keys[next].mTime <= ticks) ++next;
  if (next == 0) return Wide(keys[0].mValue);
  const Key& before = keys[next - 1];
  if (next == count) return Wide(before.mValue);
  return Between(Wide(before.mValue), Wide(keys[next].mValue),
                 (ticks - before.mTime) / (keys[next].mTime - before.mTime));
}

bool SameBits(const aiVector3D& a, const aiVector3D& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

}  // namespace

Matrix MatrixOf(const std::array<float, 7>& pose) {
  const auto [x, y, z, qx, qy, qz, qw] = pose;
  Matrix matrix(Quaternion(qw, -qx, -qy, -qz).GetMatrix());
  matrix.a4 = x;
  matrix.b4 = y;
  matrix.c4 = z;
  return matrix;
}

WorldMatrices Scaled(WorldMatrices world, double factor) {
  Matrix scaling;
  scaling.a1 = scaling.b2 = scaling.c3 = factor;
  for (auto& [name, matrix] : world) matrix = scaling * matrix;
  return world;
}

SceneMotion::SceneMotion(const std::string& path) : m_scene(m_importer.ReadFile(path, 0)) {
  if (!m_scene) throw std::runtime_error(path + ": " + m_importer.GetErrorString());
  if (m_scene->mNumAnimations > 0) m_animation = m_scene->mAnimations[0];
  for (unsigned i = 0; m_animation && i < m_animation->mNumChannels; ++i) {
    m_channels[m_animation->mChannels[i]->mNodeName.C_Str()] = m_animation->mChannels[i];
  }
  CollectMeshes(*m_scene->mRootNode);
}

double SceneMotion::Seconds() const {
  return m_animation ? m_animation->mDuration / m_animation->mTicksPerSecond : 0;
}

void SceneMotion::CollectMeshes(const aiNode& node) {
  for (unsigned i = 0; i < node.mNumMeshes; ++i) {
    m_meshes.push_back(m_scene->mMeshes[node.mMeshes[i]]);
  }
  for (unsigned i = 0; i < node.mNumChildren; ++i) CollectMeshes(*node.mChildren[i]);
}

WorldMatrices SceneMotion::At(double seconds) const {
  WorldMatrices world;
  const double ticks = m_animation ? seconds * m_animation->mTicksPerSecond : 0;
  Walk(*m_scene->mRootNode, Matrix(), ticks, world);
  return world;
}

void SceneMotion::Walk(const aiNode& node, const Matrix& above, double ticks,
                       WorldMatrices& world) const {
  const Matrix here = above * LocalAt(node, ticks);
  world.emplace(node.mName.C_Str(), kToZUp * here * kFromZUp);
  for (unsigned i = 0; i < node.mNumChildren; ++i) Walk(*node.mChildren[i], here, ticks, world);
}

Matrix SceneMotion::LocalAt(const aiNode& node, double ticks) const {
  const Matrix atRest = Wide(node.mTransformation);
  const auto found = m_channels.find(node.mName.C_Str());
  if (found == m_channels.end()) return atRest;
  const aiNodeAnim& channel = *found->second;
  Point scale, position;
  Quaternion rotation;
  atRest.Decompose(scale, rotation, position);
  if (channel.mNumScalingKeys > 0) {
    scale = ValueAt(channel.mScalingKeys, channel.mNumScalingKeys, ticks);
  }
  if (channel.mNumRotationKeys > 0) {
    rotation = ValueAt(channel.mRotationKeys, channel.mNumRotationKeys, ticks);
  }
  if (channel.mNumPositionKeys > 0) {
    position = ValueAt(channel.mPositionKeys, channel.mNumPositionKeys, ticks);
  }
  return Matrix(scale, rotation, position);
}

std::string SceneMotion::NodeNameOf(const std::string& bone) const {
  return m_scene->mRootNode->FindNode(bone.c_str()) ? bone : bone.substr(2);
}

std::string SceneMotion::NearestAbove(const std::string& name,
                                      const std::vector<std::string>& names) const {
  const aiNode* node = m_scene->mRootNode->FindNode(name.c_str());
  while (node && (node = node->mParent)) {
    for (const std::string& other : names) {
      if (other == node->mName.C_Str()) return other;
    }
  }
  return "";
}

std::vector<SourceVertex> SceneMotion::VerticesOf(const aiMesh& mesh) const {
  std::vector<SourceVertex> all(mesh.mNumVertices);
  std::vector<double> sums(mesh.mNumVertices, 0);
  for (unsigned b = 0; b < mesh.mNumBones; ++b) {
    const aiBone& bone = *mesh.mBones[b];
    const Matrix toBone = Wide(bone.mOffsetMatrix);
    for (unsigned i = 0; i < bone.mNumWeights; ++i) {
      const auto [vertex, weight] = bone.mWeights[i];
      if (!(weight > 0)) continue;
      const Point inBone = kToZUp * (toBone * Wide(mesh.mVertices[vertex]));
      all[vertex].pulls.push_back({bone.mName.C_Str(), weight, inBone});
      sums[vertex] += weight;
    }
  }
  std::multimap<float, unsigned> known;  // by x
  std::vector<SourceVertex> distinct;
  for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
    const auto same = [&](unsigned other) {
      if (!SameBits(mesh.mVertices[v], mesh.mVertices[other])) return false;
      if (all[v].pulls.size() != all[other].pulls.size()) return false;
      for (size_t i = 0; i < all[v].pulls.size(); ++i) {
        const SourceVertex::Pull &a = all[v].pulls[i], &b = all[other].pulls[i];
        if (a.bone != b.bone || a.weight / sums[v] != b.weight / sums[other]) return false;
      }
      return true;
    };
    auto [candidate, end] = known.equal_range(mesh.mVertices[v].x);
    while (candidate != end && !same(candidate->second)) ++candidate;
    if (candidate != end) continue;
    known.emplace(mesh.mVertices[v].x, v);
    distinct.push_back(all[v]);
    for (SourceVertex::Pull& pull : distinct.back().pulls) pull.weight /= sums[v];
  }
  return distinct;
}

Point MovedBy(const SourceVertex::Pull& pull, const WorldMatrices& world) {
  return world.at(pull.bone) * pull.inBone;
}

Point Posed(const SourceVertex& vertex, const WorldMatrices& world) {
  Point sum;
  for (const SourceVertex::Pull& pull : vertex.pulls) sum += MovedBy(pull, world) * pull.weight;
  return sum;
}

double Distance(const Point& a, const Point& b) { return (a - b).Length(); }

Matrix Rigid(Matrix matrix) {
  const double sign = matrix.Determinant() < 0 ? -1 : 1;
  for (unsigned column = 0; column < 3; ++column) {
    const Point axis(matrix[0][column], matrix[1][column], matrix[2][column]);
    for (unsigned row = 0; row < 3; ++row) matrix[row][column] *= sign / axis.Length();
  }
  return matrix;
}

}  // namespace orv
