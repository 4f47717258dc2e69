#pragma once

#include <gtest/gtest.h>

#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
#include "TemporaryFolder.h"
#include "formats/IndexedMeshFile.h"
#include "options/Options.h"
#include "readers/MaxExAnimationExporter.h"
#include "readers/MaxExGeometryExporter.h"

namespace orv {

// A scene that a test fills and exports.
class ExportTest : public testing::Test {
 protected:
  ExportTest() : options(Options::Instance()) {
    options.Reset();
    options.m_eventFileName = {};
  }
  ~ExportTest() override { SetHostCore(nullptr); }

  host::MemoryNode& AddMesh(std::string name, host::MemoryNode* parent = nullptr) {
    return scene.AddMeshNode(std::move(name), TriangleMesh(), &plain, parent);
  }

  // A triangle whose vertices follow the bone, all of them, rigidly.
  host::MemoryNode& AddSkinned(std::string name, INode& bone) {
    host::MemoryNode& node = scene.AddNode(std::move(name));
    node.SetSkinnedMesh(TriangleMesh(), {{&bone, Matrix3(TRUE)}},
                        Weights({{{0, 1.0f}}, {{0, 1.0f}}, {{0, 1.0f}}}));
    node.SetMaterial(&plain);
    return node;
  }

  // The file's content, or none when nothing was written.
  IndexedMeshFile ExportGeometry() {
    host::MemoryHost memoryHost(scene);
    SetHostCore(&memoryHost);
    MaxExGeometryExporter exporter;
    for (INode* node : AllNodes(scene)) exporter.AddNode(node, false);
    EXPECT_TRUE(exporter.ExportGeometry(&memoryHost, imName.c_str(), ui));
    IndexedMeshFile file;
    ReadProblem problem;
    ReadIndexedMeshFile(imName, file, problem);
    return file;
  }

  void ExportAnimation(int first, int last) {
    host::MemoryHost memoryHost(scene);
    SetHostCore(&memoryHost);
    MaxExAnimationExporter exporter;
    for (INode* node : AllNodes(scene)) exporter.AddNode(node, false);
    EXPECT_TRUE(exporter.ExportAnimation(&memoryHost, kinName.c_str(), first, last, ui));
  }

  TemporaryFolder folder;
  std::string imName = folder.File("out.im");
  std::string kinName = folder.File("out.kin");
  Options& options;
  host::Scene scene;
  host::MemoryMaterial& plain = scene.AddMaterial("plain.m.notex");
  RecordingUserInterface ui;
};

}  // namespace orv
