#include "inspect/MeshFacts.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "platform/ExString.h"

namespace orv::inspect {

namespace {

ChunkWeights GatherWeights(const GenericMeshInfluence& influence, size_t vertexCount) {
  ChunkWeights weights;
  weights.bonesOfVertex.assign(vertexCount, 0);
  weights.sumOfVertex.assign(vertexCount, 0);
  std::vector<size_t> countedFor(vertexCount, SIZE_MAX);  // the bone that was counted last
  for (size_t bone = 0; bone < influence.m_bones.size(); ++bone) {
    bool moves = false;
    for (const VertexWeight& entry : influence.m_bones[bone]->m_weights) {
      if (!(entry.weight > 0)) continue;
      moves = true;
      if (entry.vertex >= vertexCount) continue;
      weights.sumOfVertex[entry.vertex] += double{entry.weight};
      if (countedFor[entry.vertex] == bone) continue;
      countedFor[entry.vertex] = bone;
      ++weights.bonesOfVertex[entry.vertex];
    }
    if (moves) ++weights.bones;
  }
  return weights;
}

double Ratio(size_t a, size_t b) {
  return b == 0 ? 0 : static_cast<double>(a) / static_cast<double>(b);
}

using IndexByName = std::unordered_map<std::string, size_t>;

void CountWeights(const GenericBoneInfluence& influence, uint32_t chunk, SkinBone& bone) {
  for (const VertexWeight& weight : influence.m_weights) {
    if (weight.weight > 0) ++bone.vertexCount;
  }
  if (bone.chunks.empty() || bone.chunks.back() != chunk) bone.chunks.push_back(chunk);
}

std::vector<SkinBone> DistinctBones(
    std::span<const std::unique_ptr<GenericMeshInfluence>> influencePerChunk,
    IndexByName& indices) {
  std::vector<SkinBone> bones;
  for (uint32_t chunk = 0; chunk < influencePerChunk.size(); ++chunk) {
    for (const auto& influence : influencePerChunk[chunk]->m_bones) {
      const auto [place, isNew] = indices.try_emplace(LowerCase(influence->m_name), bones.size());
      if (isNew) {
        SkinBone& bone = bones.emplace_back();
        bone.name = influence->m_name;
        bone.parentName = influence->m_parentName;
      }
      CountWeights(*influence, chunk, bones[place->second]);
    }
  }
  return bones;
}

// Puts bones into an outline, each with all that is below it.
class Outliner {
 public:
  Outliner(std::vector<SkinBone> bones, const IndexByName& indices)
      : m_bones(std::move(bones)), m_children(m_bones.size()), m_placed(m_bones.size(), false) {
    for (size_t i = 0; i < m_bones.size(); ++i) {
      const auto parent = indices.find(LowerCase(m_bones[i].parentName));
      const bool known = parent != indices.end() && !m_bones[i].parentName.empty();
      known ? m_children[parent->second].push_back(i) : m_roots.push_back(i);
    }
  }

  std::vector<SkinBone> Outline() {
    for (const size_t root : m_roots) Place(root);
    for (size_t i = 0; i < m_bones.size(); ++i) Place(i);  // circles
    return std::move(m_outline);
  }

 private:
  struct Waiting {
    size_t bone;
    int32_t parent;  // place in the outline
  };

  void Place(size_t top) {
    std::vector<Waiting> waiting{{top, -1}};
    while (!waiting.empty()) {
      const auto [bone, parent] = waiting.back();
      waiting.pop_back();
      if (m_placed[bone]) continue;
      m_placed[bone] = true;
      const auto place = static_cast<int32_t>(m_outline.size());
      m_outline.push_back(std::move(m_bones[bone]));
      m_outline.back().parent = parent;
      m_outline.back().depth = parent < 0 ? 0 : m_outline[static_cast<size_t>(parent)].depth + 1;
      const std::vector<size_t>& children = m_children[bone];
      for (size_t i = children.size(); i-- > 0;) waiting.push_back({children[i], place});
    }
  }

