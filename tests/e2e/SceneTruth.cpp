#include "e2e/SceneTruth.h"

#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <assimp/Importer.hpp>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

namespace orv {
namespace {

constexpr double kTolerance = 1e-5;

// For column vectors: three columns and the translation.
struct Affine {
  std::array<Vector3, 4> columns;
};

Vector3 Apply(const Affine& m, const Vector3& v, double w) {
  Vector3 result{};
  for (int i = 0; i < 3; ++i) {
    result[i] = m.columns[0][i] * v[0] + m.columns[1][i] * v[1] + m.columns[2][i] * v[2] +
                m.columns[3][i] * w;
  }
  return result;
}

Affine Product(const Affine& a, const Affine& b) {
  Affine result;
  for (int i = 0; i < 4; ++i) result.columns[i] = Apply(a, b.columns[i], i == 3 ? 1 : 0);
  return result;
}

Affine From(const aiMatrix4x4& m) {
  return {{{{m.a1, m.b1, m.c1}, {m.a2, m.b2, m.c2}, {m.a3, m.b3, m.c3}, {m.a4, m.b4, m.c4}}}};
}

const Affine kIdentity = {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}}};
const Affine kToZUp = {{{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}}}};    // (x, -z, y)
const Affine kFromZUp = {{{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}, {0, 0, 0}}}};  // (x, z, -y)

double Dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vector3 Minus(const Vector3& a, const Vector3& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Vector3 Cross(const Vector3& a, const Vector3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Vector3 Times(const Vector3& v, double factor) {
  return {v[0] * factor, v[1] * factor, v[2] * factor};
}
Vector3 Unit(const Vector3& v) { return Times(v, 1 / std::sqrt(Dot(v, v))); }
Vector3 From(const aiVector3D& v) { return {v.x, v.y, v.z}; }

bool IsBone(const std::string& name) { return name.starts_with("b.") || name.starts_with("B."); }

std::string Lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return text;
}

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
  std::array<double, 2> operator()(double u, double v) const {
    const double x = u - 0.5, y = v - 0.5, c = std::cos(angle), s = std::sin(angle);
    return {uScale * (c * x - s * y) + 0.5, vScale * (s * x + c * y) + 0.5};
  }
};

