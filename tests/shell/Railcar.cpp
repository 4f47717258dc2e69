#include "shell/Railcar.h"

#include <array>
#include <cmath>
#include <functional>
#include <numbers>

namespace orv {
namespace {

constexpr double kTurn = 2 * std::numbers::pi;

// Maths libraries differ in the last bit, which is all there is of a sine that should be zero. On
// a grid the scene is the same from each of them.
float OnGrid(double value) { return static_cast<float>(std::round(value * 65536) / 65536); }
float Sine(double angle) { return OnGrid(std::sin(angle)); }
float Cosine(double angle) { return OnGrid(std::cos(angle)); }

// A sheet of columns x rows squares over u and v from 0 to 1, bent by `at`.
Mesh Sheet(
    int columns, int rows, const std::function<Point3(double u, double v)>& at,
    const std::function<MtlID(int column)>& material = [](int) { return MtlID{0}; }) {
  Mesh mesh;
  const int vertexCount = (columns + 1) * (rows + 1);
  mesh.setNumVerts(vertexCount);
  mesh.setNumTVerts(vertexCount);
  mesh.setNumFaces(2 * columns * rows);
  mesh.setNumTVFaces(2 * columns * rows);
  for (int row = 0, i = 0; row <= rows; ++row) {
    for (int column = 0; column <= columns; ++column, ++i) {
      const double u = static_cast<double>(column) / columns, v = static_cast<double>(row) / rows;
      mesh.setVert(i, at(u, v));
      mesh.setTVert(i, {static_cast<float>(u), static_cast<float>(v), 0});
    }
  }
  for (int row = 0, f = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const auto corner = static_cast<DWORD>(row * (columns + 1) + column);
      const DWORD above = corner + static_cast<DWORD>(columns) + 1;
      for (const auto& [a, b, c] :
           {std::array{corner, corner + 1, above + 1}, std::array{corner, above + 1, above}}) {
        mesh.faces[f].setVerts(a, b, c);
        mesh.faces[f].setSmGroup(1);
        mesh.faces[f].setMatID(material(column));
        mesh.tvFace[f].setTVerts(a, b, c);
        ++f;
      }
    }
  }
  return mesh;
}

// Along x, with a rounded cross-section.
Mesh Body() {
  const auto at = [](double u, double v) {
    const float rounded = 1 + 0.2f * Cosine(4 * kTurn * u);
    return Point3(static_cast<float>(-9 + 18 * v), Cosine(kTurn * u) * rounded,
                  Sine(kTurn * u) * 2 * rounded);
  };
  return Sheet(96, 90, at, [](int column) { return static_cast<MtlID>(column / 12 % 3); });
}

Mesh Wheel() {
  return Sheet(40, 12, [](double u, double v) {
    const float radius = 0.46f + 0.1f * Cosine(kTurn * v);
    return Point3(Cosine(kTurn * u) * radius, 0.1f * Sine(kTurn * v), Sine(kTurn * u) * radius);
  });
}

Mesh Bellows() {
  return Sheet(32, 24, [](double u, double v) {
    const float radius = 1 + 0.1f * Cosine(6 * kTurn * v);
    return Point3(static_cast<float>(9 + v), Cosine(kTurn * u) * radius, Sine(kTurn * u) * radius);
  });
}

Matrix3 MovedBy(float x, float y, float z) { return {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {x, y, z}}; }

Matrix3 TurnedAboutY(double angle) {
  return {{Cosine(angle), 0, -Sine(angle)}, {0, 1, 0}, {Sine(angle), 0, Cosine(angle)}, {0, 0, 0}};
}

Matrix3 TurnedAboutZ(double angle) {
  return {{Cosine(angle), Sine(angle), 0}, {-Sine(angle), Cosine(angle), 0}, {0, 0, 1}, {0, 0, 0}};
}

// From all on the front bone to all on the rear one.
host::SkinWeights BellowsWeights(const Mesh& mesh) {
  host::SkinWeights result;
  for (int i = 0; i < mesh.getNumVerts(); ++i) {
    const float rear = mesh.getTVert(i).y;
    result.starts.push_back(static_cast<uint32_t>(result.weights.size()));
    if (rear < 1) result.weights.push_back({0, 1 - rear});
    if (rear > 0) result.weights.push_back({1, rear});
  }
  result.starts.push_back(static_cast<uint32_t>(result.weights.size()));
  return result;
}

Mtl& BodyMaterial(host::Scene& scene) {
  host::MemoryMaterial& livery = scene.AddMaterial("Livery m.onetex.tbump");
  livery.maps[1] = &scene.AddBitmap("livery.tga");
  livery.maps[8] = &scene.AddBitmap("maps\\livery_n.tga");
  livery.diffuse = {0.8f, 0.1f, 0.1f};
  host::MemoryMaterial& glass = scene.AddMaterial("Glass");  // without a type: an error is logged
  host::MemoryBitmap& pane = scene.AddBitmap("C:\\elsewhere/glass.tga");
  pane.coordinates.tiling = U_WRAP;
  pane.coordinates.angle = 0.3f;
  pane.coordinates.uScale = 3;
  glass.maps[1] = &pane;
  glass.maps[6] = &scene.AddBitmap("glass_a.tga");
  glass.maps[9] = &scene.AddBitmap("notile_missing.tga");
  glass.opacity = 0.4f;
  glass.twoSided = true;
  host::MemoryMaterial& roof = scene.AddMaterial("roof m.notex");
  roof.hasSelfIllumColor = true;
  roof.selfIllumColor = {0.01f, 0.02f, 0.03f};
  return scene.AddMultiMaterial("car", {&livery, &glass, &roof});
}

void AddWheels(host::Scene& scene, host::MemoryNode& car, Mtl& material) {
  for (const float x : {-6.0f, 6.0f}) {
    host::MemoryNode& bone = scene.AddNode(x < 0 ? "b.r.wheel.rear" : "b.r.wheel.front", &car);
    bone.SetMotion([x](double seconds) {
      return TurnedAboutY(0.1 + 4.3 * seconds * seconds) * MovedBy(x, 0, -1.8f);
    });
    scene.AddMeshNode("wheel", Wheel(), &material, &bone);
  }
}

void AddBellows(host::Scene& scene, host::MemoryNode& car, Mtl& material) {
  host::MemoryNode& front = scene.AddNode("b.bellows.front", &car);
  front.SetTransform(MovedBy(9, 0, 0));
  host::MemoryNode& rear = scene.AddNode("b.bellows.rear", &front);
  rear.SetMotion(
      [](double seconds) { return TurnedAboutZ(0.2f * Sine(3 * seconds)) * MovedBy(1, 0, 0); });
  host::MemoryNode& bellows = scene.AddNode("bellows");
  Mesh mesh = Bellows();
  host::SkinWeights weights = BellowsWeights(mesh);
  bellows.SetSkinnedMesh(std::move(mesh),
                         {{&front, MovedBy(-9, 0, 0)}, {&rear, MovedBy(-10, 0, 0)}},
                         std::move(weights));
  bellows.SetMaterial(&material);
}

}  // namespace

