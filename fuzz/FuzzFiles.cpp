// The readers of both exported files.

#include <cstring>
#include <deque>
#include <sstream>
#include <utility>

#include "AllocationLimit.h"
#include "MeshFaults.h"
#include "RecordingUserInterface.h"
#include "Require.h"
#include "Targets.h"
#include "convert/Convert.h"
#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"
#include "inspect/Checks.h"
#include "inspect/Info.h"

namespace orv {
namespace {

// Of a bone's influence on a chunk the file has 8 bytes, memory a record of 144 bytes with copies
// of the bone's names, 255 characters each. The next largest is a material's property, 8 times its
// bytes in the file; what there can be much of, arrays and chunks, is below 4.
constexpr size_t kMeshLiveFactor = 96;
constexpr size_t kAnimationLiveFactor = 4;

// False when the bytes are refused, which needs a reason.
template <typename File>
bool Read(bool (*read)(std::string_view, File&, ReadProblem&), std::string_view bytes,
          size_t liveFactor, File& file) {
  ReadProblem problem;
  bool complete;
  {
    const AllocationLimit limit(bytes.size(), liveFactor);
    complete = read(bytes, file, problem);
  }
  if (!complete) {
    Require(!problem.text.empty(), "a refusal says why");
    Require(problem.offset <= bytes.size(), "a refusal names a place in the file");
  }
  return complete;
}

void RequireRecords(const IndexedMeshFile& file) {
  Require(file.chunks.size() == file.mesh.chunks.size(), "one record for each chunk");
  for (size_t i = 0; i < file.mesh.chunks.size(); ++i) {
    const std::string fault = ArrayFaultOf(file.mesh.chunks[i]);
    Require(fault.empty(), fault);
  }
  Require(file.mesh.influences.empty() || file.mesh.influences.size() == file.chunks.size(),
          "one influence for each chunk, or none");
}

void RequireRecords(const AnimationFile& file) {
  Require(file.poses.size() == file.frameCount * file.bones.size(), "a pose per bone and frame");
  for (size_t i = 0; i < file.bones.size(); ++i) {
    Require(file.bones[i].parent < static_cast<int32_t>(i), "parents before children");
  }
}

template <typename Record>
bool SameBytes(const std::vector<Record>& a, const std::vector<Record>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(Record)) == 0);
}

// The mesh again, from the bytes that the writer makes of it. What the writer computes is left
// out: the skeleton, the names of the textures, tangents.
IndexedMeshFile WrittenAndRead(IndexedMeshFile file, std::string& bytes) {
  std::deque<ExGenericSkeleton::Node> bones;
  for (size_t i = 0; i < file.chunks.size(); ++i) {
    GenericMaterial& material = file.mesh.chunks[i].material;
    material.attachmentBone = &bones.emplace_back(file.chunks[i].boneName);
    material.maps.clear();
    material.name = "m.notex";
  }
  ExIndexedMesh mesh;
  static_cast<IndexedMesh&>(mesh) = std::move(file.mesh);
  bool ask = false, force = false;
  RecordingUserInterface ui;
  std::ostringstream out;
  WriteIndexedMesh(out, mesh, "", false, ask, force, ui);
  bytes = std::move(out).str();
  IndexedMeshFile again;
  ReadProblem problem;
  Require(ReadIndexedMesh(bytes, again, problem), "what is written can be read");
  return again;
}

void RequireRoundTrip(IndexedMeshFile file) {
  std::string bytes, bytesAgain;
  const std::vector<IndexedMesh::Chunk> chunks = file.mesh.chunks;
  const size_t pointCount = file.mesh.attachmentPoints.size();
  IndexedMeshFile again = WrittenAndRead(std::move(file), bytes);
  Require(again.mesh.chunks.size() == chunks.size(), "the same chunks come back");
  Require(again.mesh.attachmentPoints.size() == pointCount, "the same points come back");
  for (size_t i = 0; i < chunks.size(); ++i) {
    const IndexedMesh::Chunk& chunk = again.mesh.chunks[i];
    Require(SameBytes(chunk.vertices, chunks[i].vertices), "the same vertices come back");
    Require(SameBytes(chunk.triangles, chunks[i].triangles), "the same triangles come back");
    Require(SameBytes(chunk.normals, chunks[i].normals), "the same normals come back");
    Require(chunk.material.properties == chunks[i].material.properties, "the same properties");
  }
  WrittenAndRead(std::move(again), bytesAgain);
  Require(bytes == bytesAgain, "the same bytes are written of what came back");
}

