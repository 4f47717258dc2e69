#include "meshproc/Welding.h"

#include <algorithm>
#include <cmath>

#include "meshproc/InternTable.h"

namespace orv {

namespace {

using Values = std::array<float, 8>;  // position, texture coordinate, normal

// The inline functions here run for every corner; the compiler leaves them out of line by itself.
inline Values ValuesOf(const GenericMesh& mesh, const FaceCorner& corner) {
  const Vec3& p = mesh.m_positions[corner.position];
  const Vec3& n = mesh.m_normals[corner.normal];
  const Vec2 t = TexCoordOf(mesh, corner);
  return {p.x, p.y, p.z, t.u, t.v, n.x, n.y, n.z};
}

uint32_t Hash(const Values& v) {
  uint64_t hash = Mix(0, PairBits(v[0], v[1]));
  hash = Mix(hash, PairBits(v[2], v[3]));
  hash = Mix(hash, PairBits(v[4], v[5]));
  return static_cast<uint32_t>(Mix(hash, PairBits(v[6], v[7])));
}

bool HoldsNan(const Values& values) {
  return std::any_of(values.begin(), values.end(), [](float value) { return std::isnan(value); });
}

// Where corners of equal position and different bone weights were welded, the last one's count.
// Pinned by ChunkBuilding.AgreesWithTheLiteralProcedure.
std::vector<uint32_t> LastCornerPositions(const GenericMesh& mesh, const ChunkDraft& draft) {
  std::vector<uint32_t> positions(draft.vertices.size());
  for (size_t i = 0; i < draft.triangles.size(); ++i) {
    const GenericFace face = mesh.m_faces[draft.faces[i]];
    for (size_t c = 0; c < 3; ++c) positions[draft.triangles[i][c]] = face.corners[c].position;
  }
  return positions;
}

// The distinct corners of one chunk after the other, numbered in the order they come.
class CornerWelder {
 public:
  explicit CornerWelder(const GenericMesh& mesh)
      : m_mesh(mesh), m_latestAt(mesh.m_positions.size()) {}

  void Weld(ChunkDraft& draft, bool keepCornerMap);

 private:
  static constexpr size_t kBatch = 16;  // faces
  static constexpr uint32_t kUnknown = InternTable::kFree;

  struct Distinct {
    FaceCorner corner;
    uint32_t number;  // of the first corner that is equal to it
  };

  // A corner on its way to its number; without one, it has its values and hash.
  struct Pending {
    FaceCorner corner;
    uint32_t number;  // kUnknown at first, unless it is easily found
    Values values;
    uint32_t hash;
  };

  void NumberCorners(ChunkDraft& draft, size_t firstFace, size_t faceCount);
  void Prepare(Pending& pending, const FaceCorner& corner) const;
  void PrefetchLikelyMatch(const Pending& pending) const;
  uint32_t DistinctNumber(const Pending& pending, uint32_t cornerNumber);
  uint32_t LatestIfEqual(const FaceCorner& corner) const;
  std::vector<uint32_t> FinalPlaces() const;

