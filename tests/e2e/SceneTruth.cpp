#include "e2e/SceneTruth.h"

#include <assimp/postprocess.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

namespace orv {
namespace {

constexpr double kTolerance = 1e-5;

using Turn = aiQuaterniont<double>;

const Matrix kToZUp(1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1);    // (x, -z, y)
const Matrix kFromZUp(1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1);  // (x, z, -y)

Matrix Wide(const aiMatrix4x4& m) {
  return {m.a1, m.a2, m.a3, m.a4, m.b1, m.b2, m.b3, m.b4,
          m.c1, m.c2, m.c3, m.c4, m.d1, m.d2, m.d3, m.d4};
}
Point Wide(const aiVector3D& v) { return {v.x, v.y, v.z}; }
Point Wide(Vec3 v) { return {v.x, v.y, v.z}; }
Turn Wide(const aiQuaternion& q) { return Turn(q.w, q.x, q.y, q.z).Normalize(); }

Point Direction(const Matrix& m, const Point& v) { return aiMatrix3x3t<double>(m) * v; }
Point Unit(const Point& v) { return v * (1 / v.Length()); }
Point Column(const Matrix& m, unsigned column) {
  return {m[0][column], m[1][column], m[2][column]};
}

Point Between(const Point& a, const Point& b, double t) { return a + (b - a) * t; }
Turn Between(const Turn& a, const Turn& b, double t) {
  Turn result;
  Turn::Interpolate(result, a, b, t);
  return result.Normalize();
}

// The first or the last one outside of the keys.
template <typename Value, typename Key>
void SetAt(Value& value, const Key* keys, unsigned count, double ticks) {
  if (count == 0) return;
  unsigned next = 0;
  while (next < count && keys[next].mTime <= ticks) ++next;
  const Key &after = keys[std::min(next, count - 1)], &before = keys[next == 0 ? 0 : next - 1];
  const double length = after.mTime - before.mTime;
  value = Between(Wide(before.mValue), Wide(after.mValue),
                  length > 0 ? (ticks - before.mTime) / length : 0);
}

template <typename Named>
std::string NameOf(const Named& item) {
  return item.mName.C_Str();
}

bool IsBone(const std::string& name) { return name.starts_with("b.") || name.starts_with("B."); }

// How the diffuse map changes texture coordinates: turned and tiled around the middle, not moved.
struct MapTransform {
  double uScale = 1, vScale = 1, angle = 0;

