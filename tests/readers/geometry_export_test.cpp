#include <algorithm>

#include "ExportFixture.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;
using Floats3 = std::array<float, 3>;

class GeometryExport : public ExportTest {};

// All positions of a chunk in ascending order, without the texture coordinates.
std::vector<Floats3> Positions(const independent::MeshChunk& chunk) {
  std::vector<Floats3> positions;
  for (const auto& v : chunk.vertices) positions.push_back({v[0] + 0, v[1] + 0, v[2] + 0});
  std::sort(positions.begin(), positions.end());
  return positions;
}

// Per bone: the positions of the vertices of chunk 0 that it moves.
std::vector<std::pair<std::string, std::vector<Floats3>>> Moved(const independent::MeshFile& file) {
  std::vector<std::pair<std::string, std::vector<Floats3>>> result;
  for (const auto& bone : file.influences) {
    std::vector<Floats3> moved;
    for (const auto& match : bone.matches) {
      for (const auto& weight : match.weights) {
        const auto& v = file.chunks[0].vertices[static_cast<size_t>(weight.vertex)];
        moved.push_back({v[0], v[1], v[2]});
      }
    }
    std::sort(moved.begin(), moved.end());
    result.emplace_back(bone.name, moved);
  }
  return result;
}

const std::vector<Floats3> kTriangle = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}};

std::vector<Floats3> TriangleAt(float x) { return {{x, 0, 0}, {x, 1, 0}, {x + 1, 0, 0}}; }

TEST_F(GeometryExport, NothingToExportIsAWarning) {
  scene.AddMeshNode("b.bone", Triangle(), &plain);
  scene.AddPointHelper("b.hook");
  scene.AddNode("group");
  ExportGeometry(true);
  EXPECT_EQ(ui.log, Lines{"warning: Export cancelled - nothing to export"});
  EXPECT_EQ(folder.Count(), 0u);
}

TEST_F(GeometryExport, MeshesThatCannotBeUsedAreReportedAndLeftOut) {
  scene.AddMeshNode("bare", Triangle());
  scene.AddMeshNode("flat", WithoutTextureVertices(Triangle()), &plain);
  scene.AddMeshNode("empty", MeshOf({}, {}), &plain);
  AddMesh("good");
  const independent::MeshFile file = ExportGeometry();
  EXPECT_EQ(ui.log, (Lines{"error: Ignoring mesh - Material missing for mesh:bare",
                           "warning: Ignoring mesh - no texture mapping for mesh:flat",
                           "warning: Ignoring mesh - no faces for mesh:empty"}));
  ASSERT_EQ(file.chunks.size(), 1u);
  EXPECT_EQ(Positions(file.chunks[0]), kTriangle);
}

TEST_F(GeometryExport, PointHelpersBecomeAttachments) {
  scene.info.metresPerUnit = 0.5;
  AddMesh("a");
  scene.AddPointHelper("b.hook").SetTransform(ScaledBy(3, 3, 3) * QuarterTurnAt(2, 4, 6));
  scene.AddPointHelper(std::string(300, 'n'));
  const independent::MeshFile file = ExportGeometry();
  ASSERT_EQ(file.attachments.size(), 2u);
  EXPECT_EQ(file.attachments[0].name, "b.hook");
  EXPECT_EQ(file.attachments[0].position, (Floats3{1, 2, 3}));
  EXPECT_EQ(file.attachments[0].rotation, (std::array<float, 9>{0, 1, 0, -1, 0, 0, 0, 0, 1}));
  EXPECT_EQ(file.attachments[1].name.size(), 255u);
  EXPECT_TRUE(file.influences.empty());
}

TEST_F(GeometryExport, RigidPartsAreBoundAtTimeZero) {
  host::MemoryNode& bone = scene.AddNode("b.r.");
  bone.SetMotion([](double seconds) { return MovedBy(static_cast<float>(seconds), 0, 0); });
  AddMesh("part", &bone);
  ExportAnimation(900, 900);
  EXPECT_EQ(Positions(ExportGeometry().chunks.at(0)), kTriangle);
}

