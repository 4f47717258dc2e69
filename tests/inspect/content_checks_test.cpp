#include "inspect/GoodFiles.h"

namespace orv::inspect {
namespace {

void Scale(IndexedMeshFile& file, float factor) {
  for (IndexedMesh::Chunk& chunk : file.mesh.chunks) {
    for (IndexedVertex& v : chunk.vertices) v.x *= factor, v.y *= factor, v.z *= factor;
    chunk.surfaceArea *= factor * factor;
  }
  file.boundingBox = ComputeBoundingBox(file.mesh);
}

TEST(ContentChecks, EachMistakeIsFoundInItsPlace) {
  ExpectFound<IndexedMeshFile>(
      GoodSkinFile,
      {
          {[](auto& f) { ChunkOf(f).material.name = "skin"; },
           "QIRF/CHNK 0/MATL material-type-missing"},
          {[](auto& f) { ChunkOf(f).material.name = "skin m.onetexx"; },
           "QIRF/CHNK 0/MATL material-type-unknown"},
          {[](auto& f) { ChunkOf(f).material.name = "skinm.onetex"; },
           "QIRF/CHNK 0/MATL material-type-chosen"},
          {[](auto& f) { ChunkOf(f).material.name = "m.onetex"; },
           "QIRF/CHNK 0/MATL material-type-chosen"},
          {[](auto& f) { ChunkOf(f).material.name = "item. m.onetex"; }, ""},
          {[](auto& f) { ChunkOf(f).material.name = "skin m.gloss"; },
           "QIRF/CHNK 0/MATL map-missing"},
          {[](auto& f) { ChunkOf(f, 1).material.maps.pop_back(); }, "QIRF/CHNK 1/MATL map-missing"},
          {[](auto& f) { ChunkOf(f).material.opacity = 1.5f; }, "QIRF/CHNK 0/MATL opacity-range"},
          {[](auto& f) { ChunkOf(f).material.maps.push_back({.channel = 12, .fileName = "x"}); },
           "QIRF/CHNK 0/MATL map-channel"},
          {[](auto& f) {
             const GenericMaterial material = ChunkOf(f).material;
             ChunkOf(f) = {};
             ChunkOf(f).material = material;
             f.chunks[0] = {};
             f.mesh.influences[0]->m_bones.clear();
             f.maxInfluencesPerVertex = f.maxBonesPerChunk = 1;
           },
           "QIRF/CHNK 0/GEOM empty-chunk"},
          {[](auto& f) {
             ChunkOf(f).vertices[2].y = 1e-7f;
             ChunkOf(f).surfaceArea = 0;
           },
           "QIRF/CHNK 0/GEOM zero-area-triangle"},
          {[](auto& f) { ChunkOf(f).vertices[2].v = -32.5f; }, "QIRF/CHNK 0/GEOM texcoord-far"},
          {[](auto& f) { Scale(f, 180); }, "QIRF/INFO size-large"},
          {[](auto& f) { Scale(f, 1.0f / 256); }, "QIRF/INFO size-small"},
          {[](auto& f) { f.mesh.attachmentPoints.emplace_back().name = "Hatch"; },
           "QIRF/ATCH attachment-twice"},
          {[](auto& f) { WeightsOf(f, 0)[2].weight = 0.5f; }, "QIRF/INFL weight-sum"},
          {[](auto& f) { WeightsOf(f, 0).pop_back(); }, "QIRF/INFL vertex-without-weight"},
          {[](auto& f) { WeightsOf(f, 1).emplace_back().weight = -0.25f; },
           "QIRF/INFL weight-range"},
      });
}

TEST(ContentChecks, SixteenBonesInAChunkAreTheMost) {
  ExIndexedMesh mesh = GoodSkin();
  for (int i = 2; i < 16; ++i)
    AddInfluence(*mesh.influences[0], "b." + std::to_string(i), {{0, 1, {}}});
  Findings findings;
  CheckContent(ReadBack(mesh), findings);
  EXPECT_EQ(CountOf(findings, Level::Error), 0u);

  AddInfluence(*mesh.influences[0], "b.16", {{0, 1, {}}});
  AddInfluence(*mesh.influences[0], "b.idle", {{0, 0, {}}});
  findings.clear();
  CheckContent(ReadBack(mesh), findings);
  ASSERT_EQ(CountOf(findings, Level::Error), 1u);
  EXPECT_EQ(LineOf(findings[0]),
            "QIRF/INFL, chunk 0 (skin m.onetex): 17 bones move the chunk, the "
            "engine takes 16 [too-many-bones]");
}

TEST(ContentChecks, ChunksBeyondTheEnginesLimitsAreFound) {
  const auto linesWith = [](size_t vertices, size_t triangles) {
    IndexedMeshFile file = GoodSkinFile();
    file.mesh.influences.clear();
    file.mesh.chunks[0].vertices.resize(vertices, {0, 1, 0, 0, 0});
    file.mesh.chunks[0].triangles.resize(triangles, {0, 1, 2});
    Findings findings;
    CheckContent(file, findings);
    return LinesOf(findings);
  };
  EXPECT_EQ(linesWith(32000, 10666), Lines());
  EXPECT_EQ(linesWith(32001, 1),
            Lines({"QIRF/CHNK 0/GEOM (skin m.onetex): 32001 vertices and 3 indices, the engine "
                   "takes 32000 of each [chunk-too-large]"}));
  EXPECT_EQ(linesWith(3, 10667).size(), 1u);
}

}  // namespace
}  // namespace orv::inspect