class Evaluation {
 public:
  Evaluation(const aiScene& scene, const TruthSettings& settings)
      : m_scene(scene), m_settings(settings) {
    for (unsigned i = 0; i < scene.mNumCameras; ++i) m_views.insert(NameOf(*scene.mCameras[i]));
    for (unsigned i = 0; i < scene.mNumLights; ++i) m_views.insert(NameOf(*scene.mLights[i]));
    for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
      for (unsigned b = 0; b < scene.mMeshes[i]->mNumBones; ++b) {
        m_joints.insert(NameOf(*scene.mMeshes[i]->mBones[b]));
      }
    }
    m_space = settings.axes == Axes::AsItIs ? kIdentity : kToZUp;
    m_toLocal = settings.axes == Axes::YUp ? kToZUp : kIdentity;
    m_fromLocal = settings.axes == Axes::YUp ? kFromZUp : kIdentity;
  }

  SceneTruth Run() {
    Walk(*m_scene.mRootNode, kIdentity, m_settings.selected.empty());
    return std::move(m_truth);
  }

 private:
  template <typename Named>
  static std::string NameOf(const Named& item) {
    return item.mName.C_Str();
  }

  void Walk(const aiNode& node, const Affine& above, bool selected) {
    const std::string name = NameOf(node);
    const Affine world = Product(above, From(node.mTransformation));
    m_world[&node] = world;
    selected = selected || m_settings.selected.contains(name);
    if (selected && !m_settings.hidden.contains(name)) Take(node, name, world);
    for (unsigned i = 0; i < node.mNumChildren; ++i) Walk(*node.mChildren[i], world, selected);
  }

  void Take(const aiNode& node, const std::string& name, const Affine& world) {
    if (IsBone(name)) return;
    if (node.mNumMeshes > 0) {
      if (IsExported(node)) TakeParts(node, world);
    } else if (node.mNumChildren == 0 && !m_joints.contains(name) && !m_views.contains(name)) {
      const Affine placed = InHost(world);
      m_truth.points.push_back(
          {name,
           {Unit(placed.columns[0]), Unit(placed.columns[1]), Unit(placed.columns[2])},
           Times(placed.columns[3], m_settings.metresPerUnit)});
    }
  }

  // A node's space in the exported axes.
  Affine InHost(const Affine& world) const { return Product(m_space, Product(world, m_fromLocal)); }

  const aiMesh& Part(const aiNode& node, unsigned i) const {
    return *m_scene.mMeshes[node.mMeshes[i]];
  }
  const aiMaterial& MaterialOf(const aiMesh& part) const {
    return *m_scene.mMaterials[part.mMaterialIndex];
  }
  // The importer's, for parts that have none.
  bool IsStandIn(const aiMaterial& material) const {
    const std::string name = material.GetName().C_Str();
    return name.empty() || name == "DefaultMaterial";
  }

  // Needs a material and texture coordinates, if only on one of its parts.
  bool IsExported(const aiNode& node) const {
    bool hasMaterial = m_settings.standInMaterials, hasTexCoords = false;
    for (unsigned i = 0; i < node.mNumMeshes; ++i) {
      hasMaterial = hasMaterial || !IsStandIn(MaterialOf(Part(node, i)));
      hasTexCoords = hasTexCoords || Part(node, i).HasTextureCoords(0);
    }
    return hasMaterial && hasTexCoords;
  }

  void TakeParts(const aiNode& node, const Affine& world) {
    const Affine placed = InHost(world);
    int negative = 0;
    for (int i = 0; i < 3; ++i) negative += placed.columns[i][i] < 0;
    const aiNode* bone = BoneThatHolds(node);
    for (unsigned p = 0; p < node.mNumMeshes; ++p) {
      const aiMesh& part = Part(node, p);
      const MapTransform map(MaterialOf(part));
      std::string material = Lower(MaterialOf(part).GetName().C_Str());
      if (material.find("m.") == std::string::npos) material.clear();
      for (unsigned f = 0; f < part.mNumFaces; ++f) {
        const aiFace& face = part.mFaces[f];
        if (face.mNumIndices != 3) continue;
        TruthTriangle triangle{CornersOf(part, face, placed, map), material, ""};
        // Only the signs on the diagonal are looked at.
        if (negative % 2 == 1) std::swap(triangle.corners[0], triangle.corners[2]);
        if (bone) BindTo(*bone, triangle);
        m_truth.triangles.push_back(triangle);
      }
    }
  }

  std::array<TruthCorner, 3> CornersOf(const aiMesh& part, const aiFace& face, const Affine& placed,
                                       const MapTransform& map) const {
    std::array<TruthCorner, 3> corners;
    std::array<Vector3, 3> local;
    for (int c = 0; c < 3; ++c) {
      local[c] = Apply(m_toLocal, From(part.mVertices[face.mIndices[c]]), 1);
    }
    const Vector3 faceNormal = Cross(Minus(local[1], local[0]), Minus(local[2], local[0]));
    for (int c = 0; c < 3; ++c) {
      const unsigned v = face.mIndices[c];
      const Vector3 normal =
          part.mNormals ? Apply(m_toLocal, From(part.mNormals[v]), 0) : faceNormal;
      const aiVector3D texCoord =
          part.HasTextureCoords(0) ? part.mTextureCoords[0][v] : aiVector3D();
      const bool posed = part.HasBones();
      const Vector3 position =
          posed ? Posed(part, v, part.mVertices[v], 1) : Apply(placed, local[c], 1);
      corners[c] = {Times(position, m_settings.metresPerUnit),
                    Unit(posed && part.mNormals ? Posed(part, v, part.mNormals[v], 0)
                                                : Apply(placed, normal, 0)),
                    map(texCoord.x, 1 - texCoord.y)};
    }
    return corners;
  }

  // As its joints pose it at rest, which is also time 0 in the scenes that come here.
  Vector3 Posed(const aiMesh& part, unsigned vertex, const aiVector3D& v, double w) const {
    Vector3 sum{};
    for (unsigned b = 0; b < part.mNumBones; ++b) {
      const aiBone& bone = *part.mBones[b];
      const Affine pose =
          Product(WorldOf(*m_scene.mRootNode->FindNode(bone.mName)), From(bone.mOffsetMatrix));
      for (unsigned i = 0; i < bone.mNumWeights; ++i) {
        if (bone.mWeights[i].mVertexId != vertex) continue;
        const Vector3 moved = Times(Apply(pose, From(v), w), bone.mWeights[i].mWeight);
        for (int k = 0; k < 3; ++k) sum[k] += moved[k];
      }
    }
    return Apply(m_space, sum, w);
  }
  static Affine WorldOf(const aiNode& node) {
    const Affine local = From(node.mTransformation);
    return node.mParent ? Product(WorldOf(*node.mParent), local) : local;
  }

  static const aiNode* BoneThatHolds(const aiNode& node) {
    if (!node.mParent) return nullptr;
    const std::string name = NameOf(*node.mParent);
    return IsBone(name) && name.find("r.") != std::string::npos ? node.mParent : nullptr;
  }

  // Into the bone's space, without its scale.
  void BindTo(const aiNode& bone, TruthTriangle& triangle) const {
    const Affine placed = InHost(m_world.at(&bone));
    const Vector3 origin = Times(placed.columns[3], m_settings.metresPerUnit);
    const auto inBone = [&](const Vector3& v) {
      return Vector3{Dot(Unit(placed.columns[0]), v), Dot(Unit(placed.columns[1]), v),
                     Dot(Unit(placed.columns[2]), v)};
    };
    for (TruthCorner& corner : triangle.corners) {
      corner.position = inBone(Minus(corner.position, origin));
      corner.normal = inBone(corner.normal);
    }
    triangle.bone = NameOf(bone);
  }

  const aiScene& m_scene;
  const TruthSettings& m_settings;
  std::set<std::string> m_views, m_joints;
  std::map<const aiNode*, Affine> m_world;
  Affine m_space, m_toLocal, m_fromLocal;
  SceneTruth m_truth;
};

