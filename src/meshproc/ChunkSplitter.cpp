#include "meshproc/ChunkSplitter.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <optional>
#include <unordered_set>

#include "meshproc/PieceIndex.h"

namespace orv {

namespace {

bool Exceeds(const ChunkDraft& draft, const MeshLimits& limits) {
  return draft.vertices.size() > limits.vertices || 3 * draft.triangles.size() > limits.indices;
}

// Which bones of the mesh influence name a vertex number.
class BonesOfVertices {
 public:
  BonesOfVertices(const GenericMeshInfluence* influence, size_t vertexCount)
      : m_begins(vertexCount + 2) {
    if (influence == nullptr) return;
    // Counted two places on, so that filling moves each begin to where it belongs.
    ForEach(*influence, [&](uint32_t vertex, uint32_t) { ++m_begins[vertex + 2]; });
    for (size_t i = 2; i < m_begins.size(); ++i) m_begins[i] += m_begins[i - 1];
    m_bones.resize(m_begins.back());
    ForEach(*influence,
            [&](uint32_t vertex, uint32_t bone) { m_bones[m_begins[vertex + 1]++] = bone; });
  }

  std::span<const uint32_t> operator[](uint32_t vertex) const {
    return {m_bones.data() + m_begins[vertex], m_begins[vertex + 1] - m_begins[vertex]};
  }

 private:
  // Each bone in order with each vertex it moves, once however often the bone lists it.
  template <typename Visit>
  void ForEach(const GenericMeshInfluence& influence, Visit visit) {
    std::vector<uint32_t> seenBy(m_begins.size() - 2, 0xFFFFFFFF);
    for (uint32_t bone = 0; bone < influence.m_bones.size(); ++bone) {
      for (const VertexWeight& weight : influence.m_bones[bone]->m_weights) {
        if (weight.vertex >= seenBy.size() || seenBy[weight.vertex] == bone) continue;
        seenBy[weight.vertex] = bone;
        visit(weight.vertex, bone);
      }
    }
  }

  std::vector<uint32_t> m_begins;
  std::vector<uint32_t> m_bones;
};

// Hands the triangles of one draft out to pieces.
class Splitter {
 public:
  Splitter(const ChunkDraft& parent, const BonesOfVertices& bones, size_t boneCount,
           const MeshLimits& limits)
      : m_parent(parent), m_bones(bones), m_limits(limits), m_open(boneCount, limits.bones) {}

  void Place(uint32_t triangle);
  void AppendPieces(std::vector<ChunkDraft>& drafts);

 private:
  struct Piece {
    std::vector<uint32_t> triangles;                       // of the parent
    std::optional<std::unordered_set<uint32_t>> vertices;  // of the parent; see HasVertexRoom
  };

  void CollectBones(uint32_t triangle);
  bool HasVertexRoom(Piece& piece, uint32_t triangle);
  void Take(uint32_t piece, uint32_t triangle);
  ChunkDraft BuildDraft(uint32_t number);

  const ChunkDraft& m_parent;
  const BonesOfVertices& m_bones;
  const MeshLimits& m_limits;
  PieceIndex m_open;
  std::vector<Piece> m_pieces;
  std::vector<BoneUse> m_triangleBones;

