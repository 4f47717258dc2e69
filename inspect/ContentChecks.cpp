#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_set>

#include "inspect/Checks.h"
#include "inspect/Info.h"
#include "inspect/Text.h"
#include "meshproc/MeshLimits.h"
#include "platform/ExString.h"

namespace orv::inspect {

namespace {

constexpr float kFarTexCoord = 32;  // repetitions of the picture
constexpr double kFlat = 1e-6;      // height by longest edge of a triangle that is a line
constexpr float kLargeSize = 100;   // metres
constexpr float kSmallSize = 0.01f;

struct MaterialType {
  const char* name;
  int32_t channel;  // of the map that it shows; -1: none
};

constexpr MaterialType kMaterialTypes[] = {
    {"notex", -1},          {"onetex", kDiffuse},       {"reflect", kReflection},
    {"gloss", kReflection}, {"tribillboard", kDiffuse}, {"billboard", kDiffuse},
    {"tbump", kBump}};

const MaterialType* FindType(std::string_view word) {
  const auto found =
      std::find_if(std::begin(kMaterialTypes), std::end(kMaterialTypes),
                   [&](const MaterialType& type) { return EqualIgnoringCase(type.name, word); });
  return found == std::end(kMaterialTypes) ? nullptr : found;
}

std::vector<std::string> SplitAtDots(std::string_view text) {
  std::vector<std::string> words{""};
  for (const char c : text) {
    if (c == '.') {
      words.emplace_back();
    } else {
      words.back() += c;
    }
  }
  return words;
}

bool IsLetterOrDigit(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

void CheckTypeWord(const GenericMaterial& material, const std::string& word, const Place& place,
                   Findings& findings) {
  const MaterialType* const type = FindType(word);
  if (!type) {
    findings.push_back(
        {Code::MaterialTypeUnknown, place, "\"" + word + "\" is no known material type"});
  } else if (type->channel >= 0 && !FindMap(material, type->channel)) {
    findings.push_back({Code::MapMissing, place,
                        "the type " + word + " shows a " + ChannelName(type->channel) +
                            " map, but the material has none"});
  }
}

// What stands after the last "m." is the type; the exporter puts it behind a name without one.
void CheckMaterialType(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const GenericMaterial& material = file.mesh.chunks[number].material;
  const Place place = PlaceInChunk(file, number, "MATL");
  const size_t at = material.name.rfind("m.");
  if (at == std::string::npos) {
    findings.push_back(
        {Code::MaterialTypeMissing, place, "the material's name has no type after \"m.\""});
    return;
  }
  const std::string type = material.name.substr(at + 2);
  for (const std::string& word : SplitAtDots(type)) CheckTypeWord(material, word, place, findings);
  if (at == 0 || IsLetterOrDigit(material.name[at - 1])) {
    findings.push_back(
        {Code::MaterialTypeChosen, place, "the exporter seems to have chosen the type " + type});
  }
}

void CheckMaterialValues(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const GenericMaterial& material = file.mesh.chunks[number].material;
  const Place place = PlaceInChunk(file, number, "MATL");
  if (material.opacity < 0 || material.opacity > 1) {
    findings.push_back({Code::OpacityRange, place,
                        "the opacity is " + Number(material.opacity) + ", not between 0 and 1"});
  }
  for (const MaterialMap& map : material.maps) {
    if (map.channel >= 0 && map.channel < kMapChannelCount && map.channel != kOpacity) continue;
    findings.push_back({Code::MapChannel, place,
                        "the map " + map.fileName + " is on channel " +
                            std::to_string(map.channel) + ", where none belongs"});
  }
}

void CheckSizeOfChunk(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
  const Place place = PlaceInChunk(file, number, "GEOM");
  const MeshLimits limits;
  if (chunk.triangles.empty()) {
    findings.push_back({Code::EmptyChunk, place, "the chunk has no triangles"});
  }
  if (chunk.vertices.size() > limits.vertices || 3 * chunk.triangles.size() > limits.indices) {
    findings.push_back({Code::ChunkTooLarge, place,
                        std::to_string(chunk.vertices.size()) + " vertices and " +
                            std::to_string(3 * chunk.triangles.size()) +
                            " indices, the engine takes " + std::to_string(limits.vertices) +
                            " of each"});
    static_assert(MeshLimits().vertices == MeshLimits().indices);
  }
}

bool IsFlat(const IndexedMesh::Chunk& chunk, const Triangle& triangle) {
  double p[3][3];
  for (size_t c = 0; c < 3; ++c) {
    const IndexedVertex& v = chunk.vertices[triangle[c]];
    p[c][0] = double{v.x};
    p[c][1] = double{v.y};
    p[c][2] = double{v.z};
  }
  double longest = 0, cross = 0;  // both squared
  for (size_t c = 0; c < 3; ++c) {
    double edge = 0;
    for (size_t k = 0; k < 3; ++k)
      edge += (p[(c + 1) % 3][k] - p[c][k]) * (p[(c + 1) % 3][k] - p[c][k]);
    longest = std::max(longest, edge);
  }
  for (size_t k = 0; k < 3; ++k) {
    const size_t i = (k + 1) % 3, j = (k + 2) % 3;
    const double part =
        (p[1][i] - p[0][i]) * (p[2][j] - p[0][j]) - (p[1][j] - p[0][j]) * (p[2][i] - p[0][i]);
    cross += part * part;
  }
  return std::sqrt(cross) <= kFlat * longest;
}

void CheckTriangles(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
  Tally flat(findings, Code::ZeroAreaTriangle, PlaceInChunk(file, number, "GEOM"));
  for (size_t i = 0; i < chunk.triangles.size(); ++i) {
    if (!IsFlat(chunk, chunk.triangles[i])) continue;
    flat.Add([&] {
      return "triangle " + std::to_string(i) + " has no area, at " +
             Number(chunk.vertices[chunk.triangles[i][0]].x) + " " +
             Number(chunk.vertices[chunk.triangles[i][0]].y) + " " +
             Number(chunk.vertices[chunk.triangles[i][0]].z);
    });
  }
}

void CheckTexCoords(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const auto& vertices = file.mesh.chunks[number].vertices;
  Tally far(findings, Code::TexCoordFar, PlaceInChunk(file, number, "GEOM"));
  for (size_t i = 0; i < vertices.size(); ++i) {
    if (std::abs(vertices[i].u) <= kFarTexCoord && std::abs(vertices[i].v) <= kFarTexCoord)
      continue;
    if (std::isnan(vertices[i].u) || std::isnan(vertices[i].v)) continue;
    far.Add([&] {
      return "the texture coordinate of vertex " + std::to_string(i) + " is far outside, at " +
             Number(vertices[i].u) + " " + Number(vertices[i].v);
    });
  }
}

void CheckSize(const IndexedMeshFile& file, Findings& findings) {
  if (file.vertexCount == 0) return;
  const BoundingBox box = ComputeBoundingBox(file.mesh);
  const Vec3 size = box.maximum - box.minimum;
  const float longest = std::max({size.x, size.y, size.z});
  if (longest > kLargeSize) {
    findings.push_back({Code::SizeLarge,
                        {"QIRF/INFO"},
                        "the model is " + Number(longest) +
                            " m long, as if it were made in centimetres or millimetres"});
  } else if (longest > 0 && longest < kSmallSize) {
    findings.push_back(
        {Code::SizeSmall,
         {"QIRF/INFO"},
         "the model is " + Number(longest) + " m long, as if its unit had been applied twice"});
  }
}

void CheckAttachmentNames(const IndexedMesh& mesh, Findings& findings) {
  Tally tally(findings, Code::AttachmentTwice, {"QIRF/ATCH"});
  std::unordered_set<std::string> names;
  for (const AttachmentPoint& point : mesh.attachmentPoints) {
    if (names.insert(LowerCase(point.name)).second) continue;
    tally.Add([&] { return "two attachment points are called " + point.name; });
  }
}

}  // namespace

void CheckContent(const IndexedMeshFile& file, Findings& findings) {
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    CheckMaterialType(file, i, findings);
    CheckMaterialValues(file, i, findings);
    CheckSizeOfChunk(file, i, findings);
    CheckTriangles(file, i, findings);
    CheckTexCoords(file, i, findings);
  }
  CheckSize(file, findings);
  CheckWeightContent(file, findings);
  CheckAttachmentNames(file.mesh, findings);
}

}  // namespace orv::inspect