  std::vector<SkinBone> m_bones;
  std::vector<std::vector<size_t>> m_children;
  std::vector<size_t> m_roots;
  std::vector<bool> m_placed;
  std::vector<SkinBone> m_outline;
};

CacheCounts CountCaches(const IndexedMesh::Chunk& chunk) {
  CacheCounts counts;
  for (size_t i = 0; i < counts.size(); ++i) {
    counts[i] = CountCacheMisses(chunk.triangles, chunk.vertices.size(), kCacheSizes[i]);
  }
  return counts;
}

}  // namespace

VertexUse FindVertexUse(const IndexedMesh::Chunk& chunk) {
  VertexUse use;
  use.used.assign(chunk.vertices.size(), false);
  size_t next = 0, usedCount = 0;
  for (const Triangle& triangle : chunk.triangles) {
    for (const uint16_t vertex : triangle) {
      if (use.used[vertex]) continue;
      use.used[vertex] = true;
      ++usedCount;
      if (vertex != next++) use.inOrderOfFirstUse = false;
    }
  }
  use.unused = chunk.vertices.size() - usedCount;
  return use;
}

size_t CountRepeatedTriangles(const IndexedMesh::Chunk& chunk) {
  std::unordered_set<uint64_t> seen;
  size_t repeated = 0;
  for (const auto& [a, b, c] : chunk.triangles) {
    if (!seen.insert(uint64_t{a} << 32 | uint64_t{b} << 16 | c).second) ++repeated;
  }
  return repeated;
}

uint32_t ChunkWeights::MaxBonesOfVertex(const std::vector<bool>& used) const {
  uint32_t most = 0;
  for (size_t i = 0; i < bonesOfVertex.size(); ++i) {
    if (used[i]) most = std::max(most, bonesOfVertex[i]);
  }
  return most;
}

std::vector<ChunkWeights> GatherWeights(const IndexedMesh& mesh) {
  std::vector<ChunkWeights> weights;
  weights.reserve(mesh.influences.size());
  for (size_t i = 0; i < mesh.influences.size(); ++i) {
    weights.push_back(GatherWeights(*mesh.influences[i], mesh.chunks[i].vertices.size()));
  }
  return weights;
}

double VertexCacheCount::Acmr() const { return Ratio(misses, triangles); }
double VertexCacheCount::Atvr() const { return Ratio(misses, vertices); }

VertexCacheCount& VertexCacheCount::operator+=(const VertexCacheCount& other) {
  misses += other.misses;
  triangles += other.triangles;
  vertices += other.vertices;
  return *this;
}

// A vertex is in the cache as long as fewer than cacheSize others were loaded after it.
VertexCacheCount CountCacheMisses(std::span<const Triangle> triangles, size_t vertexCount,
                                  size_t cacheSize) {
  VertexCacheCount count;
  count.triangles = triangles.size();
  std::vector<size_t> loadedAs(vertexCount, 0);  // the number of its latest miss from 1; 0: never
  for (const Triangle& triangle : triangles) {
    for (const uint16_t vertex : triangle) {
      size_t& load = loadedAs[vertex];
      if (load != 0 && count.misses - load < cacheSize) continue;
      if (load == 0) ++count.vertices;
      load = ++count.misses;
    }
  }
  return count;
}

std::vector<OutlinedBone> OutlineOf(std::span<const BoneNode> bones) {
  std::vector<OutlinedBone> outline;
  outline.reserve(bones.size());
  for (const BoneNode& bone : bones) {
    const size_t depth = bone.parent < 0 ? 0 : outline[static_cast<size_t>(bone.parent)].depth + 1;
    outline.push_back({bone.name, bone.parent, depth});
  }
  return outline;
}

std::vector<SkinBone> OutlineOf(
    std::span<const std::unique_ptr<GenericMeshInfluence>> influencePerChunk) {
  IndexByName indices;
  std::vector<SkinBone> bones = DistinctBones(influencePerChunk, indices);
  return Outliner(std::move(bones), indices).Outline();
}

MeshSummary Summarise(const IndexedMeshFile& file) {
  MeshSummary summary;
  const std::vector<ChunkWeights> weights = GatherWeights(file.mesh);
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    MeshSummary::Chunk& chunk = summary.chunks.emplace_back();
    chunk.cache = CountCaches(file.mesh.chunks[i]);
    if (!weights.empty()) chunk.bones = weights[i].bones;
    for (size_t k = 0; k < chunk.cache.size(); ++k) summary.cache[k] += chunk.cache[k];
    summary.surfaceArea += double{file.mesh.chunks[i].surfaceArea};
  }
  if (file.vertexCount > 0) {
    summary.box = file.boundingBox ? *file.boundingBox : ComputeBoundingBox(file.mesh);
  }
  summary.skeleton = OutlineOf(file.bones);
  summary.skin = OutlineOf(file.mesh.influences);
  return summary;
}

}  // namespace orv::inspect