// The bones of an animation file, which answer the poses of the frame that was set.
class FileSkeleton : public GenericSkeleton {
 public:
  explicit FileSkeleton(const AnimationFile& file) : m_file(file) {
    for (const BoneNode& bone : file.bones) {
      auto node = std::make_unique<ExGenericSkeleton::Node>(bone.name);
      auto& place = bone.parent < 0
                        ? m_root
                        : m_nodes[static_cast<size_t>(bone.parent)]->m_children.emplace_back();
      m_nodes.push_back(node.get());
      place = std::move(node);
    }
  }
  void SetFrame(int frame) override {
    const auto poses = m_file.Frame(static_cast<size_t>(frame));
    for (size_t i = 0; i < m_nodes.size(); ++i) {
      m_nodes[i]->m_position = poses[i].position;
      m_nodes[i]->m_rotation = poses[i].rotation;
    }
  }

 private:
  const AnimationFile& m_file;  // not owned
  std::vector<ExGenericSkeleton::Node*> m_nodes;
};

// Events outside the frames are not written.
void RequireRoundTrip(const AnimationFile& file) {
  FileSkeleton skeleton(file);
  std::ostringstream out;
  RecordingUserInterface ui;
  WriteAnimation(out, skeleton,
                 {.firstFrame = 0,
                  .lastFrame = static_cast<int32_t>(file.frameCount) - 1,
                  .frameRate = file.frameRate,
                  .name = file.name,
                  .masterScale = file.masterScale,
                  .events = file.events},
                 ui);
  const std::string bytes = std::move(out).str();
  AnimationFile again;
  ReadProblem problem;
  Require(ReadAnimation(bytes, again, problem), "what is written can be read");
  Require(again.remarks.empty(), "what is written is remarked upon");
  Require(again.name == file.name && again.frameCount == file.frameCount &&
              again.frameRate == file.frameRate,
          "the same header comes back");
  Require(SameBytes(again.poses, file.poses), "the same poses come back");
  Require(again.bones.size() == file.bones.size(), "the same bones come back");
  for (size_t i = 0; i < file.bones.size(); ++i) {
    Require(again.bones[i].name == file.bones[i].name, "the same names come back");
    Require(again.bones[i].parent == file.bones[i].parent, "the same tree comes back");
  }
}

// What `orv info` prints of a file, for people and for programs.
template <typename File>
void Describe(File content, size_t size) {
  const inspect::LoadedFile loaded{"input", size, std::move(content), std::nullopt};
  std::ostringstream text;
  inspect::PrintInfo(text, loaded);
  inspect::DocumentText(nlohmann::ordered_json::array({inspect::InfoOf(loaded)}));
}

}  // namespace

void FuzzIndexedMesh(std::string_view bytes) {
  IndexedMeshFile file;
  if (!Read(ReadIndexedMesh, bytes, kMeshLiveFactor, file)) return;
  RequireRecords(file);
  inspect::Findings findings;
  inspect::CheckStructure(file, findings);
  inspect::CheckContent(file, findings);
  convert::Messages messages;
  convert::Convert(
      {.mesh = file, .name = "input", .textureFolder = "no folder", .metresPerUnit = 1}, messages);
  IndexedMeshFile copy;
  Read(ReadIndexedMesh, bytes, kMeshLiveFactor, copy);
  RequireRoundTrip(std::move(copy));
  Describe(std::move(file), bytes.size());
}

void FuzzAnimation(std::string_view bytes) {
  AnimationFile file;
  if (!Read(ReadAnimation, bytes, kAnimationLiveFactor, file)) return;
  RequireRecords(file);
  RequireRoundTrip(file);
  inspect::Findings findings;
  inspect::CheckStructure(file, findings);
  inspect::CheckContent(file, findings);
  Describe(std::move(file), bytes.size());
}

}  // namespace orv
