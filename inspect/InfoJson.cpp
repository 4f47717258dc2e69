#include <charconv>
#include <cmath>

#include "inspect/Info.h"
#include "inspect/MeshFacts.h"

namespace orv::inspect {

namespace {

using Json = nlohmann::ordered_json;

// As short as the number can be written and still be the same float.
Json Short(float value) {
  if (!std::isfinite(value)) return nullptr;
  char text[32];
  const auto end = std::to_chars(text, text + sizeof(text), value).ptr;
  double number = 0;
  std::from_chars(text, end, number);
  return number;
}

Json Vector(Vec3 v) { return Json::array({Short(v.x), Short(v.y), Short(v.z)}); }

Json Rotation(Quaternion q) {
  return Json::array({Short(q.x), Short(q.y), Short(q.z), Short(q.w)});
}

Json Rows(const Matrix33& m) { return Json::array({Vector(m[0]), Vector(m[1]), Vector(m[2])}); }

Json Box(const std::optional<BoundingBox>& box) {
  if (!box) return nullptr;
  return {{"minimum", Vector(box->minimum)},
          {"maximum", Vector(box->maximum)},
          {"size", Vector(box->maximum - box->minimum)}};
}

Json Caches(const CacheCounts& counts) {
  Json json = Json::array();
  for (size_t i = 0; i < counts.size(); ++i) {
    json.push_back(
        {{"entries", kCacheSizes[i]}, {"acmr", counts[i].Acmr()}, {"atvr", counts[i].Atvr()}});
  }
  return json;
}

Json Textures(const GenericMaterial& material) {
  Json json = Json::array();
  for (const MaterialMap& map : material.maps) {
    json.push_back({{"channel", map.channel},
                    {"use", ChannelName(map.channel)},
                    {"name", map.fileName},
                    {"amount", Short(map.amount)}});
  }
  return json;
}

Json Material(const GenericMaterial& material) {
  Json properties = Json::array();
  for (const auto& [key, value] : material.properties) {
    properties.push_back({{"key", key}, {"value", value}});
  }
  return {{"name", material.name},
          {"twoSided", material.twoSided != 0},
          {"opacity", Short(material.opacity)},
          {"ambient", Vector(material.ambient)},
          {"diffuse", Vector(material.diffuse)},
          {"specular", Vector(material.specular)},
          {"emissive", Vector(material.emissive)},
          {"shininess", Short(material.shininess)},
          {"properties", std::move(properties)},
          {"textures", Textures(material)}};
}

Json Chunk(const IndexedMeshFile& file, const MeshSummary& summary, size_t number) {
  const IndexedMesh::Chunk& chunk = file.mesh.chunks[number];
  const MeshChunkInfo& info = file.chunks[number];
  return {{"number", number},
          {"bytes", info.fileSize},
          {"vertices", chunk.vertices.size()},
          {"triangles", chunk.triangles.size()},
          {"area", Short(chunk.surfaceArea)},
          {"tangents", !chunk.tangents.empty()},
          {"boundToBone", info.boneName.empty() ? Json(nullptr) : Json(info.boneName)},
          {"bones", summary.chunks[number].bones},
          {"maxBonesOfVertex", info.maxInfluencesPerVertex},
          {"vertexCache", Caches(summary.chunks[number].cache)},
          {"material", Material(chunk.material)}};
}

Json Outlined(const OutlinedBone& bone) {
  return {{"name", bone.name},
          {"parent", bone.parent < 0 ? Json(nullptr) : Json(bone.parent)},
          {"depth", bone.depth}};
}

Json Skeleton(const IndexedMeshFile& file, const MeshSummary& summary) {
  Json json = Json::array();
  for (size_t i = 0; i < summary.skeleton.size(); ++i) {
    Json bone = Outlined(summary.skeleton[i]);
    bone["translation"] = Vector(file.bonePoses[i].position);
    bone["rotation"] = Rotation(file.bonePoses[i].rotation);
    json.push_back(std::move(bone));
  }
  return json;
}

Json Skin(const std::vector<SkinBone>& skin) {
  Json json = Json::array();
  for (const SkinBone& skinBone : skin) {
    Json bone = Outlined(skinBone);
    bone["parentName"] = skinBone.parentName;
    bone["vertices"] = skinBone.vertexCount;
    bone["chunks"] = skinBone.chunks;
    json.push_back(std::move(bone));
  }
  return json;
}

Json Attachments(const std::vector<AttachmentPoint>& points) {
  Json json = Json::array();
  for (const AttachmentPoint& point : points) {
    json.push_back({{"name", point.name},
                    {"position", Vector(point.position)},
                    {"rotation", Rows(point.rotation)}});
  }
  return json;
}

Json Optional(const std::optional<uint32_t>& value) { return value ? Json(*value) : Json(nullptr); }

void AddMesh(const IndexedMeshFile& file, Json& json) {
  const MeshSummary summary = Summarise(file);
  json["vertices"] = file.vertexCount;
  json["triangles"] = file.triangleCount;
  json["area"] = summary.surfaceArea;
  json["boundingBox"] = Box(summary.box);
  json["maxBonesOfVertex"] = Optional(file.maxInfluencesPerVertex);
  json["maxBonesOfChunk"] = Optional(file.maxBonesPerChunk);
  json["vertexCache"] = Caches(summary.cache);
  json["chunks"] = Json::array();
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    json["chunks"].push_back(Chunk(file, summary, i));
  }
  json["skeleton"] = Skeleton(file, summary);
  json["skin"] = Skin(summary.skin);
  json["attachmentPoints"] = Attachments(file.mesh.attachmentPoints);
}

Json Events(const AnimationFile& file) {
  Json json = Json::array();
  for (const AnimationEvent& event : file.events) {
    json.push_back({{"frame", event.frame},
                    {"seconds", file.frameRate == 0 ? Json(nullptr)
                                                    : Json(double(event.frame) / file.frameRate)},
                    {"type", event.type},
                    {"typeName", EventTypeName(event.type)},
                    {"name", event.name}});
  }
  return json;
}

void AddAnimation(const AnimationFile& file, Json& json) {
  json["name"] = file.name;
  json["frames"] = file.frameCount;
  json["frameRate"] = file.frameRate;
  json["seconds"] = file.frameRate == 0 ? Json(nullptr) : Json(LengthInSeconds(file));
  json["masterScale"] = Short(file.masterScale);
  json["events"] = Events(file);
  json["bones"] = Json::array();
  for (const OutlinedBone& bone : OutlineOf(file.bones)) json["bones"].push_back(Outlined(bone));
}

Json Remarks(const std::vector<ReadProblem>& remarks) {
  Json json = Json::array();
  for (const ReadProblem& remark : remarks) json.push_back(remark.Message());
  return json;
}

}  // namespace

Json ErrorEntry(const LoadedFile& file) {
  return {{"file", file.name},
          {"error",
           {{"message", file.problem->Message()},
            {"place", file.problem->path},
            {"offset", file.problem->offset}}}};
}

Json InfoOf(const LoadedFile& file) {
  if (file.problem) return ErrorEntry(file);
  Json json = {{"file", file.name}, {"kind", KindName(file)}, {"bytes", file.size}};
  if (const IndexedMeshFile* mesh = file.Mesh()) {
    AddMesh(*mesh, json);
    json["remarks"] = Remarks(mesh->remarks);
  } else if (const AnimationFile* animation = file.Animation()) {
    AddAnimation(*animation, json);
    json["remarks"] = Remarks(animation->remarks);
  }
  return json;
}

std::string DocumentText(Json files) {
  const Json document = {{"schema", kJsonSchema}, {"files", std::move(files)}};
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace orv::inspect
