#pragma once

#include <string>
#include <vector>

#include "formats/SampleMeshes.h"

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

}  // namespace orv::inspect
