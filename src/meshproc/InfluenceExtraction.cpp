#include "meshproc/InfluenceExtraction.h"

#include <algorithm>

namespace orv {

namespace {

// The chunk vertices that take their weights from one vertex of the mesh, in chunk order and
// ascending within a chunk.
class ChunkVertices {
 public:
  struct Place {
    uint32_t chunk;
    uint32_t vertex;
  };

  explicit ChunkVertices(std::span<const std::vector<uint32_t>> cornerMaps) {
    uint32_t sourceCount = 0;
    for (const auto& map : cornerMaps) {
      for (const uint32_t source : map) sourceCount = std::max(sourceCount, source + 1);
    }
    // Counted two places on, so that filling moves each begin to where it belongs.
    m_begins.resize(size_t{sourceCount} + 2);
    for (const auto& map : cornerMaps) {
      for (const uint32_t source : map) ++m_begins[source + 2];
    }
    for (size_t i = 2; i < m_begins.size(); ++i) m_begins[i] += m_begins[i - 1];
    m_places.resize(m_begins.back());
    for (uint32_t chunk = 0; chunk < cornerMaps.size(); ++chunk) {
      for (uint32_t vertex = 0; vertex < cornerMaps[chunk].size(); ++vertex) {
        m_places[m_begins[cornerMaps[chunk][vertex] + 1]++] = {chunk, vertex};
      }
    }
  }

  // Empty for a number beyond the mesh's vertices: merged influences can hold such.
  std::span<const Place> Of(uint32_t source) const {
    if (source >= m_begins.size() - 2) return {};
    return {m_places.data() + m_begins[source], m_begins[source + 1] - m_begins[source]};
  }

 private:
  std::vector<uint32_t> m_begins;
  std::vector<Place> m_places;
};

std::unique_ptr<GenericBoneInfluence> WithoutWeights(const GenericBoneInfluence& bone) {
  return std::make_unique<GenericBoneInfluence>(bone.m_name, bone.m_parentName, bone.m_position,
                                                bone.m_rotation);
}

}  // namespace

std::vector<std::unique_ptr<GenericMeshInfluence>> ExtractInfluences(
    const GenericMeshInfluence& mesh, std::span<const std::vector<uint32_t>> cornerMaps,
    ExportUserInterface& ui) {
  ui.SetProgressText("Extracting mesh influence");
  std::vector<std::unique_ptr<GenericMeshInfluence>> influences;
  influences.reserve(cornerMaps.size());
  for (size_t i = 0; i < cornerMaps.size(); ++i) {
    ui.ReportProgress(i, cornerMaps.size());
    influences.push_back(std::make_unique<ExGenericMeshInfluence>());
    for (const auto& bone : mesh.m_bones) influences[i]->AddBone(WithoutWeights(*bone));
  }

  const ChunkVertices places(cornerMaps);
  for (size_t bone = 0; bone < mesh.m_bones.size(); ++bone) {
    for (const VertexWeight& weight : mesh.m_bones[bone]->m_weights) {
      for (const auto [chunk, vertex] : places.Of(weight.vertex)) {
        influences[chunk]->m_bones[bone]->m_weights.push_back(
            {vertex, weight.weight, weight.offset});
      }
    }
  }
  return influences;
}

}  // namespace orv