// Bound to a bone only when the parent is one, is in the tree and is called so.
TEST_F(GeometryExport, OtherParentsBindNothing) {
  host::MemoryNode& root = scene.AddNode("b.root");
  const std::pair<const char*, host::MemoryNode*> parents[] = {
      {"b.arm", &root}, {"b.R.arm", &root}, {"arm r.1", &root}, {"b.stray r.", nullptr}};
  for (const auto& [name, above] : parents) {
    host::MemoryNode& parent = scene.AddNode(name, above);
    parent.SetTransform(MovedBy(3, 0, 0));
    AddMesh("part", &parent);
  }
  const independent::MeshFile file = ExportGeometry();
  EXPECT_TRUE(file.bones.empty());
  ASSERT_EQ(file.chunks.size(), 1u);
  EXPECT_EQ(file.chunks[0].boneName, "");
  EXPECT_EQ(Positions(file.chunks[0]), TriangleAt(3));
}

TEST_F(GeometryExport, BonesWithoutWeightsAreInTheInfluenceToo) {
  host::MemoryNode& one = scene.AddNode("b.one");
  scene.AddNode("B.TWO", &one);
  AddSkinned("skin", *scene.FindNode("B.TWO"));
  const independent::MeshFile file = ExportGeometry();
  EXPECT_EQ(Moved(file), (decltype(Moved(file)){{"B.TWO", kTriangle}, {"b.one", {}}}));
  EXPECT_EQ(file.influences[0].matches.size(), 1u);  // not added once more
  EXPECT_EQ(file.influences[0].parentName, "b.one");
  EXPECT_EQ(file.influences[1].parentName, "");
}

// Three meshes side by side. The weights of the second name vertices of the third.
TEST_F(GeometryExport, MergedWeightsAreShiftedPastTheirOwnMesh) {
  host::MemoryNode &one = scene.AddNode("b.one"), &two = scene.AddNode("b.two");
  two.SetTransform(MovedBy(5, 0, 0));
  AddSkinned("first", one);
  AddSkinned("second", two);
  AddMesh("third").SetTransform(MovedBy(9, 0, 0));
  const independent::MeshFile file = ExportGeometry();
  EXPECT_EQ(Moved(file), (decltype(Moved(file)){{"b.one", kTriangle}, {"b.two", TriangleAt(9)}}));
}

// The ignored mesh keeps its place in the list of influences, so the first mesh gets its weights.
TEST_F(GeometryExport, IgnoredMeshShiftsTheInfluences) {
  host::MemoryNode &one = scene.AddNode("b.one"), &two = scene.AddNode("b.two");
  AddSkinned("ignored", one).SetMaterial(nullptr);
  AddSkinned("kept", two);
  const independent::MeshFile file = ExportGeometry();
  EXPECT_EQ(Moved(file), (decltype(Moved(file)){{"b.one", kTriangle}, {"b.two", {}}}));
}

TEST_F(GeometryExport, StrayBonesAreReportedByTheGeometryExportAlone) {
  scene.AddNode("b.root");
  scene.AddNode("b.stray");
  AddMesh("a");
  ExportGeometry();
  ExportAnimation(0, 0);
  const Lines once = {"warning: Ignoring bone - not below the first bone root:b.stray"};
  EXPECT_EQ(ui.log, once);
  ui.log.clear();
  options.m_exportGeometry = false;
  ExportAnimation(0, 0);
  EXPECT_EQ(ui.log, once);
}

TEST_F(GeometryExport, AnExporterCanExportAgain) {
  host::MemoryHost memoryHost(scene);
  SetHostCore(&memoryHost);
  host::MemoryNode& a = AddMesh("a");
  MaxExGeometryExporter exporter;
  std::string first;
  for (int run = 0; run < 3; ++run) {
    exporter.AddNode(&a, true);
    exporter.AddNode(&a, true);
    ASSERT_TRUE(exporter.ExportGeometry(&memoryHost, imName.c_str(), ui));
    exporter.Clear();
    if (run == 0) first = ContentOf(imName);
    EXPECT_EQ(ContentOf(imName), first);
  }
  ASSERT_TRUE(exporter.ExportGeometry(&memoryHost, imName.c_str(), ui));
  EXPECT_EQ(ui.log, Lines{"warning: Export cancelled - nothing to export"});
}

}  // namespace
}  // namespace orv
