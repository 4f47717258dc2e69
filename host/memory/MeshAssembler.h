#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "mesh.h"

namespace orv::host {

struct BoneWeight {
  uint32_t bone;  // into the skin's bones
  float weight;
  bool operator==(const BoneWeight&) const = default;
};

// Who moves each vertex of a mesh: those of vertex v are weights[starts[v]] up to starts[v + 1].
struct SkinWeights {
  std::vector<uint32_t> starts;
  std::vector<BoneWeight> weights;

  std::span<const BoneWeight> Of(size_t vertex) const {
    return std::span(weights).subspan(starts[vertex], starts[vertex + 1] - starts[vertex]);
  }
};

struct AssembledMesh {
  Mesh mesh;
  SkinWeights skin;           // no starts when no vertex was given weights
  size_t flattenedFaces = 0;  // had normals, for which the 32 smoothing groups were not enough
};

// A vertex as files have it, with all that belongs to it.
struct FileVertex {
  Point3 position;
  const Point3* normal = nullptr;    // null: its faces are flat
  const Point3* texCoord = nullptr;  // the part's vertices have all one or all none
  std::span<const BoneWeight> weights = {};
};

// Makes a host mesh, which indexes positions, texture vertices and normals apart, of vertices as
// files have them. Positions are merged when they are the same bit by bit and have the same
// weights. Normals stay as given, as long as smoothing groups can tell them apart.
//
//   MeshAssembler assembler(vertexCount, triangleCount);
//   assembler.BeginPart(materialId);
//   assembler.AddVertex(...);  // all of the part
//   assembler.AddTriangle(0, 1, 2);
//   AssembledMesh result = assembler.Finish();
class MeshAssembler {
 public:
  // The counts are upper limits.
  MeshAssembler(size_t vertexCount, size_t triangleCount);

  void BeginPart(MtlID material);
  // Says, some vertices ahead, that one at this position is going to be added.
  void Expect(const Point3& position) const;
  void AddVertex(const FileVertex& vertex);
  // Counter-clockwise; each below the number of vertices that the part has by now.
  void AddTriangle(uint32_t a, uint32_t b, uint32_t c);
  AssembledMesh Finish();

 private:
  struct Part {
    MtlID material;
    uint32_t firstVertex;
    uint32_t firstFace;
    uint32_t firstTexCoord;
    bool hasTexCoords;
  };

  // Open addressing, at most two thirds full.
  class Table {
   public:
    static constexpr uint32_t kNone = 0xFFFFFFFF;

    Table() = default;
    explicit Table(size_t entries);
    bool Empty() const { return m_slots.empty(); }
    void Prefetch(size_t hash) const;
    // The number of the entry that `matches`; kNone, to be set, where it belongs when there is
    // none.
    template <typename Matches>
    uint32_t& Find(size_t hash, Matches matches);

   private:
    struct Slot {
      uint32_t number = kNone;
      uint32_t hash = 0;
    };
    std::vector<Slot> m_slots;
  };

  uint32_t FindOrAddPosition(const FileVertex& vertex);
  uint32_t FindOrAddFan(uint32_t position, const Point3& normal);
  uint32_t AddFan(uint32_t position, const Point3& normal);
  void AddWeights(std::span<const BoneWeight> weights);
  void SetPositions(Mesh& mesh);
  void SetNormals(AssembledMesh& result);
  void SetTexCoords(Mesh& mesh);

  Mesh m_mesh;  // its faces and texture faces; until Finish, texture faces hold file vertices
  size_t m_vertexLimit;
  uint32_t m_faceCount = 0;
  std::vector<Part> m_parts;
  std::vector<uint32_t> m_vertexPosition;  // of each file vertex
  std::vector<uint32_t> m_vertexFan;
  std::vector<Point3> m_positions;
  std::vector<Point3> m_fanNormals;
  std::vector<uint32_t> m_fanPosition;
  std::vector<uint32_t> m_firstFan;  // of each position
  std::vector<UVVert> m_texCoords;
  SkinWeights m_skin;
  Table m_positionTable;
  Table m_fanTable;  // empty until a position has a second fan
};

}  // namespace orv::host