  explicit MapTransform(const aiMaterial& material) {
    aiUVTransform transform;
    const auto type = material.GetTextureCount(aiTextureType_DIFFUSE) > 0
                          ? aiTextureType_DIFFUSE
                          : aiTextureType_BASE_COLOR;
    if (material.Get(AI_MATKEY_UVTRANSFORM(type, 0), transform) != AI_SUCCESS) return;
    uScale = transform.mScaling.x;
    vScale = transform.mScaling.y;
    angle = transform.mRotation;
  }
  void Apply(double u, double v, TruthCorner& corner) const {
    const double x = u - 0.5, y = v - 0.5, c = std::cos(angle), s = std::sin(angle);
    corner.u = uScale * (c * x - s * y) + 0.5;
    corner.v = vScale * (s * x + c * y) + 0.5;
  }
};

bool Near(double a, double b, double size) {
  return std::abs(a - b) <= kTolerance * std::max(1.0, size) || (std::isnan(a) && std::isnan(b));
}

bool Near(const Point& a, const Point& b, double size) {
  return Near(a.x, b.x, size) && Near(a.y, b.y, size) && Near(a.z, b.z, size);
}

bool SameCorner(const TruthCorner& a, const TruthCorner& b, double size, bool withNormals) {
  const double texSize = std::max(std::abs(a.u), std::abs(a.v));
  return Near(a.position, b.position, size) && (!withNormals || Near(a.normal, b.normal, 1)) &&
         Near(a.u, b.u, texSize) && Near(a.v, b.v, texSize);
}

// The same corners in the same sense of rotation.
bool SameTriangle(const TruthTriangle& expected, const TruthTriangle& actual, double size,
                  bool withNormals) {
  if (!expected.material.empty() && expected.material != actual.material) return false;
  if (expected.bone != actual.bone) return false;
  for (int turn = 0; turn < 3; ++turn) {
    bool same = true;
    for (int c = 0; same && c < 3; ++c) {
      same = SameCorner(expected.corners[c], actual.corners[(c + turn) % 3], size, withNormals);
    }
    if (same) return true;
  }
  return false;
}

// Has two corners in one place. Whether the file holds such a triangle depends on whether their
// normals and texture coordinates are the same there, too.
bool IsFlat(const TruthTriangle& triangle) {
  const auto& [a, b, c] = triangle.corners;
  return a.position == b.position || b.position == c.position || c.position == a.position;
}

// A number by which equal triangles stand close together.
double KeyOf(const TruthTriangle& triangle) {
  Point sum;
  for (const TruthCorner& corner : triangle.corners) sum += corner.position;
  return sum * Point(0.17, 0.12, 0.04);
}

std::string TextOf(const Point& p) {
  std::ostringstream out;
  out << '(' << p.x << ", " << p.y << ", " << p.z << ')';
  return out.str();
}

std::string TextOf(const TruthTriangle& triangle) {
  return "of '" + triangle.material + "' at " + TextOf(triangle.corners[0].position) + "\n";
}

std::string CompareAttachmentPoints(const std::vector<AttachmentPoint>& actual,
                                    const std::vector<AttachmentPoint>& expected) {
  if (actual.size() != expected.size()) {
    return std::to_string(actual.size()) + " attachment points instead of " +
           std::to_string(expected.size()) + "\n";
  }
  for (size_t i = 0; i < expected.size(); ++i) {
    const Point position = Wide(expected[i].position);
    bool same = expected[i].name == actual[i].name &&
                Near(Wide(actual[i].position), position, position.Length());
    for (size_t row = 0; row < 3; ++row) {
      same = same && Near(Wide(actual[i].rotation[row]), Wide(expected[i].rotation[row]), 1);
    }
    if (!same) return "attachment point " + expected[i].name + " differs\n";
  }
  return "";
}

}  // namespace

SceneTruth::SceneTruth(const std::string& path, const TruthSettings& settings)
    : m_settings(settings), m_scene(m_importer.ReadFile(path, aiProcess_Triangulate)) {
  if (!m_scene) throw std::runtime_error(path + ": " + m_importer.GetErrorString());
  if (m_scene->mNumAnimations > 0) m_animation = m_scene->mAnimations[0];
  for (unsigned i = 0; m_animation && i < m_animation->mNumChannels; ++i) {
    m_channels[m_animation->mChannels[i]->mNodeName.C_Str()] = m_animation->mChannels[i];
  }
  for (unsigned i = 0; i < m_scene->mNumCameras; ++i) {
    m_noPoints.insert(NameOf(*m_scene->mCameras[i]));
  }
  for (unsigned i = 0; i < m_scene->mNumLights; ++i) {
    m_noPoints.insert(NameOf(*m_scene->mLights[i]));
  }
  for (unsigned i = 0; i < m_scene->mNumMeshes; ++i) {
    for (unsigned b = 0; b < m_scene->mMeshes[i]->mNumBones; ++b) {
      m_noPoints.insert(NameOf(*m_scene->mMeshes[i]->mBones[b]));
    }
  }
  if (settings.axes != Axes::AsItIs) m_space = kToZUp;
  if (settings.axes == Axes::YUp) m_toLocal = kToZUp, m_fromLocal = kFromZUp;
}

double SceneTruth::Seconds() const {
  return m_animation ? m_animation->mDuration / m_animation->mTicksPerSecond : 0;
}

const aiNode* SceneTruth::Find(const std::string& name) const {
  return m_scene->mRootNode->FindNode(name.c_str());
}

const aiNode* SceneTruth::NodeOfBone(const std::string& bone) const {
  const aiNode* node = Find(bone);
  return node ? node : Find(bone.substr(2));
}

Matrix SceneTruth::World(const aiNode& node, double seconds) const {
  return m_space * Composed(node, seconds) * m_fromLocal;
}

Matrix SceneTruth::Composed(const aiNode& node, double seconds) const {
  const Matrix local = LocalAt(node, seconds);
  return node.mParent ? Composed(*node.mParent, seconds) * local : local;
}

Matrix SceneTruth::LocalAt(const aiNode& node, double seconds) const {
  const Matrix atRest = Wide(node.mTransformation);
  const auto found = m_channels.find(NameOf(node));
  if (found == m_channels.end()) return atRest;
  const double ticks = seconds * m_animation->mTicksPerSecond;
  const aiNodeAnim& channel = *found->second;
  Point scale, position;
  Turn rotation;
  atRest.Decompose(scale, rotation, position);
  SetAt(scale, channel.mScalingKeys, channel.mNumScalingKeys, ticks);
  SetAt(rotation, channel.mRotationKeys, channel.mNumRotationKeys, ticks);
  SetAt(position, channel.mPositionKeys, channel.mNumPositionKeys, ticks);
  return Matrix(scale, rotation, position);
}

// Every node that is neither hidden nor called a bone.
void SceneTruth::Walk(const aiNode& node, bool selected, const auto& take) const {
  const std::string name = NameOf(node);
  selected = selected || m_settings.selected.contains(name);
  if (selected && !m_settings.hidden.contains(name) && !IsBone(name)) take(node);
  for (unsigned i = 0; i < node.mNumChildren; ++i) Walk(*node.mChildren[i], selected, take);
}

std::vector<AttachmentPoint> SceneTruth::AttachmentPoints() const {
  std::vector<AttachmentPoint> points;
  Walk(*m_scene->mRootNode, m_settings.selected.empty(), [&](const aiNode& node) {
    if (node.mNumMeshes + node.mNumChildren > 0 || m_noPoints.contains(NameOf(node))) return;
    const Matrix placed = World(node, 0);
    const auto narrow = [](const Point& p) {
      return Vec3{static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
    };
    AttachmentPoint& point = points.emplace_back();
    point.name = NameOf(node);
    for (unsigned i = 0; i < 3; ++i) point.rotation[i] = narrow(Unit(Column(placed, i)));
    point.position = narrow(Column(placed, 3) * m_settings.metresPerUnit);
  });
  return points;
}

std::vector<TruthTriangle> SceneTruth::Triangles(double seconds) const {
  std::vector<TruthTriangle> triangles;
  Walk(*m_scene->mRootNode, m_settings.selected.empty(), [&](const aiNode& node) {
    if (IsExported(node)) TakeParts(node, seconds, triangles);
  });
  return triangles;
}

// Needs a material and texture coordinates, if only on one of its parts.
bool SceneTruth::IsExported(const aiNode& node) const {
  bool hasMaterial = m_settings.standInMaterials, hasTexCoords = false;
  for (unsigned i = 0; i < node.mNumMeshes; ++i) {
    const aiMesh& part = *m_scene->mMeshes[node.mMeshes[i]];
    const std::string name = m_scene->mMaterials[part.mMaterialIndex]->GetName().C_Str();
    hasMaterial = hasMaterial || (!name.empty() && name != "DefaultMaterial");
    hasTexCoords = hasTexCoords || part.HasTextureCoords(0);
  }
  return hasMaterial && hasTexCoords;
}

void SceneTruth::TakeParts(const aiNode& node, double seconds,
                           std::vector<TruthTriangle>& triangles) const {
  const Matrix placed = World(node, seconds);
  // Only the signs on the diagonal are looked at.
  const bool mirrored = ((placed.a1 < 0) + (placed.b2 < 0) + (placed.c3 < 0)) % 2 == 1;
  const std::string parent = node.mParent ? NameOf(*node.mParent) : "";
  const bool bound = IsBone(parent) && parent.find("r.") != std::string::npos;
  for (unsigned p = 0; p < node.mNumMeshes; ++p) {
    const aiMesh& part = *m_scene->mMeshes[node.mMeshes[p]];
    const std::vector<TruthCorner> corners = CornersOf(node, part, seconds);
    std::string material = m_scene->mMaterials[part.mMaterialIndex]->GetName().C_Str();
    for (char& c : material) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    if (material.find("m.") == std::string::npos) material.clear();
    for (unsigned f = 0; f < part.mNumFaces; ++f) {
      const aiFace& face = part.mFaces[f];
      if (face.mNumIndices != 3) continue;
      TruthTriangle triangle{{}, material, bound ? parent : ""};
      for (unsigned c = 0; c < 3; ++c) triangle.corners[c] = corners[face.mIndices[c]];
      auto& [a, b, c] = triangle.corners;
      if (!part.mNormals) {
        const Matrix back = Matrix(placed).Inverse();
        const Point local[] = {back * a.position, back * b.position, back * c.position};
        const Point normal = (local[1] - local[0]) ^ (local[2] - local[0]);
        a.normal = b.normal = c.normal = Unit(Direction(placed, normal));
      }
      if (mirrored) std::swap(a, c);
      for (TruthCorner& corner : triangle.corners) {
        if (bound) {  // in the bone's space, without its scale
          const Matrix bone = Rigid(World(*node.mParent, seconds)).Inverse();
          corner.position = bone * corner.position;
          corner.normal = Direction(bone, corner.normal);
        }
        corner.position *= m_settings.metresPerUnit;
      }
      triangles.push_back(triangle);
    }
  }
}

// In the scene's units.
std::vector<TruthCorner> SceneTruth::CornersOf(const aiNode& node, const aiMesh& part,
                                               double seconds) const {
  const Matrix placed = World(node, seconds) * m_toLocal;
  const MapTransform map(*m_scene->mMaterials[part.mMaterialIndex]);
  std::vector<Matrix> poses(part.mNumVertices, part.HasBones() ? placed * 0.0 : placed);
  std::vector<double> sums(part.mNumVertices);
  for (unsigned b = 0; b < part.mNumBones; ++b) {
    const aiBone& bone = *part.mBones[b];
    for (unsigned i = 0; i < bone.mNumWeights; ++i) {
      sums[bone.mWeights[i].mVertexId] += bone.mWeights[i].mWeight;
    }
  }
  for (unsigned b = 0; b < part.mNumBones; ++b) {
    const aiBone& bone = *part.mBones[b];
    const Matrix pose = m_space * Composed(*Find(NameOf(bone)), seconds) * Wide(bone.mOffsetMatrix);
    for (unsigned i = 0; i < bone.mNumWeights; ++i) {
      const auto [vertex, weight] = bone.mWeights[i];
      poses[vertex] = poses[vertex] + pose * (weight / sums[vertex]);
    }
  }
  std::vector<TruthCorner> corners(part.mNumVertices);
  for (unsigned v = 0; v < part.mNumVertices; ++v) {
    corners[v].position = poses[v] * Wide(part.mVertices[v]);
    if (part.mNormals) corners[v].normal = Unit(Direction(poses[v], Wide(part.mNormals[v])));
    const aiVector3D uv = part.HasTextureCoords(0) ? part.mTextureCoords[0][v] : aiVector3D();
    map.Apply(uv.x, 1 - uv.y, corners[v]);
  }
  return corners;
}

Matrix MatrixOf(const BonePose& pose) {
  const auto& [x, y, z, w] = pose.rotation;
  Matrix matrix(Turn(w, -x, -y, -z).GetMatrix());
  matrix.a4 = pose.position.x;
  matrix.b4 = pose.position.y;
  matrix.c4 = pose.position.z;
  return matrix;
}

Matrix Rigid(Matrix matrix) {
  const double sign = matrix.Determinant() < 0 ? -1 : 1;
  for (unsigned column = 0; column < 3; ++column) {
    const double length = Column(matrix, column).Length();
    for (unsigned row = 0; row < 3; ++row) matrix[row][column] *= sign / length;
  }
  return matrix;
}

std::vector<TruthTriangle> TrianglesOf(const IndexedMeshFile& file, const AnimationFile* animation,
                                       size_t frame) {
  std::map<std::string, Matrix> bones;
  for (size_t bone = 0; animation && bone < animation->bones.size(); ++bone) {
    BonePose pose = animation->Frame(frame)[bone];
    pose.position = pose.position * animation->masterScale;
    bones[animation->bones[bone].name] = MatrixOf(pose);
  }
  std::vector<TruthTriangle> triangles;
  for (size_t number = 0; number < file.chunks.size(); ++number) {
    const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
    std::vector<Point> positions;
    for (const IndexedVertex& vertex : chunk.vertices) positions.push_back(Wide(vertex.Position()));
    if (animation) {
      positions.assign(positions.size(), {});
      for (const auto& bone : file.mesh.influences.at(number)->m_bones) {
        for (const VertexWeight& weight : bone->m_weights) {
          positions.at(weight.vertex) +=
              bones.at(bone->m_name) * Wide(weight.offset) * double{weight.weight};
        }
      }
    }
    for (const Triangle& indices : chunk.triangles) {
      TruthTriangle& triangle = triangles.emplace_back();
      triangle.material = chunk.material.name;
      triangle.bone = file.chunks[number].boneName;
      for (int c = 0; c < 3; ++c) {
        const IndexedVertex& vertex = chunk.vertices[indices[c]];
        triangle.corners[c] = {positions[indices[c]], Wide(chunk.normals[indices[c]]), vertex.u,
                               vertex.v};
      }
    }
  }
  return triangles;
}

std::string CompareTriangles(const std::vector<TruthTriangle>& actual,
                             const std::vector<TruthTriangle>& expected, bool withNormals) {
  std::multimap<double, const TruthTriangle*> missing;
  double size = 0;
  for (const TruthTriangle& triangle : expected) {
    for (const TruthCorner& corner : triangle.corners) {
      size = std::max(size, corner.position.Length());
    }
    if (!IsFlat(triangle)) missing.emplace(KeyOf(triangle), &triangle);
  }
  std::string wrong;
  size_t surplus = 0;
  for (const TruthTriangle& triangle : actual) {
    if (IsFlat(triangle)) continue;
    const double slack = 2 * kTolerance * std::max(1.0, size);
    auto found = missing.lower_bound(KeyOf(triangle) - slack);
    const auto end = missing.upper_bound(KeyOf(triangle) + slack);
    while (found != end && !SameTriangle(*found->second, triangle, size, withNormals)) ++found;
    if (found != end) {
      missing.erase(found);
    } else if (surplus++ == 0) {
      wrong += "a triangle too many: " + TextOf(triangle);
    }
  }
  if (!missing.empty()) wrong += "a triangle is missing: " + TextOf(*missing.begin()->second);
  if (surplus + missing.size() == 0) return "";
  return wrong + "in all " + std::to_string(missing.size()) + " of " +
         std::to_string(expected.size()) + " are missing, " + std::to_string(surplus) +
         " too many\n";
}

std::string CompareWithTruth(const IndexedMeshFile& file, const SceneTruth& truth) {
  const std::vector<TruthTriangle> triangles = truth.Triangles();
  if (triangles.empty()) return "the scene holds nothing";
  Point low(1e30), high(-1e30);
  for (const TruthTriangle& triangle : triangles) {
    for (const auto& [position, normal, u, v] : triangle.corners) {
      for (unsigned i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], position[i]);
        high[i] = std::max(high[i], position[i]);
      }
    }
  }
  std::string wrong = CompareTriangles(TrianglesOf(file), triangles) +
                      CompareAttachmentPoints(file.mesh.attachmentPoints, truth.AttachmentPoints());
  const double size = std::max(low.Length(), high.Length());
  if (!Near(low, Wide(file.boundingBox->minimum), size) ||
      !Near(high, Wide(file.boundingBox->maximum), size)) {
    wrong += "the box is not " + TextOf(low) + " to " + TextOf(high) + "\n";
  }
  return wrong;
}

}  // namespace orv
