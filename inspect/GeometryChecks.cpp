#include <algorithm>
#include <cmath>

#include "formats/IndexedMeshFile.h"
#include "inspect/Checks.h"
#include "inspect/Text.h"

namespace orv::inspect {

namespace {

constexpr double kAreaTolerance = 1e-3;  // of the area; the sum depends on the order
constexpr double kAreaSlack = 1e-6;      // square metres
constexpr float kSliver = 1e-3f;         // height by longest edge: below, no normal is sure
constexpr float kMinFaceNormalCosine = 0.9f;

void CheckVertices(const IndexedMesh::Chunk& chunk, Tally& nonFinite) {
  for (size_t i = 0; i < chunk.vertices.size(); ++i) {
    if (IsFinite(chunk.vertices[i])) continue;
    nonFinite.Add([&] {
      return "the position or texture coordinate of vertex " + std::to_string(i) +
             " is not a finite number";
    });
  }
}

// what: "normal", for the message.
void CheckUnitVectors(const std::vector<Vec3>& vectors, const char* what, Tally& nonFinite,
                      Tally& notUnit) {
  const auto sentence = [what](size_t vertex) {
    return std::string("the ") + what + " of vertex " + std::to_string(vertex) + " is ";
  };
  for (size_t i = 0; i < vectors.size(); ++i) {
    if (IsUnit(vectors[i])) continue;
    if (!IsFinite(vectors[i])) {
      nonFinite.Add([&] { return sentence(i) + "not a finite number"; });
    } else {
      notUnit.Add([&] { return sentence(i) + Number(Length(vectors[i])) + " long instead of 1"; });
    }
  }
}

struct TriangleShape {
  Vec3 cross;     // upright on the triangle, twice its area long
  float length;   // of it
  float longest;  // edge, squared
};

TriangleShape ShapeOf(const IndexedMesh::Chunk& chunk, const Triangle& triangle) {
  const Vec3 p0 = chunk.vertices[triangle[0]].Position();
  const Vec3 edge1 = chunk.vertices[triangle[1]].Position() - p0;
  const Vec3 edge2 = chunk.vertices[triangle[2]].Position() - p0;
  const Vec3 edge3 = edge2 - edge1;
  const Vec3 cross = Cross(edge1, edge2);
  return {cross, Length(cross),
          std::max({Dot(edge1, edge1), Dot(edge2, edge2), Dot(edge3, edge3)})};
}

// True also where it cannot be told.
bool StandsUpright(Vec3 normal, const TriangleShape& shape) {
  if (!std::isnormal(shape.length) || !(shape.length > kSliver * shape.longest)) return true;
  return !(Dot(shape.cross, normal) < kMinFaceNormalCosine * shape.length);
}

void CheckFaceNormal(size_t triangle, Vec3 normal, const TriangleShape& shape, Tally& nonFinite,
                     Tally& wrong) {
  const bool unit = IsUnit(normal);
  if (unit && StandsUpright(normal, shape)) return;
  const auto sentence = [triangle] {
    return "the face normal of triangle " + std::to_string(triangle);
  };
  if (!IsFinite(normal)) {
    nonFinite.Add([&] { return sentence() + " is not a finite number"; });
  } else if (unit) {
    wrong.Add([&] { return sentence() + " does not stand upright on it"; });
  } else {
    wrong.Add([&] { return sentence() + " is " + Number(Length(normal)) + " long instead of 1"; });
  }
}

// Returns twice the area of all triangles.
double CheckTriangles(const IndexedMesh::Chunk& chunk, Tally& nonFinite, Tally& wrong) {
  double doubleArea = 0;
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    const TriangleShape shape = ShapeOf(chunk, chunk.triangles[i]);
    doubleArea += double{shape.length};
    CheckFaceNormal(i, chunk.faceNormals[i], shape, nonFinite, wrong);
  }
  return doubleArea;
}

void CheckTangentsAreWanted(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
  const bool wanted = AsksForTangents(chunk.material.name);
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
}

void CheckArea(double stored, double area, const Place& place, Findings& findings) {
  if (!std::isfinite(area) || !std::isfinite(stored)) return;
  if (std::abs(stored - area) <= kAreaTolerance * area + kAreaSlack) return;
  findings.push_back({Code::AreaMismatch, place,
                      "the surface area is given as " + Number(stored) +
                          " m2, that of the triangles is " + Number(area) + " m2"});
}

void CheckOrder(const IndexedMeshFile& file, size_t number, const VertexUse& use,
                Findings& findings) {
  const Place place = PlaceInChunk(file, number, "GEOM");
  if (use.unused == 1) {
    findings.push_back({Code::UnusedVertex, place, "1 vertex belongs to no triangle"});
  } else if (use.unused > 1) {
    findings.push_back({Code::UnusedVertex, place,
                        std::to_string(use.unused) + " vertices belong to no triangle"});
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

// Everything that is measured, in one go.
void CheckNumbers(const IndexedMesh::Chunk& chunk, const Place& place, Findings& findings) {
  Tally nonFinite(findings, Code::NotFinite, place);
  Tally normals(findings, Code::NormalNotUnit, place);
  Tally tangents(findings, Code::TangentNotUnit, place);
  Tally faceNormals(findings, Code::FaceNormalWrong, place);
  CheckVertices(chunk, nonFinite);
  CheckUnitVectors(chunk.normals, "normal", nonFinite, normals);
  CheckUnitVectors(chunk.tangents, "tangent", nonFinite, tangents);
  const double doubleArea = CheckTriangles(chunk, nonFinite, faceNormals);
  CheckArea(double{chunk.surfaceArea}, doubleArea / 2, place, findings);
  if (!std::isfinite(chunk.surfaceArea)) {
    nonFinite.Add([] { return std::string("the surface area is not a finite number"); });
  }
}

}  // namespace

void CheckGeometry(const IndexedMeshFile& file, size_t number, const VertexUse& use,
                   Findings& findings) {
  CheckNumbers(file.mesh.chunks[number], PlaceInChunk(file, number, "GEOM"), findings);
  CheckTangentsAreWanted(file, number, findings);
  CheckOrder(file, number, use, findings);
  CheckNeighbours(file, number, findings);
}

}  // namespace orv::inspect