bool Near(double a, double b, double size) {
  return std::abs(a - b) <= kTolerance * std::max(1.0, size) || (std::isnan(a) && std::isnan(b));
}

template <typename A, typename B>
bool AllNear(const A& a, const B& b, double size) {
  for (size_t i = 0; i < a.size(); ++i) {
    if (!Near(a[i], b[i], size)) return false;
  }
  return true;
}

bool SameCorner(const TruthCorner& a, const TruthCorner& b, double size) {
  const double texSize = std::max(std::abs(a.texCoord[0]), std::abs(a.texCoord[1]));
  return AllNear(a.position, b.position, size) && AllNear(a.normal, b.normal, 1) &&
         AllNear(a.texCoord, b.texCoord, texSize);
}

// The same corners in the same sense of rotation.
bool SameTriangle(const TruthTriangle& expected, const TruthTriangle& actual, double size) {
  if (!expected.material.empty() && expected.material != actual.material) return false;
  if (expected.bone != actual.bone) return false;
  for (int turn = 0; turn < 3; ++turn) {
    bool same = true;
    for (int c = 0; same && c < 3; ++c) {
      same = SameCorner(expected.corners[c], actual.corners[(c + turn) % 3], size);
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
  double key = 0;
  for (const TruthCorner& corner : triangle.corners) {
    key += 0.51 * corner.position[0] + 0.37 * corner.position[1] + 0.12 * corner.position[2];
  }
  return key / 3;
}

template <size_t N>
std::string TextOf(const std::array<double, N>& values) {
  std::ostringstream out;
  out << '(';
  for (size_t i = 0; i < N; ++i) out << (i ? ", " : "") << values[i];
  out << ')';
  return out.str();
}

std::string TextOf(const TruthTriangle& triangle) {
  return "of '" + triangle.material + "' at " + TextOf(triangle.corners[0].position) + "\n";
}

std::vector<TruthTriangle> TrianglesOf(const independent::MeshFile& file) {
  std::vector<TruthTriangle> triangles;
  for (const independent::MeshChunk& chunk : file.chunks) {
    for (const auto& indices : chunk.triangles) {
      TruthTriangle& triangle = triangles.emplace_back();
      triangle.material = chunk.materialName;
      triangle.bone = chunk.boneName;
      for (int c = 0; c < 3; ++c) {
        const auto& v = chunk.vertices.at(indices[c]);
        const auto& n = chunk.normals.at(indices[c]);
        triangle.corners[c] = {{v[0], v[1], v[2]}, {n[0], n[1], n[2]}, {v[3], v[4]}};
      }
    }
  }
  return triangles;
}

std::string CompareTriangles(const independent::MeshFile& file, const SceneTruth& truth,
                             double size) {
  std::multimap<double, const TruthTriangle*> missing;
  for (const TruthTriangle& triangle : truth.triangles) {
    if (!IsFlat(triangle)) missing.emplace(KeyOf(triangle), &triangle);
  }
  std::string wrong;
  size_t surplus = 0;
  for (const TruthTriangle& triangle : TrianglesOf(file)) {
    if (IsFlat(triangle)) continue;
    const double slack = 2 * kTolerance * std::max(1.0, size);
    auto found = missing.lower_bound(KeyOf(triangle) - slack);
    const auto end = missing.upper_bound(KeyOf(triangle) + slack);
    while (found != end && !SameTriangle(*found->second, triangle, size)) ++found;
    if (found != end) {
      missing.erase(found);
    } else if (surplus++ == 0) {
      wrong += "a triangle too many: " + TextOf(triangle);
    }
  }
  if (!missing.empty()) wrong += "a triangle is missing: " + TextOf(*missing.begin()->second);
  if (surplus + missing.size() > 0) {
    wrong += "in all " + std::to_string(missing.size()) + " of " +
             std::to_string(truth.triangles.size()) + " are missing, " + std::to_string(surplus) +
             " too many\n";
  }
  return wrong;
}

std::string ComparePoints(const independent::MeshFile& file, const SceneTruth& truth, double size) {
  if (file.attachments.size() != truth.points.size()) {
    return std::to_string(file.attachments.size()) + " attachment points instead of " +
           std::to_string(truth.points.size()) + "\n";
  }
  for (size_t i = 0; i < truth.points.size(); ++i) {
    const TruthPoint& expected = truth.points[i];
    const independent::Attachment& actual = file.attachments[i];
    bool same = expected.name == actual.name && AllNear(expected.position, actual.position, size);
    for (size_t k = 0; k < 9; ++k) {
      same = same && Near(expected.rows[k / 3][k % 3], actual.rotation[k], 1);
    }
    if (!same) return "attachment point " + expected.name + " differs\n";
  }
  return "";
}

}  // namespace

SceneTruth EvaluateScene(const std::string& path, const TruthSettings& settings) {
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile(path, aiProcess_Triangulate);
  if (!scene) throw std::runtime_error(path + ": " + importer.GetErrorString());
  return Evaluation(*scene, settings).Run();
}

std::string CompareWithTruth(const independent::MeshFile& file, const SceneTruth& truth) {
  Vector3 low{1e30, 1e30, 1e30}, high{-1e30, -1e30, -1e30};
  double size = 0;
  for (const TruthTriangle& triangle : truth.triangles) {
    for (const TruthCorner& corner : triangle.corners) {
      for (int i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], corner.position[i]);
        high[i] = std::max(high[i], corner.position[i]);
        size = std::max(size, std::abs(corner.position[i]));
      }
    }
  }
  std::string wrong = CompareTriangles(file, truth, size) + ComparePoints(file, truth, size);
  if (!AllNear(low, file.minimum, size) || !AllNear(high, file.maximum, size)) {
    wrong += "the box is not " + TextOf(low) + " to " + TextOf(high) + "\n";
  }
  return wrong;
}

}  // namespace orv