  // While the drafts are built, per parent vertex: the latest piece that has it, and its number
  // there.
  std::vector<uint32_t> m_lastPiece, m_localNumber;
};

// The bones are looked up by the number a vertex has in the chunk, although weights name positions
// of the mesh, as in every file already written.
// Pinned by ChunkBuilding.AgreesWithTheLiteralProcedure.
void Splitter::CollectBones(uint32_t triangle) {
  m_triangleBones.clear();
  for (const uint32_t vertex : m_parent.triangles[triangle]) {
    for (const uint32_t bone : m_bones[vertex]) {
      const auto known = std::find_if(m_triangleBones.begin(), m_triangleBones.end(),
                                      [&](const BoneUse& use) { return use.bone == bone; });
      if (known == m_triangleBones.end()) {
        m_triangleBones.push_back({bone, 1});
      } else {
        ++known->corners;
      }
    }
  }
}

// A piece has no more vertices than indices, so its vertices are only gathered where the number of
// indices does not settle the question.
bool Splitter::HasVertexRoom(Piece& piece, uint32_t triangle) {
  if (3 * (piece.triangles.size() + 1) <= m_limits.vertices) return true;
  if (!piece.vertices) {
    piece.vertices.emplace();
    for (const uint32_t taken : piece.triangles) {
      piece.vertices->insert(m_parent.triangles[taken].begin(), m_parent.triangles[taken].end());
    }
  }
  const auto& corners = m_parent.triangles[triangle];
  const size_t missing = std::count_if(corners.begin(), corners.end(), [&](uint32_t vertex) {
    return !piece.vertices->contains(vertex);
  });
  return piece.vertices->size() + missing <= m_limits.vertices;
}

void Splitter::Place(uint32_t triangle) {
  CollectBones(triangle);
  const auto hasVertexRoom = [&](uint32_t piece) {
    return HasVertexRoom(m_pieces[piece], triangle);
  };
  uint32_t piece = m_open.FindFirst(m_triangleBones, hasVertexRoom);
  if (piece == PieceIndex::kNone) {
    piece = m_open.Open();
    m_pieces.emplace_back();
    if (!m_open.HasRoom(piece, m_triangleBones) || !hasVertexRoom(piece)) return;
  }
  Take(piece, triangle);
}

void Splitter::Take(uint32_t number, uint32_t triangle) {
  Piece& piece = m_pieces[number];
  piece.triangles.push_back(triangle);
  if (piece.vertices) {
    piece.vertices->insert(m_parent.triangles[triangle].begin(),
                           m_parent.triangles[triangle].end());
  }
  m_open.AddBones(number, m_triangleBones);
  if (3 * (piece.triangles.size() + 1) > m_limits.indices) {
    piece.vertices.reset();
    m_open.Close(number);
  }
}

ChunkDraft Splitter::BuildDraft(uint32_t number) {
  const std::vector<uint32_t> triangles = std::move(m_pieces[number].triangles);
  ChunkDraft draft;
  draft.material = m_parent.material;
  draft.faces.reserve(triangles.size());
  draft.triangles.reserve(triangles.size());
  for (const uint32_t triangle : triangles) {
    draft.faces.push_back(m_parent.faces[triangle]);
    auto& indices = draft.triangles.emplace_back(m_parent.triangles[triangle]);
    for (uint32_t& index : indices) {
      if (m_lastPiece[index] != number) {
        m_lastPiece[index] = number;
        m_localNumber[index] = static_cast<uint32_t>(draft.vertices.size());
        draft.vertices.push_back(m_parent.vertices[index]);
        if (!m_parent.cornerMap.empty()) draft.cornerMap.push_back(m_parent.cornerMap[index]);
      }
      index = m_localNumber[index];
    }
  }
  return draft;
}

void Splitter::AppendPieces(std::vector<ChunkDraft>& drafts) {
  m_lastPiece.assign(m_parent.vertices.size(), PieceIndex::kNone);
  m_localNumber.resize(m_parent.vertices.size());
  for (uint32_t i = 0; i < m_pieces.size(); ++i) drafts.push_back(BuildDraft(i));
}

// Appends the pieces of one draft, which is used up.
void Split(ChunkDraft parent, const BonesOfVertices& bones, size_t boneCount,
           const MeshLimits& limits, std::vector<ChunkDraft>& pieces) {
  Splitter splitter(parent, bones, boneCount, limits);
  for (uint32_t i = 0; i < parent.triangles.size(); ++i) splitter.Place(i);
  splitter.AppendPieces(pieces);
}

}  // namespace

void SplitToLimits(std::vector<ChunkDraft>& drafts, const GenericMeshInfluence* influence,
                   const MeshLimits& limits, ExportUserInterface& ui) {
  assert(limits.indices >= 3);
  const size_t oldCount = drafts.size();
  const auto firstToSplit =
      std::stable_partition(drafts.begin(), drafts.end(),
                            [&](const ChunkDraft& draft) { return !Exceeds(draft, limits); });
  if (firstToSplit == drafts.end()) return;

  std::vector<ChunkDraft> parents(std::make_move_iterator(firstToSplit),
                                  std::make_move_iterator(drafts.end()));
  drafts.erase(firstToSplit, drafts.end());
  size_t vertexCount = 0;
  for (const ChunkDraft& parent : parents) {
    vertexCount = std::max(vertexCount, parent.vertices.size());
  }
  const BonesOfVertices bones(influence, vertexCount);
  const size_t boneCount = influence != nullptr ? influence->m_bones.size() : 0;
  for (ChunkDraft& parent : parents) Split(std::move(parent), bones, boneCount, limits, drafts);
  if (drafts.size() != oldCount) {
    ui.Report("chunks-split", oldCount, drafts.size());
  }
}

}  // namespace orv
