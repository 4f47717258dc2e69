// Tangents, chunk by chunk as the exporter makes them.

#include <cmath>
#include <memory>
#include <numbers>
#include <vector>

#include "Benches.h"
#include "Pieces.h"
#include "meshproc/MeshMender.h"

namespace orv::bench {
namespace {

struct MenderInput {
  std::vector<MeshMender::Vertex> vertices;
  std::vector<uint32_t> indices;
};

MenderInput InputOf(const IndexedMesh::Chunk& chunk) {
  MenderInput input;
  for (size_t i = 0; i < chunk.vertices.size(); ++i) {
    const IndexedVertex& vertex = chunk.vertices[i];
    input.vertices.push_back({vertex.Position(), vertex.u, vertex.v, chunk.normals[i], {}, {}});
  }
  for (const Triangle& triangle : chunk.triangles) {
    input.indices.insert(input.indices.end(), triangle.begin(), triangle.end());
  }
  return input;
}

Work MendingOf(std::vector<MenderInput> inputs) {
  const auto pristine = std::make_shared<const std::vector<MenderInput>>(std::move(inputs));
  const auto mended = std::make_shared<std::vector<MenderInput>>();
  return {[=] {
            std::vector<uint32_t> newToOld;
            for (MenderInput& input : *mended) {
              MeshMender().Mend(input.vertices, input.indices, newToOld, MeshMender::Settings());
            }
          },
          [=] { *mended = *pristine; }};
}

}  // namespace

void AddTangents(const ModelSource& source) {
  Add("tangents", kOurs, source, [](const Model& model) {
    std::vector<MenderInput> inputs;
    for (const IndexedMesh::Chunk& chunk : BuildPieces(model).chunks) {
      inputs.push_back(InputOf(chunk));
    }
    return MendingOf(std::move(inputs));
  });
}

void AddTangentsRoundOneVertex() {
  constexpr uint32_t kCount = 100000;
  const auto make = [] {
    Model model{"", {}, nullptr};
    for (uint32_t i = 0; i < kCount; ++i) model.mesh.m_faces.Add(0, {});
    return model;
  };
  Add("tangents", kOurs, {"100,000 round one vertex", 0, "", make}, [](const Model&) {
    const auto at = [](double x, double y) {
      const Vec3 p{static_cast<float>(x), static_cast<float>(y), 0};
      return MeshMender::Vertex{p, p.x, p.y, {0, 0, 1}, {}, {}};
    };
    MenderInput fan{{at(0, 0)}, {}};
    for (uint32_t i = 0; i < kCount; ++i) {
      const double angle = 2 * std::numbers::pi * i / kCount;
      fan.vertices.push_back(at(std::cos(angle), std::sin(angle)));
      fan.indices.insert(fan.indices.end(), {0, 1 + i, 1 + (i + 1) % kCount});
    }
    return MendingOf({std::move(fan)});
  });
}

}  // namespace orv::bench
