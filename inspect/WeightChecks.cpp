#include <algorithm>
#include <cmath>

#include "inspect/Checks.h"
#include "inspect/Text.h"
#include "meshproc/MeshLimits.h"

namespace orv::inspect {

namespace {

constexpr double kWeightSumTolerance = 0.01;
constexpr float kWeightSlack = 1e-4f;

void CheckEntries(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const size_t vertexCount = file.mesh.chunks[number].vertices.size();
  Tally missing(findings, Code::WeightVertex, PlaceOfWeights(file, number));
  Tally nonFinite(findings, Code::NotFinite, PlaceOfWeights(file, number));
  for (const auto& bone : file.mesh.influences[number]->m_bones) {
    for (const VertexWeight& weight : bone->m_weights) {
      if (weight.vertex >= vertexCount) {
        missing.Add([&] {
          return "bone " + bone->m_name + " has a weight for vertex " +
                 std::to_string(static_cast<int32_t>(weight.vertex)) + " of " +
                 std::to_string(vertexCount);
        });
      }
      if (std::isfinite(weight.weight) && IsFinite(weight.offset)) continue;
      nonFinite.Add([&] {
        return "the weight or offset of vertex " + std::to_string(weight.vertex) + " in bone " +
               bone->m_name + " is not a finite number";
      });
    }
  }
}

// The header of a bone is the same in every chunk that has it.
void CheckBoneHeaders(const IndexedMesh& mesh, Findings& findings) {
  Tally tally(findings, Code::NotFinite, {"QIRF/INFL"});
  for (const auto& influence : mesh.influences) {
    for (const auto& bone : influence->m_bones) {
      if (IsFinite(bone->m_position) && IsFinite(bone->m_rotation)) continue;
      tally.Add([&] { return "the place of bone " + bone->m_name + " is not a finite number"; });
    }
  }
}

// A stored maximum against the least that the data asks for and the most that they explain.
void CheckMaximum(uint32_t stored, uint32_t least, uint32_t most, const char* what,
                  const Place& place, Findings& findings) {
  if (stored >= least && stored <= most) return;
  const bool small = stored < least;
  findings.push_back({small ? Code::MaximumTooSmall : Code::MaximumTooLarge, place,
                      std::string("the most bones of any ") + what + " is given as " +
                          std::to_string(stored) + ", but it is " +
                          std::to_string(small ? least : most)});
}

bool SkinIsUnknown(const IndexedMeshFile& file) {
  // With a skeleton the weights are counted but not written.
  return !file.bones.empty() ||
         std::any_of(file.remarks.begin(), file.remarks.end(),
                     [](const ReadProblem& remark) { return remark.fault == ReadFault::Version; });
}

// The maxima are counted before tangents copy vertices and before the triangles are put in order,
// which takes weights from copies and gathers those of unused vertices in one place.
void CheckMaxima(const IndexedMeshFile& file, const std::vector<VertexUse>& uses,
                 const std::vector<ChunkWeights>& weights, Findings& findings) {
  const bool unknown = SkinIsUnknown(file);
  uint32_t leastOfMesh = 0, mostOfMesh = 0, bones = 0;
  for (size_t i = 0; i < file.chunks.size(); ++i) {
    uint32_t least = 0, most = unknown ? UINT32_MAX : 0;
    if (!weights.empty()) {
      const bool exact = uses[i].unused == 0 && file.mesh.chunks[i].tangents.empty();
      least = weights[i].MaxBonesOfVertex(uses[i].used);
      most = exact ? least : UINT32_MAX;
      bones = std::max(bones, weights[i].bones);
    }
    leastOfMesh = std::max(leastOfMesh, least);
    mostOfMesh = std::max(mostOfMesh, most);
    if (file.chunks[i].geometryVersion < 102) continue;
    CheckMaximum(file.chunks[i].maxInfluencesPerVertex, least, most, "vertex",
                 PlaceInChunk(file, i, "GEOM"), findings);
  }
  if (file.maxInfluencesPerVertex) {
    CheckMaximum(*file.maxInfluencesPerVertex, leastOfMesh, mostOfMesh, "vertex", {"QIRF/INFO"},
                 findings);
  }
  if (file.maxBonesPerChunk) {
    CheckMaximum(*file.maxBonesPerChunk, bones, unknown ? UINT32_MAX : bones, "chunk",
                 {"QIRF/INFO"}, findings);
  }
}

void CheckChunkContent(const IndexedMeshFile& file, size_t number, const ChunkWeights& weights,
                       Findings& findings) {
  const Place place = PlaceOfWeights(file, number);
  if (weights.bones > MeshLimits().bones) {
    findings.push_back({Code::TooManyBones, place,
                        std::to_string(weights.bones) + " bones move the chunk, the engine takes " +
                            std::to_string(MeshLimits().bones)});
  }
  Tally range(findings, Code::WeightRange, place);
  for (const auto& bone : file.mesh.influences[number]->m_bones) {
    for (const VertexWeight& weight : bone->m_weights) {
      if (!(weight.weight < -kWeightSlack || weight.weight > 1 + kWeightSlack)) continue;
      range.Add([&] {
        return "the weight of vertex " + std::to_string(weight.vertex) + " in bone " +
               bone->m_name + " is " + Number(weight.weight) + ", not between 0 and 1";
      });
    }
  }
  Tally without(findings, Code::VertexWithoutWeight, place);
  Tally sum(findings, Code::WeightSum, place);
  const VertexUse use = FindVertexUse(file.mesh.chunks[number]);
  for (size_t i = 0; i < weights.sumOfVertex.size(); ++i) {
    if (!use.used[i]) continue;
    if (weights.bonesOfVertex[i] == 0) {
      without.Add([&] { return "no bone moves vertex " + std::to_string(i); });
    } else if (std::abs(weights.sumOfVertex[i] - 1) > kWeightSumTolerance) {
      sum.Add([&] {
        return "the weights of vertex " + std::to_string(i) + " sum to " +
               Number(weights.sumOfVertex[i]) + " instead of 1";
      });
    }
  }
}

}  // namespace

void CheckWeightStructure(const IndexedMeshFile& file, const std::vector<VertexUse>& uses,
                          const std::vector<ChunkWeights>& weights, Findings& findings) {
  for (size_t i = 0; i < file.mesh.influences.size(); ++i) CheckEntries(file, i, findings);
  CheckBoneHeaders(file.mesh, findings);
  CheckMaxima(file, uses, weights, findings);
}

void CheckWeightContent(const IndexedMeshFile& file, Findings& findings) {
  const std::vector<ChunkWeights> weights = GatherWeights(file.mesh);
  for (size_t i = 0; i < weights.size(); ++i) CheckChunkContent(file, i, weights[i], findings);
}

}  // namespace orv::inspect
