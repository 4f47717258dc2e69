#include <algorithm>
#include <cmath>

#include "formats/FileVersions.h"
#include "inspect/Checks.h"
#include "inspect/Measures.h"
#include "inspect/Text.h"
#include "meshproc/ExIndexedMesh.h"

namespace orv::inspect {

namespace {

constexpr double kAreaTolerance = 1e-3;  // of the area; the sum depends on the order
constexpr double kAreaSlack = 1e-6;      // square metres
constexpr float kSliver = 1e-3f;         // height by longest edge: below, no normal is sure
constexpr float kMinFaceNormalCosine = 0.9f;

template <typename Record>
void TallyNonFinite(Tally& tally, const std::vector<Record>& records, const char* what) {
  for (size_t i = 0; i < records.size(); ++i) {
    if (IsFinite(records[i])) continue;
    tally.Add([&] {
      return std::string("the ") + what + " " + std::to_string(i) + " is not a finite number";
    });
  }
}

void CheckNumbers(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
  Tally tally(findings, Code::NotFinite, PlaceInChunk(file, number, "GEOM"));
  TallyNonFinite(tally, chunk.vertices, "position or texture coordinate of vertex");
  TallyNonFinite(tally, chunk.normals, "normal of vertex");
  TallyNonFinite(tally, chunk.tangents, "tangent of vertex");
  TallyNonFinite(tally, chunk.faceNormals, "face normal of triangle");
  if (!std::isfinite(chunk.surfaceArea)) {
    tally.Add([] { return std::string("the surface area is not a finite number"); });
  }
}

void TallyNotUnit(Findings& findings, Code code, const Place& place,
                  const std::vector<Vec3>& vectors, const char* what) {
  Tally tally(findings, code, place);
  for (size_t i = 0; i < vectors.size(); ++i) {
    if (IsUnit(vectors[i]) || !IsFinite(vectors[i])) continue;
    tally.Add([&] {
      return std::string("the ") + what + " of vertex " + std::to_string(i) + " is " +
             Number(Length(vectors[i])) + " long instead of 1";
    });
  }
}

// Whether a face normal points where its triangle does. True where that cannot be told.
bool Agrees(const IndexedMesh::Chunk& chunk, size_t number) {
  const auto& [a, b, c] = chunk.triangles[number];
  const Vec3 p0 = chunk.vertices[a].Position();
  const Vec3 edge1 = chunk.vertices[b].Position() - p0;
  const Vec3 edge2 = chunk.vertices[c].Position() - p0;
  const Vec3 edge3 = edge2 - edge1;
  const Vec3 cross = Cross(edge1, edge2);
  const float length = Length(cross);
  const float longest = std::max({Dot(edge1, edge1), Dot(edge2, edge2), Dot(edge3, edge3)});
  if (!std::isnormal(length) || !(length > kSliver * longest)) return true;
  return !(Dot(cross, chunk.faceNormals[number]) < kMinFaceNormalCosine * length);
}

void CheckFaceNormals(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
  Tally tally(findings, Code::FaceNormalWrong, PlaceInChunk(file, number, "GEOM"));
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    const Vec3 normal = chunk.faceNormals[i];
    if (!IsFinite(normal)) continue;
    const bool unit = IsUnit(normal);
    if (unit && Agrees(chunk, i)) continue;
    tally.Add([&] {
      return "the face normal of triangle " + std::to_string(i) +
             (unit ? " does not stand upright on it"
                   : " is " + Number(Length(normal)) + " long instead of 1");
    });
  }
}

void CheckTangents(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
  const bool wanted = chunk.material.name.find(".tbump") != std::string::npos;
  const bool possible =
      file.chunks[number].geometryVersion >= kGeometryVersion && !chunk.vertices.empty();
  const Place place = PlaceInChunk(file, number, "GEOM");
  if (wanted && possible && chunk.tangents.empty()) {
    findings.push_back(
        {Code::TangentsMissing, place, "the material asks for tangents, but there are none"});
  }
  if (!wanted && !chunk.tangents.empty()) {
    findings.push_back({Code::TangentsUnexpected, place,
                        "there are tangents, but the material does not ask for them"});
  }
  TallyNotUnit(findings, Code::TangentNotUnit, place, chunk.tangents, "tangent");
}

void CheckArea(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const double stored = double{file.mesh.chunks[number].surfaceArea};
  const double area = double{ComputeSurfaceArea(file.mesh.chunks[number])};
  if (!std::isfinite(area) || !std::isfinite(stored)) return;
  if (std::abs(stored - area) <= kAreaTolerance * area + kAreaSlack) return;
  findings.push_back({Code::AreaMismatch, PlaceInChunk(file, number, "GEOM"),
                      "the surface area is given as " + Number(stored) +
                          " m2, that of the triangles is " + Number(area) + " m2"});
}

void CheckOrder(const IndexedMeshFile& file, size_t number, const VertexUse& use,
                Findings& findings) {
  const Place place = PlaceInChunk(file, number, "GEOM");
  if (use.unused > 0) {
    findings.push_back(
        {Code::UnusedVertex, place, Counted(use.unused, "vertice") + " belong to no triangle"});
    if (use.unused == 1) findings.back().text = "1 vertex belongs to no triangle";
  }
  if (use.inOrderOfFirstUse) return;
  if (const size_t repeated = CountRepeatedTriangles(file.mesh.chunks[number])) {
    findings.push_back({Code::RepeatedTriangle, place,
                        "a triangle is there twice, so the chunk has kept the scene's order and "
                        "is slow to draw",
                        repeated});
  } else {
    findings.push_back({Code::IndexOrder, place,
                        "the vertices are not in the order in which the triangles use them, so "
                        "the chunk is slow to draw"});
  }
}

// Numbers count the triangles as they were before degenerate ones were taken out, so only the chunk
// can be checked.
void CheckNeighbours(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const auto& neighbours = file.mesh.chunks[number].neighbours;
  Tally tally(findings, Code::NeighbourRange, PlaceInChunk(file, number, "NINF"));
  for (size_t i = 0; i < neighbours.size(); ++i) {
    for (const uint32_t neighbour : neighbours[i]) {
      const uint32_t chunk = neighbour >> 16;
      if (neighbour == IndexedMesh::kNoNeighbour || chunk < file.mesh.chunks.size()) continue;
      tally.Add([&] {
        return "a neighbour of triangle " + std::to_string(i) + " is in chunk " +
               std::to_string(chunk) + ", which is not there";
      });
    }
  }
}

}  // namespace

void CheckGeometry(const IndexedMeshFile& file, size_t number, const VertexUse& use,
                   Findings& findings) {
  CheckNumbers(file, number, findings);
  TallyNotUnit(findings, Code::NormalNotUnit, PlaceInChunk(file, number, "GEOM"),
               file.mesh.chunks[number].normals, "normal");
  CheckFaceNormals(file, number, findings);
  CheckTangents(file, number, findings);
  CheckArea(file, number, findings);
  CheckOrder(file, number, use, findings);
  CheckNeighbours(file, number, findings);
}

}  // namespace orv::inspect
