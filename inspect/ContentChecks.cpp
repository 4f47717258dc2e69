#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "formats/SideFiles.h"
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
  const MaterialType* const type = FindMaterialType(word);
  if (!type) {
    findings.push_back(
        {Code::MaterialTypeUnknown, place, "\"" + word + "\" is no known material type"});
  } else if (type->channel >= 0 && !FindMap(material, type->channel)) {
    findings.push_back({Code::MapMissing, place,
                        "the type " + word + " shows a " + ChannelName(type->channel) +
                            " map, but the material has none"});
  }
}

// The exporter puts a type right behind a name without one.
void CheckMaterialType(const IndexedMeshFile& file, size_t number, Findings& findings) {
  const GenericMaterial& material = file.mesh.chunks[number].material;
  const Place place = PlaceInChunk(file, number, "MATL");
  const std::optional<std::string_view> type = TypeSuffixOf(material.name);
  if (!type) {
    findings.push_back(
        {Code::MaterialTypeMissing, place, "the material's name has no type after \"m.\""});
    return;
  }
  for (const std::string& word : SplitAtDots(*type)) CheckTypeWord(material, word, place, findings);
  const size_t mark = material.name.size() - type->size() - 2;  // where "m." begins
  if (mark == 0 || IsLetterOrDigit(material.name[mark - 1])) {
    findings.push_back({Code::MaterialTypeChosen, place,
                        "the exporter seems to have chosen the type " + std::string(*type)});
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

using Point = BasicVec3<double>;

bool IsFlat(const IndexedMesh::Chunk& chunk, const Triangle& triangle) {
  const auto corner = [&](size_t number) {
    const IndexedVertex& v = chunk.vertices[triangle[number]];
    return Point{double{v.x}, double{v.y}, double{v.z}};
  };
  const Point side = corner(1) - corner(0), next = corner(2) - corner(1),
              last = corner(2) - corner(0);
  const double longest = std::max({Dot(side, side), Dot(next, next), Dot(last, last)});  // squared
  return Length(Cross(side, last)) <= kFlat * longest;
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

// Collects what is missing, each file once with the number of maps that need it.
class MissingFiles {
 public:
  void Add(Code code, size_t chunk, const std::string& name, const std::string& text) {
    const auto [place, isNew] = m_places.try_emplace(
        std::to_string(static_cast<int>(code)) + LowerCase(name), m_findings.size());
    if (!isNew) {
      ++m_findings[place->second].count;
      return;
    }
    const std::string path = "QIRF/CHNK " + std::to_string(chunk) + "/MATL";
    m_findings.push_back({code, {path, static_cast<int64_t>(chunk), name}, text});
  }
  void MoveTo(Findings& findings) {
    for (Finding& finding : m_findings) findings.push_back(std::move(finding));
  }

 private:
  Findings m_findings;
  std::unordered_map<std::string, size_t> m_places;
};

void CheckPicture(const ModelFolder& folder, const std::string& name, size_t chunk,
                  MissingFiles& missing) {
  if (folder.Find(name)) return;
  missing.Add(Code::TextureMissing, chunk, name, "the picture is not beside the model");
}

void CheckMap(const ModelFolder& folder, const MaterialMap& map, size_t chunk,
              MissingFiles& missing) {
  const std::string name = MapName(map.fileName);
  if (!IsTextureName(name)) {
    CheckPicture(folder, name, chunk, missing);
    return;
  }
  const std::string sideFileName = SideFileName(name);
  const std::filesystem::path* const path = folder.Find(sideFileName);
  if (!path) {
    missing.Add(Code::SideFileMissing, chunk, sideFileName,
                "the file that describes the texture is not beside the model");
    return;
  }
  const SideFile sideFile = ReadSideFile(*path);
  if (sideFile.primary.empty()) {
    missing.Add(Code::SideFileIncomplete, chunk, sideFileName,
                "the file that describes the texture has no line \"Primary=\"");
    return;
  }
  CheckPicture(folder, sideFile.primary, chunk, missing);
  if (sideFile.alpha) CheckPicture(folder, *sideFile.alpha, chunk, missing);
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

void CheckTextures(const IndexedMesh& mesh, const std::string& folderName, Findings& findings) {
  const ModelFolder folder(folderName);
  MissingFiles missing;
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    for (const MaterialMap& map : mesh.chunks[i].material.maps) CheckMap(folder, map, i, missing);
  }
  missing.MoveTo(findings);
}

}  // namespace orv::inspect
