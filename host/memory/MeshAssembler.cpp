#include "host/memory/MeshAssembler.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstring>
#include <utility>

namespace orv::host {
namespace {

size_t HashBits(const Point3& p, uint32_t seed) {
  uint32_t bits[3];
  std::memcpy(bits, &p, sizeof bits);
  uint64_t hash = (uint64_t{bits[0]} << 32 | bits[1]) * 0x9E3779B97F4A7C15u;
  hash = (hash ^ (hash >> 29) ^ (uint64_t{bits[2]} << 32 | seed)) * 0xBF58476D1CE4E5B9u;
  return static_cast<size_t>(hash ^ (hash >> 32));
}

bool SameBits(const Point3& a, const Point3& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// A fan is the corners around a position that share a normal.
constexpr uint32_t kNoFan = 0xFFFFFFFF;

// Smoothing groups that tell the fans of one position apart.
struct SmoothingGroups {
  std::vector<uint32_t> fans;  // groups of each fan; 0 when none of its faces could be coloured
  size_t uncolouredFaces = 0;  // left flat although all their corners have a fan
};

// The bit for a face of these fans: `forbidden` are the groups of other fans at its corners.
// Prefers the groups that the fans have already, so that they stay few. 0 when all are forbidden.
uint32_t ChooseGroup(uint32_t forbidden, const uint32_t (&groups)[3]) {
  const uint32_t allowed = ~forbidden;
  const auto [a, b, c] = groups;
  const uint32_t wishes[] = {a & b & c, (a & b) | (b & c) | (c & a), a | b | c, 0xFFFFFFFF};
  for (const uint32_t wish : wishes) {
    const uint32_t choice = wish & allowed;
    if (choice != 0) return choice & (~choice + 1);  // the lowest
  }
  return 0;
}

// Gives each face one group bit, such that no other fan at any of its corners holds that bit. A
// face without a fan at some corner gets none. Texture faces tell the file vertices of a face,
// `vertexFan` their fans, `fanPosition` where these are. Linear in the faces.
SmoothingGroups PaintFaces(Mesh& mesh, size_t positionCount, std::span<const uint32_t> vertexFan,
                           std::span<const uint32_t> fanPosition) {
  SmoothingGroups result;
  result.fans.assign(fanPosition.size(), 0);
  // A bit belongs to one fan of a position at most. So what the other fans there hold is the
  // position's bits without the fan's own.
  std::vector<uint32_t> atPosition(positionCount, 0);
  for (int face = 0; face < mesh.getNumFaces(); ++face) {
    const DWORD* corners = mesh.tvFace[face].t;
    uint32_t fans[3] = {vertexFan[corners[0]], vertexFan[corners[1]], vertexFan[corners[2]]};
    mesh.faces[face].setSmGroup(0);
    if (std::ranges::find(fans, kNoFan) != std::end(fans)) continue;
    // A face that is at one position twice can have one normal there only.
    for (int k = 1; k < 3; ++k) {
      for (int j = 0; j < k; ++j) {
        if (fanPosition[fans[j]] == fanPosition[fans[k]]) fans[k] = fans[j];
      }
    }
    uint32_t groups[3];
    uint32_t forbidden = 0;
    for (int k = 0; k < 3; ++k) {
      groups[k] = result.fans[fans[k]];
      forbidden |= atPosition[fanPosition[fans[k]]] & ~groups[k];
    }
    const uint32_t group = ChooseGroup(forbidden, groups);
    if (group == 0) ++result.uncolouredFaces;
    for (const uint32_t fan : fans) {
      result.fans[fan] |= group;
      atPosition[fanPosition[fan]] |= group;
    }
    mesh.faces[face].setSmGroup(group);
  }
  return result;
}

}  // namespace

MeshAssembler::Table::Table(size_t entries) : m_slots(std::bit_ceil(entries + entries / 2 + 1)) {}

void MeshAssembler::Table::Prefetch([[maybe_unused]] size_t hash) const {
#ifdef __GNUC__
  __builtin_prefetch(&m_slots[hash & (m_slots.size() - 1)]);
#endif
}

// The hashes are compared first: the entries themselves are far away.
template <typename Matches>
uint32_t& MeshAssembler::Table::Find(size_t hash, Matches matches) {
  const size_t mask = m_slots.size() - 1;
  const uint32_t tag = static_cast<uint32_t>(hash >> 32);
  size_t i = hash & mask;
  while (m_slots[i].number != kNone && (m_slots[i].hash != tag || !matches(m_slots[i].number)))
    i = (i + 1) & mask;
  m_slots[i].hash = tag;
  return m_slots[i].number;
}

MeshAssembler::MeshAssembler(size_t vertexCount, size_t triangleCount)
    : m_vertexLimit(vertexCount), m_positionTable(vertexCount) {
  m_mesh.setNumFaces(static_cast<int>(triangleCount));
  m_mesh.setNumTVFaces(static_cast<int>(triangleCount));
  // What stays unused of these is never touched, so it takes no memory.
  m_vertexPosition.reserve(vertexCount);
  m_vertexFan.reserve(vertexCount);
  m_positions.reserve(vertexCount);
  m_fanNormals.reserve(vertexCount);
  m_fanPosition.reserve(vertexCount);
  m_firstFan.reserve(vertexCount);
  m_texCoords.reserve(vertexCount);
}

void MeshAssembler::BeginPart(MtlID material) {
  m_parts.push_back({material, static_cast<uint32_t>(m_vertexPosition.size()), m_faceCount,
                     static_cast<uint32_t>(m_texCoords.size()), false});
}

void MeshAssembler::Expect(const Point3& position) const {
  m_positionTable.Prefetch(HashBits(position, 0));
}

void MeshAssembler::AddVertex(const FileVertex& vertex) {
  const uint32_t position = FindOrAddPosition(vertex);
  m_vertexPosition.push_back(position);
  m_vertexFan.push_back(vertex.normal ? FindOrAddFan(position, *vertex.normal) : kNoFan);
  if (vertex.texCoord) {
    m_parts.back().hasTexCoords = true;
    m_texCoords.push_back(*vertex.texCoord);
  }
}

uint32_t MeshAssembler::FindOrAddPosition(const FileVertex& vertex) {
  uint32_t& slot = m_positionTable.Find(HashBits(vertex.position, 0), [&](uint32_t position) {
    if (!SameBits(m_positions[position], vertex.position)) return false;
    if (m_skin.starts.empty()) return vertex.weights.empty();
    return std::ranges::equal(m_skin.Of(position), vertex.weights);
  });
  if (slot == Table::kNone) {
    slot = static_cast<uint32_t>(m_positions.size());
    m_positions.push_back(vertex.position);
    AddWeights(vertex.weights);
  }
  return slot;
}

void MeshAssembler::AddWeights(std::span<const BoneWeight> weights) {
  if (m_skin.starts.empty()) {
    if (weights.empty()) return;
    m_skin.starts.assign(m_positions.size(), 0);
  }
  m_skin.weights.insert(m_skin.weights.end(), weights.begin(), weights.end());
  m_skin.starts.push_back(static_cast<uint32_t>(m_skin.weights.size()));
}

// Most positions have one fan, which needs no table.
uint32_t MeshAssembler::FindOrAddFan(uint32_t position, const Point3& normal) {
  if (m_firstFan.size() <= position) m_firstFan.resize(position + 1, kNoFan);
  uint32_t& first = m_firstFan[position];
  if (first == kNoFan) return first = AddFan(position, normal);
  if (SameBits(m_fanNormals[first], normal)) return first;
  if (m_fanTable.Empty()) m_fanTable = Table(m_vertexLimit);
  uint32_t& slot = m_fanTable.Find(HashBits(normal, position), [&](uint32_t fan) {
    return m_fanPosition[fan] == position && SameBits(m_fanNormals[fan], normal);
  });
  if (slot == Table::kNone) slot = AddFan(position, normal);
  return slot;
}

uint32_t MeshAssembler::AddFan(uint32_t position, const Point3& normal) {
  m_fanNormals.push_back(normal);
  m_fanPosition.push_back(position);
  return static_cast<uint32_t>(m_fanNormals.size() - 1);
}

void MeshAssembler::AddTriangle(uint32_t a, uint32_t b, uint32_t c) {
  const uint32_t first = m_parts.back().firstVertex;
  const uint32_t corners[3] = {first + a, first + b, first + c};
  Face& face = m_mesh.faces[m_faceCount];
  face.setVerts(m_vertexPosition[corners[0]], m_vertexPosition[corners[1]],
                m_vertexPosition[corners[2]]);
  face.setMatID(m_parts.back().material);
  m_mesh.tvFace[m_faceCount].setTVerts(corners[0], corners[1], corners[2]);
  ++m_faceCount;
}

AssembledMesh MeshAssembler::Finish() {
  m_positionTable = Table();
  m_fanTable = Table();
  m_firstFan = {};
  m_vertexPosition = {};
  AssembledMesh result;
  result.mesh = std::move(m_mesh);
  result.skin = std::move(m_skin);
  result.mesh.setNumFaces(static_cast<int>(m_faceCount));
  result.mesh.setNumTVFaces(static_cast<int>(m_faceCount));
  SetPositions(result.mesh);
  SetNormals(result);
  SetTexCoords(result.mesh);
  return result;
}

void MeshAssembler::SetPositions(Mesh& mesh) {
  mesh.setNumVerts(static_cast<int>(m_positions.size()));
  std::ranges::copy(m_positions, mesh.verts);
}

void MeshAssembler::SetNormals(AssembledMesh& result) {
  Mesh& mesh = result.mesh;
  const size_t positionCount = m_positions.size();
  m_positions = {};
  const SmoothingGroups groups = PaintFaces(mesh, positionCount, m_vertexFan, m_fanPosition);
  result.flattenedFaces = groups.uncolouredFaces;

  // Sorted by position; within one, in the order in which they came.
  std::vector<uint8_t> counts(positionCount, 0);  // at most 32, a bit each
  for (size_t fan = 0; fan < m_fanPosition.size(); ++fan) {
    if (groups.fans[fan] != 0) ++counts[m_fanPosition[fan]];
  }
  std::vector<uint32_t> next(positionCount + 1, 0);
  for (size_t v = 0; v < positionCount; ++v) next[v + 1] = next[v] + counts[v];
  std::vector<RNormal> normals(next[positionCount]);
  for (size_t fan = 0; fan < m_fanPosition.size(); ++fan) {
    if (groups.fans[fan] == 0) continue;
    normals[next[m_fanPosition[fan]]++] = RNormal(m_fanNormals[fan], groups.fans[fan]);
  }
  m_vertexFan = {};
  m_fanNormals = {};
  m_fanPosition = {};
  [[maybe_unused]] const bool fits = mesh.specifyNormals(counts, normals);
  assert(fits);
}

// File vertices become texture vertices: the same ones, as long as all parts have them.
void MeshAssembler::SetTexCoords(Mesh& mesh) {
  if (m_texCoords.empty()) {
    mesh.setNumTVFaces(0);
    return;
  }
  const bool someWithout =
      std::ranges::any_of(m_parts, [](const Part& p) { return !p.hasTexCoords; });
  if (someWithout) {
    const DWORD origin = static_cast<DWORD>(m_texCoords.size());
    m_texCoords.emplace_back();
    for (size_t p = 0; p < m_parts.size(); ++p) {
      const Part& part = m_parts[p];
      const uint32_t end = p + 1 < m_parts.size() ? m_parts[p + 1].firstFace : m_faceCount;
      for (uint32_t face = part.firstFace; face < end; ++face) {
        for (DWORD& t : mesh.tvFace[face].t) {
          t = part.hasTexCoords ? t - part.firstVertex + part.firstTexCoord : origin;
        }
      }
    }
  }
  mesh.setNumTVerts(static_cast<int>(m_texCoords.size()));
  std::ranges::copy(m_texCoords, mesh.tVerts);
  m_texCoords = {};
}

}  // namespace orv::host
