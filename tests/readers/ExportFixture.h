#pragma once

#include <gtest/gtest.h>

#include "IndependentReader.h"
#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
#include "TemporaryFolder.h"
#include "options/Options.h"
#include "scene/MaxExAnimationExporter.h"
#include "scene/MaxExGeometryExporter.h"

namespace orv {

// A scene that a test fills and exports; the files are read back with code of the tests' own.
class ExportTest : public testing::Test {
 protected:
  ExportTest() : options(Options::Instance()) {
    options.Reset();
    options.m_eventFileName = {};
  }
  ~ExportTest() override { SetHostCore(nullptr); }

  host::MemoryNode& AddMesh(std::string name, host::MemoryNode* parent = nullptr) {
    return scene.AddMeshNode(std::move(name), Triangle(), &plain, parent);
  }

  // A triangle whose vertices follow the bone, all of them, rigidly.
  host::MemoryNode& AddSkinned(std::string name, INode& bone) {
    host::MemoryNode& node = scene.AddNode(std::move(name));
    node.SetSkinnedMesh(Triangle(), {{&bone, Matrix3(TRUE)}},
                        Weights({{{0, 1.0f}}, {{0, 1.0f}}, {{0, 1.0f}}}));
    node.SetMaterial(&plain);
    return node;
  }

  // The file's content, or none when nothing was written.
  independent::MeshFile ExportGeometry(bool expected = true) {
    host::MemoryHost memoryHost(scene);
    SetHostCore(&memoryHost);
    MaxExGeometryExporter exporter;
    for (INode* node : AllNodes(scene)) exporter.AddNode(node, false);
    EXPECT_EQ(exporter.ExportGeometry(&memoryHost, imName.c_str(), ui), expected);
    const std::string bytes = ContentOf(imName);
    return bytes.empty() ? independent::MeshFile{} : independent::ParseMesh(bytes);
  }

  independent::AnimationFile ExportAnimation(int first, int last, bool expected = true) {
    host::MemoryHost memoryHost(scene);
    SetHostCore(&memoryHost);
    MaxExAnimationExporter exporter;
    for (INode* node : AllNodes(scene)) exporter.AddNode(node, false);
    EXPECT_EQ(exporter.ExportAnimation(&memoryHost, kinName.c_str(), first, last, ui), expected);
    const std::string bytes = ContentOf(kinName);
    return bytes.empty() ? independent::AnimationFile{} : independent::ParseAnimation(bytes);
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