void BuildRailcar(host::Scene& scene, const std::string& textureFolder) {
  scene.info.fileName = "railcar.max";
  scene.info.metresPerUnit = 0.0254;
  scene.info.lastFrame = 30;
  scene.info.bitmapFolders = {textureFolder};

  host::MemoryNode& car = scene.AddNode("b.car");
  car.SetMotion(
      [](double seconds) { return MovedBy(Sine(seconds), 0, 0.05f * Cosine(9 * seconds)); });
  Mtl& rubber = scene.AddMaterial("rubber m.notex");
  scene.AddMeshNode("body", Body(), &BodyMaterial(scene));
  AddWheels(scene, car, rubber);
  AddBellows(scene, car, rubber);

  host::MemoryNode& mirrored = scene.AddMeshNode("mirrored wheel", Wheel(), &rubber);
  mirrored.SetTransform({{-1, 0, 0}, {0, 0.7f, 0}, {0, 0, 1}, {0, 3, 0}});
  for (const float x : {-10.0f, 10.0f}) {
    host::MemoryNode& coupling = scene.AddPointHelper(x < 0 ? "coupling.rear" : "coupling.front");
    coupling.SetTransform(TurnedAboutZ(x < 0 ? 3 : 0.1) * MovedBy(x, 0, -1));
  }
}

}  // namespace orv