  const GenericMesh& m_mesh;
  std::vector<uint32_t> m_latestAt;  // per position: a guess, checked before use, so that it may be
                                     // left over from another chunk
  std::vector<Distinct> m_distinct;
  InternTable m_table;
  std::array<std::array<Pending, 3>, kBatch> m_batch;
};

inline uint32_t CornerWelder::LatestIfEqual(const FaceCorner& corner) const {
  const uint32_t latest = m_latestAt[corner.position];
  return latest < m_distinct.size() && m_distinct[latest].corner == corner ? latest : kUnknown;
}

inline void CornerWelder::Prepare(Pending& pending, const FaceCorner& corner) const {
  pending.corner = corner;
  pending.number = LatestIfEqual(corner);
  if (pending.number != kUnknown) return;
  pending.values = ValuesOf(m_mesh, corner);
  pending.hash = Hash(pending.values);
  m_table.Prefetch(pending.hash);
}

void CornerWelder::PrefetchLikelyMatch(const Pending& pending) const {
  if (pending.number != kUnknown) return;
  const uint32_t likely = m_table.First(pending.hash);
  if (likely == InternTable::kFree) return;
  const FaceCorner& corner = m_distinct[likely].corner;
  Prefetch(&m_mesh.m_positions[corner.position]);
  Prefetch(&m_mesh.m_normals[corner.normal]);
  if (corner.texCoord < m_mesh.m_texCoords.size()) Prefetch(&m_mesh.m_texCoords[corner.texCoord]);
}

uint32_t CornerWelder::DistinctNumber(const Pending& pending, uint32_t cornerNumber) {
  if (pending.number != kUnknown) return pending.number;
  const uint32_t latest = LatestIfEqual(pending.corner);
  if (latest != kUnknown) return latest;

  const uint32_t next = static_cast<uint32_t>(m_distinct.size());
  const bool equalsNone = HoldsNan(pending.values);
  const uint32_t number =
      equalsNone ? next : m_table.FindOrAdd(pending.hash, next, [&](uint32_t other) {
        return ValuesOf(m_mesh, m_distinct[other].corner) == pending.values;
      });
  if (number == next) m_distinct.push_back({pending.corner, cornerNumber});
  m_latestAt[pending.corner.position] = equalsNone ? kUnknown : number;
  return number;
}

// In rounds over a batch of faces, so that the latency of the memory is met once in a batch and
// not at each corner.
void CornerWelder::NumberCorners(ChunkDraft& draft, size_t firstFace, size_t faceCount) {
  for (size_t i = 0; i < faceCount; ++i) {
    const GenericFace face = m_mesh.m_faces[draft.faces[firstFace + i]];
    for (size_t c = 0; c < 3; ++c) Prepare(m_batch[i][c], face.corners[c]);
  }
  for (size_t i = 0; i < faceCount; ++i) {
    for (const Pending& pending : m_batch[i]) PrefetchLikelyMatch(pending);
  }
  for (size_t i = 0; i < faceCount; ++i) {
    const size_t face = firstFace + i;
    for (size_t c = 0; c < 3; ++c) {
      draft.triangles[face][c] = DistinctNumber(m_batch[i][c], static_cast<uint32_t>(3 * face + c));
    }
  }
}

// Distinct corners stay at their own numbers as far as these are below the vertex count; the rest
// fill the gaps, the last one first.
std::vector<uint32_t> CornerWelder::FinalPlaces() const {
  std::vector<uint32_t> places(m_distinct.size());
  size_t kept = 0, moved = m_distinct.size();
  for (uint32_t place = 0; place < places.size(); ++place) {
    places[m_distinct[kept].number == place ? kept++ : --moved] = place;
  }
  return places;
}

void CornerWelder::Weld(ChunkDraft& draft, bool keepCornerMap) {
  m_distinct.clear();
  m_table = InternTable(draft.faces.size() / 2);  // a closed mesh has half as many vertices
  draft.triangles.resize(draft.faces.size());
  for (size_t i = 0; i < draft.faces.size(); i += kBatch) {
    NumberCorners(draft, i, std::min(kBatch, draft.faces.size() - i));
  }

  const std::vector<uint32_t> places = FinalPlaces();
  draft.vertices.resize(places.size());
  for (size_t i = 0; i < places.size(); ++i) draft.vertices[places[i]] = m_distinct[i].corner;
  for (auto& triangle : draft.triangles) {
    for (uint32_t& vertex : triangle) vertex = places[vertex];
  }
  if (keepCornerMap) draft.cornerMap = LastCornerPositions(m_mesh, draft);
}

}  // namespace

void WeldVertices(const GenericMesh& mesh, std::vector<ChunkDraft>& drafts, bool keepCornerMaps,
                  ExportUserInterface& ui) {
  ui.SetProgressText("Optimizing chunks");
  CornerWelder welder(mesh);
  for (size_t i = 0; i < drafts.size(); ++i) {
    ui.ReportProgress(i, drafts.size());
    welder.Weld(drafts[i], keepCornerMaps);
  }
}

}  // namespace orv
