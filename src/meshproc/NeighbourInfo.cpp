#include "meshproc/NeighbourInfo.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <span>

#include "meshproc/InternTable.h"

namespace orv {

namespace {

constexpr uint32_t kNowhere = 0xFFFFFFFF;  // a position that holds a NaN equals no other

using Corners = std::array<uint32_t, 3>;  // position numbers; equal positions have equal numbers

// The triangles of the mesh by their edges.
class EdgeTable {
 public:
  explicit EdgeTable(size_t expectedEdges) : m_table(expectedEdges) {}

  void Add(const Corners& corners, uint32_t triangle);
  uint32_t Last(uint32_t a, uint32_t b) const;
  uint32_t LastWithout(uint32_t a, uint32_t b, uint32_t corner) const;

 private:
  struct Edge {
    uint32_t a, b;  // a <= b
    uint32_t last = IndexedMesh::kNoNeighbour;
    uint32_t lastThird = kNowhere;                // the last triangle's other corner
    uint32_t before = IndexedMesh::kNoNeighbour;  // the last triangle with another third corner
  };

  void Add(uint32_t a, uint32_t b, uint32_t third, uint32_t triangle);
  const Edge* Find(uint32_t a, uint32_t b) const;
  auto IsEdge(uint32_t a, uint32_t b) const {
    return [this, a, b](uint32_t edge) { return m_edges[edge].a == a && m_edges[edge].b == b; };
  }
  static uint32_t Hash(uint32_t a, uint32_t b) {
    return static_cast<uint32_t>(Mix(0, a | uint64_t{b} << 32));
  }

  std::deque<Edge> m_edges;  // grows without a second copy
  InternTable m_table;
};

void EdgeTable::Add(const Corners& corners, uint32_t triangle) {
  const auto [a, b, c] = corners;
  Add(a, b, c, triangle);
  Add(b, c, a, triangle);
  Add(c, a, b, triangle);
}

void EdgeTable::Add(uint32_t a, uint32_t b, uint32_t third, uint32_t triangle) {
  if (a == kNowhere || b == kNowhere) return;
  if (a > b) std::swap(a, b);
  const uint32_t next = static_cast<uint32_t>(m_edges.size());
  const uint32_t number = m_table.FindOrAdd(Hash(a, b), next, IsEdge(a, b));
  if (number == next) m_edges.push_back({a, b});
  Edge& edge = m_edges[number];
  if (edge.lastThird != third) edge.before = edge.last;
  edge.last = triangle;
  edge.lastThird = third;
}

const EdgeTable::Edge* EdgeTable::Find(uint32_t a, uint32_t b) const {
  if (a > b) std::swap(a, b);
  const uint32_t number = m_table.Find(Hash(a, b), IsEdge(a, b));
  return number != InternTable::kFree ? &m_edges[number] : nullptr;
}

uint32_t EdgeTable::Last(uint32_t a, uint32_t b) const {
  const Edge* edge = Find(a, b);
  return edge != nullptr ? edge->last : IndexedMesh::kNoNeighbour;
}

// The last triangle on the edge that has no corner at the given position.
uint32_t EdgeTable::LastWithout(uint32_t a, uint32_t b, uint32_t corner) const {
  const Edge* edge = Find(a, b);
  if (edge == nullptr || corner == a || corner == b) return IndexedMesh::kNoNeighbour;
  return edge->lastThird != corner || corner == kNowhere ? edge->last : edge->before;
}

// Numbers for the vertices' positions, chunk after chunk.
std::vector<uint32_t> NumberPositions(std::span<const IndexedMesh::Chunk> chunks) {
  size_t vertexCount = 0;
  for (const auto& chunk : chunks) vertexCount += chunk.vertices.size();
  std::vector<uint32_t> numbers;
  numbers.reserve(vertexCount);
  std::vector<Vec3> distinct;
  InternTable table(vertexCount);
  for (const auto& chunk : chunks) {
    for (const IndexedVertex& vertex : chunk.vertices) {
      const Vec3 p = vertex.Position();
      if (std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z)) {
        numbers.push_back(kNowhere);
        continue;
      }
      const uint64_t hash = Mix(Mix(0, PairBits(p.x, p.y)), PairBits(p.z, 0));
      const uint32_t next = static_cast<uint32_t>(distinct.size());
      numbers.push_back(table.FindOrAdd(static_cast<uint32_t>(hash), next,
                                        [&](uint32_t other) { return distinct[other] == p; }));
      if (numbers.back() == next) distinct.push_back(p);
    }
  }
  return numbers;
}

// Calls visit(chunk, triangle, corners) for all triangles in order; visitChunk before each chunk's.
template <typename VisitChunk, typename Visit>
void ForEachTriangle(std::span<const IndexedMesh::Chunk> chunks,
                     std::span<const uint32_t> positions, VisitChunk visitChunk, Visit visit) {
  for (size_t i = 0; i < chunks.size(); ++i) {
    visitChunk(i);
    for (size_t j = 0; j < chunks[i].triangles.size(); ++j) {
      const auto [a, b, c] = chunks[i].triangles[j];
      visit(i, j, Corners{positions[a], positions[b], positions[c]});
    }
    positions = positions.subspan(chunks[i].vertices.size());
  }
}

}  // namespace

void BuildNeighbourInfo(std::vector<IndexedMesh::Chunk>& chunks, ExportUserInterface& ui) {
  ui.SetProgressText("Building neighbour info");
  const std::vector<uint32_t> positions = NumberPositions(chunks);
  size_t triangleCount = 0;
  for (const auto& chunk : chunks) triangleCount += chunk.triangles.size();

  EdgeTable edges(triangleCount + triangleCount / 2);  // as many as a closed mesh has
  ForEachTriangle(
      chunks, positions, [](size_t) {},
      [&](size_t chunk, size_t triangle, const Corners& corners) {
        edges.Add(corners, static_cast<uint32_t>(chunk << 16 | triangle));
      });
  const auto beginChunk = [&](size_t chunk) {
    ui.ReportProgress(chunk, chunks.size());
    ui.SetProgressText("Building neighbor array");
    chunks[chunk].neighbours.reserve(chunks[chunk].triangles.size());
  };
  ForEachTriangle(chunks, positions, beginChunk, [&](size_t chunk, size_t, const Corners& c) {
    chunks[chunk].neighbours.push_back(
        {edges.Last(c[0], c[1]), edges.LastWithout(c[1], c[2], c[0]), edges.Last(c[2], c[0])});
  });
}

}  // namespace orv
