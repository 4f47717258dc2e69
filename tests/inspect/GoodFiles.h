#pragma once

#include <string>
#include <vector>

#include "formats/AnimationFile.h"
#include "formats/SampleMeshes.h"
#include "inspect/Checks.h"

// Files in which nothing is to be found, for the tests to damage.
namespace orv::inspect {

// Two chunks, the second with tangents, two bones and an attachment point.
inline ExIndexedMesh GoodSkin() {
  ExIndexedMesh mesh;
  mesh.chunks.push_back(TriangleChunk("skin m.onetex"));
  mesh.chunks[0].material.maps = {
      {.channel = kDiffuse, .fileName = "/a/skin.texture", .amount = 1}};
  mesh.chunks.push_back(TriangleChunk("hide m.onetex.tbump"));
  mesh.chunks[1].material.maps = {{.channel = kDiffuse, .fileName = "/a/skin.texture", .amount = 1},
                                  {.channel = kBump, .fileName = "/a/b.texture", .amount = 0.5f}};
  mesh.chunks[1].tangents.assign(3, Vec3{1, 0, 0});
  AddInfluence(AddChunkInfluence(mesh), "b.hip", {{0, 1, {}}, {1, 0.25f, {}}, {2, 1, {}}});
  AddInfluence(*mesh.influences[0], "b.knee", {{1, 0.75f, {}}}, "b.hip");
  AddInfluence(AddChunkInfluence(mesh), "b.Knee", {{0, 1, {}}, {1, 1, {}}, {2, 1, {}}}, "b.hip");
  mesh.attachmentPoints = {{{Vec3{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {0, 0, 1}, "hatch"}};
  return mesh;
}

inline IndexedMeshFile GoodSkinFile() {
  ExIndexedMesh mesh = GoodSkin();
  return ReadBack(mesh);
}

// One chunk that is bound to a bone.
inline IndexedMeshFile GoodRigidFile() {
  ExGenericSkeleton skeleton;
  skeleton.m_root = Bone("b.root");
  skeleton.m_root->m_children.push_back(Bone("b.arm", {0, 0, 1}));
  ExIndexedMesh mesh;
  mesh.chunks.push_back(TriangleChunk("steel m.notex"));
  mesh.chunks[0].material.attachmentBone = skeleton.m_root->m_children[0].get();
  mesh.skeleton = &skeleton;
  return ReadBack(mesh);
}

inline std::string GoodAnimationBytes() {
  ExGenericSkeleton skeleton;
  skeleton.m_root = Bone("b.hip");
  skeleton.m_root->m_children.push_back(Bone("b.knee", {0, 0, 1}));
  AnimationHeader header;
  header.lastFrame = 2;
  header.frameRate = 4;
  header.name = "walk";
  header.masterScale = 0.0254f;
  header.events = {{1, 0, "step"}, {2, 5, "dust"}};
  return BytesOf(skeleton, header);
}

inline AnimationFile GoodAnimationFile() {
  AnimationFile file;
  ReadProblem problem;
  EXPECT_TRUE(ReadAnimation(GoodAnimationBytes(), file, problem)) << problem.Message();
  return file;
}

using Lines = std::vector<std::string>;

inline Lines LinesOf(const Findings& findings) {
  Lines lines;
  for (const Finding& finding : findings) lines.push_back(LineOf(finding));
  return lines;
}

template <typename File>
struct DamageCase {
  void (*damage)(File&);
  std::string codes;  // "PLACE CODE; PLACE CODE"
};

// Holds what the checks find in a good file after each damage against what they have to find.
template <typename File>
void ExpectFound(File (*good)(), std::initializer_list<DamageCase<File>> cases) {
  for (const auto& [damage, expected] : cases) {
    File file = good();
    damage(file);
    Findings findings;
    CheckStructure(file, findings);
    CheckContent(file, findings);
    std::string codes;
    for (const Finding& finding : findings) {
      codes += (codes.empty() ? "" : "; ") + finding.place.path + " " + InfoOf(finding.code).name;
    }
    EXPECT_EQ(codes, expected);
  }
}

// Short names for what the cases damage.
inline IndexedMesh::Chunk& ChunkOf(IndexedMeshFile& file, size_t number = 0) {
  return file.mesh.chunks[number];
}
inline std::vector<VertexWeight>& WeightsOf(IndexedMeshFile& file, size_t bone) {
  return file.mesh.influences[0]->m_bones[bone]->m_weights;
}

}  // namespace orv::inspect
