#include "shell/Railcar.h"

#include "Plugin.h"
#include "TemporaryFolder.h"
#include "readers/SceneBuilders.h"

namespace orv {
namespace {

// A jagged strip between the two ends of x, of three materials in turn. Its numbers need no maths
// library, whose last bits differ.
Mesh Strip(DWORD count, float from, float to) {
  std::vector<Point3> points;
  std::vector<HostFace> faces;
  for (DWORD i = 0; i < count; ++i) {
    const float share = static_cast<float>(i) / static_cast<float>(count);
    points.emplace_back(from + (to - from) * share, static_cast<float>(i * i % 97) / 64,
                        static_cast<float>(i * i * i % 89) / 64);
    if (i > 1) faces.push_back({i - 2, i - 1, i, 1, static_cast<MtlID>(i / 100 % 3)});
  }
  return MeshOf(points, faces);
}

Matrix3 Turned(float slope) { return {{1, slope, 0}, {-slope, 1, 0}, {0, 0, 1}, {0, 0, 0}}; }

Matrix3 MovedAt(double seconds) { return MovedBy(static_cast<float>(seconds), 0, 0.1f); }

Mtl& BodyMaterial(host::Scene& scene) {
  host::MemoryMaterial& livery = scene.AddMaterial("Livery m.onetex.tbump");
  livery.maps[1] = &scene.AddBitmap("livery.tga");
  livery.maps[8] = &scene.AddBitmap("maps\\livery_n.tga");
  host::MemoryMaterial& glass = scene.AddMaterial("Glass");  // without a type: an error is logged
  host::MemoryBitmap& pane = scene.AddBitmap("C:\\elsewhere/glass.tga");
  pane.coordinates.angle = 0.3f;
  pane.coordinates.uScale = 3;
  glass.maps[1] = &pane;
  glass.maps[6] = &scene.AddBitmap("glass_a.tga");
  glass.maps[9] = &scene.AddBitmap("notile_missing.tga");
  return scene.AddMultiMaterial("car", {&livery, &glass, &scene.AddMaterial("roof m.notex")});
}

}  // namespace

void BuildRailcar(host::Scene& scene, const std::string& textureFolder) {
  scene.info.fileName = "railcar.max";
  scene.info.metresPerUnit = 0.0254;
  scene.info.lastFrame = 30;
  scene.info.bitmapFolders = {textureFolder};

  host::MemoryNode& car = scene.AddNode("b.car");
  car.SetMotion(MovedAt);
  Mtl& rubber = scene.AddMaterial("rubber m.notex");
  scene.AddMeshNode("body", Strip(9000, -9, 9), &BodyMaterial(scene));
  scene.AddPointHelper("coupling").SetTransform(Turned(3) * MovedBy(-10, 0, -1));
  host::MemoryNode& wheel = scene.AddNode("b.r.wheel", &car);
  wheel.SetMotion([](double s) { return Turned(static_cast<float>(4 * s)) * MovedAt(6 - s); });
  scene.AddMeshNode("wheel", Strip(400, 0, 1), &rubber, &wheel);
  scene.AddMeshNode("mirrored wheel", Strip(400, 0, 1), &rubber)
      .SetTransform({{-1, 0, 0}, {0, 0.7f, 0}, {0, 0, 1}, {0, 3, 0}});

  host::MemoryNode& front = scene.AddNode("b.bellows.front", &car);
  front.SetTransform(MovedBy(9, 0, 0));
  host::MemoryNode& rear = scene.AddNode("b.bellows.rear", &front);
  rear.SetMotion([](double s) { return Turned(static_cast<float>(s - 1)) * MovedBy(1, 0, 0); });
  Mesh mesh = Strip(800, 9, 10);
  std::vector<std::vector<host::BoneWeight>> weights;  // from all on the one to all on the other
  for (int i = 0; i < mesh.getNumVerts(); ++i)
    weights.push_back({{0, 10 - mesh.verts[i].x}, {1, mesh.verts[i].x - 9}});
  scene.AddMeshNode("bellows", {}, &rubber)
      .SetSkinnedMesh(std::move(mesh), {{&front, MovedBy(-9, 0, 0)}, {&rear, MovedBy(-10, 0, 0)}},
                      Weights(weights));
}

std::string ExportRailcar(const std::filesystem::path& folder) {
  namespace fs = std::filesystem;
  fs::remove_all(folder);
  for (const char* name : {"out", "textures"}) fs::create_directories(folder / name);
  const fs::path before = fs::current_path();
  fs::current_path(folder);
  WriteContent("railcar.evt", "0 Sound_Event horn\n12 Effect_Event sparks /* third rail */\n");
  for (const std::string name : kRailcarTextures)
    WriteContent("textures/" + name, "pixels of " + name + "\n");

  host::Scene scene;
  BuildRailcar(scene, "textures");
  Plugin plugin("settings");
  plugin.dialogs.onOptions = [](Options& options) {
    options.m_eventFileName = "railcar.evt";
    return options.m_collectTextures = options.m_normalMapFlipGreen = true;
  };
  plugin.Export(scene, "out/railcar.im");
  const std::string log = plugin.dialogs.LogText();
  for (const char* name : {"bellows", "b.bellows.front"}) scene.Select(name);
  plugin.Export(scene, "out/bellows.im");
  fs::current_path(before);
  return log + plugin.dialogs.LogText();
}

}  // namespace orv
