#include <algorithm>

#include "ExportFixture.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;
class GeometryExport : public ExportTest {};

// In ascending order; none is -0.
using Points = std::vector<std::array<float, 3>>;

Points Positions(const IndexedMesh::Chunk& chunk) {
  Points positions;
  for (const IndexedVertex& v : chunk.vertices) positions.push_back({v.x + 0, v.y + 0, v.z + 0});
  std::sort(positions.begin(), positions.end());
  return positions;
}

// Per bone: the positions of the vertices of chunk 0 that it moves.
std::vector<std::pair<std::string, Points>> Moved(const IndexedMeshFile& file) {
  std::vector<std::pair<std::string, Points>> result;
  for (const auto& bone : file.mesh.influences.at(0)->m_bones) {
    IndexedMesh::Chunk moved;
    for (const VertexWeight& weight : bone->m_weights) {
      moved.vertices.push_back(file.mesh.chunks[0].vertices[weight.vertex]);
    }
    result.emplace_back(bone->m_name, Positions(moved));
  }
  return result;
}

using MovedPoints = decltype(Moved({}));

Points TriangleAt(float x) { return {{x, 0, 0}, {x, 1, 0}, {x + 1, 0, 0}}; }

TEST_F(GeometryExport, NothingToExportIsAWarning) {
  scene.AddMeshNode("b.bone", TriangleMesh(), &plain);
  scene.AddPointHelper("b.hook");
  scene.AddNode("group");
  ExportGeometry();
  EXPECT_EQ(ui.log, Lines{"warning: Export cancelled - nothing to export"});
  EXPECT_EQ(folder.Count(), 0u);
}

TEST_F(GeometryExport, MeshesThatCannotBeUsedAreReportedAndLeftOut) {
  scene.AddMeshNode("bare", TriangleMesh());
  scene.AddMeshNode("flat", WithoutTextureVertices(TriangleMesh()), &plain);
  scene.AddMeshNode("empty", MeshOf({}, {}), &plain);
  AddMesh("good");
  const IndexedMeshFile file = ExportGeometry();
  EXPECT_EQ(ui.log, (Lines{"error: Ignoring mesh - Material missing for mesh:bare",
                           "warning: Ignoring mesh - no texture mapping for mesh:flat",
                           "warning: Ignoring mesh - no faces for mesh:empty"}));
  ASSERT_EQ(file.chunks.size(), 1u);
  EXPECT_EQ(Positions(file.mesh.chunks[0]), TriangleAt(0));
}

TEST_F(GeometryExport, EqualMaterialsOfOneMeshShareAChunk) {
  Mtl& both = scene.AddMultiMaterial("both", {&plain, &scene.AddMaterial("plain.m.notex")});
  const Mesh twoSides = MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 1, 1, 1}});
  scene.AddMeshNode("a", twoSides, &both);
  EXPECT_EQ(ExportGeometry().chunks.size(), 1u);
}

TEST_F(GeometryExport, PointHelpersBecomeAttachments) {
  scene.info.metresPerUnit = 0.5;
  AddMesh("a");
  scene.AddPointHelper("b.hook").SetTransform(ScaledBy(3, 3, 3) * QuarterTurnAt(2, 4, 6));
  scene.AddPointHelper(std::string(300, 'n'));
  const IndexedMeshFile file = ExportGeometry();
  const auto& points = file.mesh.attachmentPoints;
  ASSERT_EQ(points.size(), 2u);
  EXPECT_EQ(points[0].name, "b.hook");
  EXPECT_EQ(points[0].position, (Vec3{1, 2, 3}));
  EXPECT_EQ(points[0].rotation, (Matrix33{Vec3{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}));
  EXPECT_EQ(points[1].name.size(), 255u);
}

TEST_F(GeometryExport, RigidPartsAreBoundAtTimeZero) {
  host::MemoryNode& bone = scene.AddNode("b.r.");
  bone.SetMotion([](double seconds) { return MovedBy(static_cast<float>(seconds), 0, 0); });
  AddMesh("part", &bone);
  ExportAnimation(900, 900);
  EXPECT_EQ(Positions(ExportGeometry().mesh.chunks.at(0)), TriangleAt(0));
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
  const IndexedMeshFile file = ExportGeometry();
  EXPECT_TRUE(file.bones.empty());
  ASSERT_EQ(file.chunks.size(), 1u);
  EXPECT_EQ(file.chunks[0].boneName, "");
  EXPECT_EQ(Positions(file.mesh.chunks[0]), TriangleAt(3));
}

TEST_F(GeometryExport, BonesWithoutWeightsAreInTheInfluenceToo) {
  host::MemoryNode& one = scene.AddNode("b.one");
  scene.AddNode("B.TWO", &one);
  AddSkinned("skin", *scene.FindNode("B.TWO"));
  const IndexedMeshFile file = ExportGeometry();
  EXPECT_EQ(Moved(file), (MovedPoints{{"B.TWO", TriangleAt(0)}, {"b.one", {}}}));
  EXPECT_EQ(file.mesh.influences[0]->m_bones[0]->m_parentName, "b.one");
}

// Three meshes side by side. The weights of the second name vertices of the third.
TEST_F(GeometryExport, MergedWeightsAreShiftedPastTheirOwnMesh) {
  host::MemoryNode &one = scene.AddNode("b.one"), &two = scene.AddNode("b.two");
  two.SetTransform(MovedBy(5, 0, 0));
  AddSkinned("first", one);
  AddSkinned("second", two);
  AddMesh("third").SetTransform(MovedBy(9, 0, 0));
  const IndexedMeshFile file = ExportGeometry();
  EXPECT_EQ(Moved(file), (MovedPoints{{"b.one", TriangleAt(0)}, {"b.two", TriangleAt(9)}}));
}

// The ignored mesh keeps its place in the list of influences, so the first mesh gets its weights.
TEST_F(GeometryExport, IgnoredMeshShiftsTheInfluences) {
  host::MemoryNode &one = scene.AddNode("b.one"), &two = scene.AddNode("b.two");
  AddSkinned("ignored", one).SetMaterial(nullptr);
  AddSkinned("kept", two);
  const IndexedMeshFile file = ExportGeometry();
  EXPECT_EQ(Moved(file), (MovedPoints{{"b.one", TriangleAt(0)}, {"b.two", {}}}));
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
