#include "scene/MeshMerger.h"

#include <bit>
#include <functional>
#include <string>

#include "platform/ExString.h"

namespace orv {

namespace {

class Fingerprint {
 public:
  void Mix(uint64_t value) { m_value = (std::rotl(m_value, 23) ^ value) * 0x9E3779B97F4A7C15u; }
  void Mix(const std::string& text) { Mix(uint64_t{std::hash<std::string>{}(text)}); }
  // 0.0 and -0.0 are equal and must look alike.
  void Mix(float number) { Mix(uint64_t{number == 0 ? 0u : std::bit_cast<uint32_t>(number)}); }
  void Mix(Vec3 colour) {
    Mix(colour.x);
    Mix(colour.y);
    Mix(colour.z);
  }
  uint64_t Value() const { return m_value; }

 private:
  uint64_t m_value = 0;
};

uint64_t MapFingerprint(const MaterialMap& map) {
  Fingerprint print;
  print.Mix(uint64_t{static_cast<uint32_t>(map.channel)});
  print.Mix(LowerCase(map.fileName));
  print.Mix(map.amount);
  return print.Value();
}

// Equal materials without like maps have equal fingerprints: such maps are then the same in some
// order, which a sum does not see. Properties are left out, they are rare.
uint64_t MaterialFingerprint(const GenericMaterial& material, bool ignoreColours) {
  Fingerprint print;
  if (HasTypeSuffix(material.name)) print.Mix(material.name);
  print.Mix(uint64_t{material.twoSided});
  if (!ignoreColours) {
    print.Mix(material.ambient);
    print.Mix(material.diffuse);
    print.Mix(material.specular);
    print.Mix(material.emissive);
    print.Mix(material.shininess);
  }
  uint64_t maps = material.maps.size();
  for (const MaterialMap& map : material.maps) maps += MapFingerprint(map);
  print.Mix(maps);
  print.Mix(material.opacity);
  print.Mix(uint64_t{std::hash<const void*>{}(material.attachmentBone)});
  return print.Value();
}

bool HasLikeMaps(const GenericMaterial& material) {
  for (size_t i = 0; i < material.maps.size(); ++i) {
    for (size_t j = 0; j < i; ++j) {
      if (MapsEqual(material.maps[i], material.maps[j])) return true;
    }
  }
  return false;
}

}  // namespace

void MaterialIndex::Add(const GenericMaterial& material) {
  const uint64_t fingerprint = MaterialFingerprint(material, m_ignoreColours);
  m_buckets[fingerprint].push_back(static_cast<uint32_t>(size()));
  m_fingerprints.push_back(fingerprint);
}

void MaterialIndex::Truncate(size_t place) {
  for (; size() > place; m_fingerprints.pop_back()) {
    const auto bucket = m_buckets.find(m_fingerprints.back());
    bucket->second.pop_back();
    if (bucket->second.empty()) m_buckets.erase(bucket);
  }
}

std::optional<size_t> MaterialIndex::FindFirstEqual(
    const GenericMaterial& material, std::span<const GenericMaterial> materials) const {
  const auto equals = [&](size_t place) {
    return MaterialsEqual(material, materials[place], m_ignoreColours);
  };
  if (HasLikeMaps(material)) {
    for (size_t place = 0; place < size(); ++place) {
      if (equals(place)) return place;
    }
    return std::nullopt;
  }
  const auto bucket = m_buckets.find(MaterialFingerprint(material, m_ignoreColours));
  if (bucket == m_buckets.end()) return std::nullopt;
  for (const uint32_t place : bucket->second) {
    if (equals(place)) return place;
  }
  return std::nullopt;
}

void MeshMerger::Append(const GenericMesh& other) {
  m_mesh->Append(other);
  MergeNewMaterials();
}

std::unique_ptr<GenericMesh> MeshMerger::Finish() {
  MergeNewMaterials();
  return std::move(m_mesh);
}

// The materials that the index knows keep their places, so the faces that were merged with them
// need no look.
void MeshMerger::MergeNewMaterials() {
  std::vector<GenericMaterial>& materials = m_mesh->m_materials;
  const size_t known = m_index.size();
  std::vector<int32_t> remap;  // of the materials behind those
  std::vector<size_t> survivors;
  for (size_t i = known; i < materials.size(); ++i) {
    // Folded materials stay candidates: the first equal one decides, wherever that one went.
    const auto equal = m_index.FindFirstEqual(materials[i], materials);
    m_index.Add(materials[i]);
    if (!equal) {
      remap.push_back(static_cast<int32_t>(known + survivors.size()));
      survivors.push_back(i);
    } else {
      remap.push_back(*equal < known ? static_cast<int32_t>(*equal) : remap[*equal - known]);
    }
  }
  if (known + survivors.size() < materials.size()) {
    m_index.Truncate(known);
    for (const size_t survivor : survivors) {
      GenericMaterial& place = materials[m_index.size()];
      if (&place != &materials[survivor]) place = std::move(materials[survivor]);
      m_index.Add(place);
    }
    materials.resize(m_index.size());
    m_mesh->m_faces.RenumberMaterials(remap, known, m_mergedFaces);
  }
  m_mergedFaces = m_mesh->m_faces.size();
}

}  // namespace orv
