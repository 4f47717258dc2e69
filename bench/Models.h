#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "report/ExportUserInterface.h"
#include "scene/GenericInfluence.h"
#include "scene/GenericMesh.h"

namespace orv::bench {

// A mesh as scene reading hands it to chunk building: one material, or those of a file.
struct Model {
  std::string name;
  GenericMesh mesh;
  std::unique_ptr<GenericMeshInfluence> skin;  // the mesh's influence, or null

  size_t TriangleCount() const { return mesh.m_faces.size(); }
};

// About as many triangles as asked for.
Model Grid(size_t triangleCount);
Model Sphere(size_t triangleCount);       // with poles and a texture seam
Model RandomOrder(size_t triangleCount);  // the grid's triangles, shuffled
Model Skinned(size_t triangleCount);      // the grid on 64 bones, two at each vertex

// A file that the importer reads, in world space; without its degenerate triangles.
Model FromFile(const std::string& path);

// The same without anything shared: each corner has a position, texture coordinate and normal of
// its own.
GenericMesh Unshared(const GenericMesh& mesh);

// Hears and says nothing.
class SilentUserInterface : public ExportUserInterface {
 public:
  void SetProgressText(const char*) override {}
  void SetProgress(float) override {}
  bool CanPrompt() override { return false; }
  Answer ShowMessage(const char*, MessageKind, Severity) override { return Answer::None; }
  void LogInfoText(const char*) override {}
  void LogWarningText(const char*) override {}
  void LogErrorText(const char*) override {}
};

}  // namespace orv::bench
