#include <algorithm>
#include <iterator>

#include "inspect/Info.h"
#include "inspect/MeshFacts.h"
#include "inspect/Text.h"

namespace orv::inspect {

namespace {

using Align = TextTable::Align;

constexpr size_t kMaxIndentedDepth = 40;  // bones deeper down stand as if they were at this depth

void PrintLine(std::ostream& out, std::string label, const std::string& text) {
  label.resize(14, ' ');
  out << "  " << label << text << '\n';
}

std::string Metres(Vec3 v, const char* between) {
  return Fixed(v.x, 3) + between + Fixed(v.y, 3) + between + Fixed(v.z, 3);
}

std::string CacheLine(const CacheCounts& counts) {
  std::string line;
  for (size_t i = 0; i < counts.size(); ++i) {
    line += (i > 0 ? "; " : "") + std::string("ACMR ") + Fixed(counts[i].Acmr(), 3) + ", ATVR " +
            Fixed(counts[i].Atvr(), 3) + " with " + std::to_string(kCacheSizes[i]) + " entries";
  }
  return line;
}

void PrintTotals(std::ostream& out, const IndexedMeshFile& file, const MeshSummary& summary) {
  if (summary.box) {
    const auto& [minimum, maximum] = *summary.box;
    PrintLine(out, "size", Metres(maximum - minimum, " x ") + " m");
    PrintLine(out, "from, to", Metres(minimum, " ") + ", " + Metres(maximum, " "));
  }
  PrintLine(out, "vertices", std::to_string(file.vertexCount));
  PrintLine(out, "triangles", std::to_string(file.triangleCount));
  PrintLine(out, "area", Fixed(summary.surfaceArea, 3) + " m2");
  if (file.triangleCount > 0) PrintLine(out, "vertex cache", CacheLine(summary.cache));
  if (!summary.skin.empty() && file.maxInfluencesPerVertex && file.maxBonesPerChunk) {
    PrintLine(out, "influences",
              "at most " + Counted(*file.maxInfluencesPerVertex, "bone") + " a vertex, " +
                  std::to_string(*file.maxBonesPerChunk) + " a chunk");
  }
}

void PrintChunks(std::ostream& out, const IndexedMeshFile& file, const MeshSummary& summary) {
  TextTable table({{"chunk"},
                   {"material", Align::Left},
                   {"vertices"},
                   {"triangles"},
                   {"area m2"},
                   {"tangents"},
                   {"bones"},
                   {"ACMR 10"},
                   {"ATVR 10"},
                   {"ACMR 16"},
                   {"ATVR 16"},
                   {"bytes"},
                   {"bound to", Align::Left}});
  static_assert(kCacheSizes == std::array<size_t, 2>{10, 16});
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    const IndexedMesh::Chunk& chunk = file.mesh.chunks[i];
    std::vector<std::string> row = {std::to_string(i),
                                    Printable(chunk.material.name),
                                    std::to_string(chunk.vertices.size()),
                                    std::to_string(chunk.triangles.size()),
                                    Fixed(chunk.surfaceArea, 3),
                                    chunk.tangents.empty() ? "no" : "yes",
                                    std::to_string(summary.chunks[i].bones)};
    for (const VertexCacheCount& count : summary.chunks[i].cache) {
      row.push_back(Fixed(count.Acmr(), 3));
      row.push_back(Fixed(count.Atvr(), 3));
    }
    row.push_back(std::to_string(file.chunks[i].fileSize));
    row.push_back(Printable(file.chunks[i].boneName));
    table.AddRow(std::move(row));
  }
  out << '\n';
  table.Print(out, 2);
}

void PrintTextures(std::ostream& out, const IndexedMesh& mesh) {
  TextTable table({{"chunk"}, {"texture of", Align::Left}, {"name", Align::Left}, {"amount"}});
  bool any = false;
  for (size_t i = 0; i < mesh.chunks.size(); ++i) {
    for (const MaterialMap& map : mesh.chunks[i].material.maps) {
      any = true;
      table.AddRow({std::to_string(i), ChannelName(map.channel), Printable(map.fileName),
                    Number(map.amount)});
    }
  }
  if (!any) return;
  out << '\n';
  table.Print(out, 2);
}

std::string Indented(const OutlinedBone& bone) {
  return std::string(2 * std::min(bone.depth, kMaxIndentedDepth), ' ') + Printable(bone.name);
}

void PrintBones(std::ostream& out, const std::vector<OutlinedBone>& bones) {
  if (bones.empty()) return;
  out << "\n  " << Counted(bones.size(), "bone") << '\n';
  for (const OutlinedBone& bone : bones) out << "    " << Indented(bone) << '\n';
}

std::string List(const std::vector<uint32_t>& numbers) {
  std::string list;
  for (const uint32_t number : numbers) list += (list.empty() ? "" : " ") + std::to_string(number);
  return list;
}

void PrintSkin(std::ostream& out, const std::vector<SkinBone>& skin) {
  if (skin.empty()) return;
  TextTable table(
      {{"bone", Align::Left}, {"below", Align::Left}, {"vertices"}, {"in chunks", Align::Left}});
  for (const SkinBone& bone : skin) {
    table.AddRow({Indented(bone), Printable(bone.parentName), std::to_string(bone.vertexCount),
                  List(bone.chunks)});
  }
  out << '\n';
  table.Print(out, 2);
}

void PrintAttachments(std::ostream& out, const std::vector<AttachmentPoint>& points) {
  if (points.empty()) return;
  TextTable table({{"attachment point", Align::Left}, {"x m"}, {"y m"}, {"z m"}});
  for (const AttachmentPoint& point : points) {
    table.AddRow({Printable(point.name), Fixed(point.position.x, 3), Fixed(point.position.y, 3),
                  Fixed(point.position.z, 3)});
  }
  out << '\n';
  table.Print(out, 2);
}

void PrintMesh(std::ostream& out, const IndexedMeshFile& file) {
  const MeshSummary summary = Summarise(file);
  PrintTotals(out, file, summary);
  PrintChunks(out, file, summary);
  PrintTextures(out, file.mesh);
  PrintBones(out, summary.skeleton);
  PrintSkin(out, summary.skin);
  PrintAttachments(out, file.mesh.attachmentPoints);
}

void PrintEvents(std::ostream& out, const AnimationFile& file) {
  if (file.events.empty()) return;
  TextTable table({{"frame"}, {"seconds"}, {"event", Align::Left}, {"name", Align::Left}});
  for (const AnimationEvent& event : file.events) {
    table.AddRow({std::to_string(event.frame),
                  file.frameRate == 0 ? "-" : Fixed(double(event.frame) / file.frameRate, 3),
                  EventTypeName(event.type), Printable(event.name)});
  }
  out << '\n';
  table.Print(out, 2);
}

void PrintAnimation(std::ostream& out, const AnimationFile& file) {
  PrintLine(out, "name", Printable(file.name));
  PrintLine(
      out, "frames",
      std::to_string(file.frameCount) + " at " + std::to_string(file.frameRate) + " a second");
  PrintLine(out, "length",
            file.frameRate == 0 ? "-" : Fixed(LengthInSeconds(file), 3) + " seconds");
  PrintLine(out, "scale", Number(file.masterScale) + " metres per unit");
  PrintEvents(out, file);
  PrintBones(out, OutlineOf(file.bones));
}

void PrintRemarks(std::ostream& out, const std::vector<ReadProblem>& remarks) {
  if (!remarks.empty()) out << '\n';
  for (const ReadProblem& remark : remarks) {
    out << "  remark: " << Printable(remark.Message()) << '\n';
  }
}

}  // namespace

const char* ChannelName(int32_t channel) {
  static constexpr const char* kNames[kMapChannelCount] = {
      "ambient",           "diffuse",     "specular",      "shininess", "shininess strength",
      "self-illumination", "opacity",     "filter colour", "bump",      "reflection",
      "refraction",        "displacement"};
  return channel >= 0 && channel < kMapChannelCount ? kNames[channel] : "unknown";
}

const char* EventTypeName(uint32_t type) {
  return type < std::size(kEventKeywords) ? kEventKeywords[type] : "unknown";
}

const char* KindName(const LoadedFile& file) {
  if (file.Mesh()) return "mesh";
  return file.Animation() ? "animation" : "unknown";
}

double LengthInSeconds(const AnimationFile& animation) {
  if (animation.frameRate == 0 || animation.frameCount == 0) return 0;
  return double(animation.frameCount - 1) / animation.frameRate;
}

void PrintInfo(std::ostream& out, const LoadedFile& file) {
  out << file.name << ": " << KindName(file) << ", " << file.size << " bytes\n";
  if (const IndexedMeshFile* mesh = file.Mesh()) {
    PrintMesh(out, *mesh);
    PrintRemarks(out, mesh->remarks);
  } else if (const AnimationFile* animation = file.Animation()) {
    PrintAnimation(out, *animation);
    PrintRemarks(out, animation->remarks);
  }
}

}  // namespace orv::inspect
