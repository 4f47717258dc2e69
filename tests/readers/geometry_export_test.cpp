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

// Where the texture coordinates of the corners lie, in the order of the only triangle.
std::vector<std::array<float, 2>> CornerTexture(const independent::MeshFile& file) {
  std::vector<std::array<float, 2>> corners;
  for (const uint16_t vertex : file.chunks.at(0).triangles.at(0)) {
    corners.push_back({file.chunks[0].vertices[vertex][3], file.chunks[0].vertices[vertex][4]});
  }
  return corners;
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

TEST_F(GeometryExport, StagesAndProgressAreAnnounced) {
  AddMesh("a");
  AddMesh("b");
  AddMesh("c");
  ExportGeometry();
  ASSERT_GE(ui.stages.size(), 4u);
  EXPECT_EQ(Lines(ui.stages.begin(), ui.stages.begin() + 3),
            (Lines{"Reading data from the scene", "Transforming and cropping", "Merging meshes"}));
  // Four nodes with the root, twice; three meshes; two appended.
  const std::vector<float> expected = {0,      0.125f, 0.25f,    0.375f,   0,        0.125f,  0.25f,
                                       0.375f, 0,      1 / 3.0f, 2 / 3.0f, 1 / 3.0f, 2 / 3.0f};
  ASSERT_GE(ui.progress.size(), expected.size());
  EXPECT_EQ(std::vector(ui.progress.begin(), ui.progress.begin() + 13), expected);
}

TEST_F(GeometryExport, MeshesArriveInWorldSpaceAndMetres) {
  scene.info.metresPerUnit = 0.01;
  host::MemoryNode& car = scene.AddNode("car");
  car.SetTransform(MovedBy(1000, 0, 0));
  host::MemoryNode& door = AddMesh("door", &car);
  door.SetTransform(ScaledBy(200, 100, 100));
  door.SetObjectOffset(MovedBy(0, 0, 3));
  const independent::MeshFile file = ExportGeometry();
  EXPECT_EQ(Positions(file.chunks.at(0)),
            (std::vector<Floats3>{{10, 0, 3}, {10, 1, 3}, {12, 0, 3}}));
  EXPECT_EQ(file.chunks[0].normals, std::vector<Floats3>(3, {0, 0, 1}));
}

TEST_F(GeometryExport, MirroredMeshesExchangeTheOuterCorners) {
  const std::vector<std::array<float, 2>> asModelled = {{0, 1}, {1, 1}, {0, 0}};
  const std::vector<std::array<float, 2>> exchanged = {{0, 0}, {1, 1}, {0, 1}};
  options.m_optimise = false;
  const struct {
    const char* what;
    Matrix3 transform;
    bool isExchanged;
  } cases[] = {
      {"none", ScaledBy(1, 1, 1), false},        {"x", ScaledBy(-1, 1, 1), true},
      {"z", ScaledBy(1, 1, -1), true},           {"two: a half turn", ScaledBy(-1, -1, 1), false},
      {"all three", ScaledBy(-1, -1, -1), true}, {"quarter turn", QuarterTurnAt(0, 0, 0), false}};
  host::MemoryNode& node = AddMesh("a");
  for (const auto& c : cases) {
    node.SetTransform(c.transform);
    auto corners = CornerTexture(ExportGeometry());
    EXPECT_EQ(corners, c.isExchanged ? exchanged : asModelled) << c.what;
  }
}

TEST_F(GeometryExport, EqualMaterialsShareAChunk) {
  host::MemoryMaterial& twin = scene.AddMaterial("plain.m.notex");
  host::MemoryMaterial& red = scene.AddMaterial("plain.m.notex");
  red.diffuse = {1, 0, 0};
  AddMesh("a");
  AddMesh("b").SetMaterial(&twin);
  EXPECT_EQ(ExportGeometry().chunks.size(), 1u);
  AddMesh("c").SetMaterial(&red);
  EXPECT_EQ(ExportGeometry().chunks.size(), 2u);
  options.m_useDefaultColors = true;
  EXPECT_EQ(ExportGeometry().chunks.size(), 1u);
}

TEST_F(GeometryExport, OneMeshMergesItsOwnEqualMaterials) {
  Mtl& multi = scene.AddMultiMaterial(
      "both", {&plain, &scene.AddMaterial("other.m.notex"), &scene.AddMaterial("plain.m.notex")});
  scene.AddMeshNode("a",
                    MeshOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}},
                           {{0, 1, 2, 1, 0}, {0, 1, 3, 1, 1}, {1, 3, 2, 1, 2}}),
                    &multi);
  const independent::MeshFile file = ExportGeometry();
  ASSERT_EQ(file.chunks.size(), 2u);
  EXPECT_EQ(file.chunks[0].triangles.size(), 2u);
  EXPECT_EQ(file.chunks[1].materialName, "other.m.notex");
}

TEST_F(GeometryExport, DiffusePlacementMovesTheTexture) {
  host::MemoryBitmap& bitmap = scene.AddBitmap("wood.tga");
  bitmap.coordinates.uScale = 2;
  bitmap.coordinates.uOffset = 0.5f;
  bitmap.crop.width = 0.5f;
  plain.maps[kDiffuse] = &bitmap;
  AddMesh("a");
  options.m_optimise = false;
  // Scaled about the middle; the offset counts with cropping only.
  EXPECT_EQ(CornerTexture(ExportGeometry()),
            (std::vector<std::array<float, 2>>{{-0.5f, 1}, {1.5f, 1}, {-0.5f, 0}}));
  bitmap.crop.on = true;
  EXPECT_EQ(CornerTexture(ExportGeometry()),
            (std::vector<std::array<float, 2>>{{0.25f, 1}, {1.25f, 1}, {0.25f, 0}}));
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

// The parent stands turned at (1, 0, 0), the bone unturned at (1, 2, 0).
TEST_F(GeometryExport, RigidPartsArriveInTheSpaceOfTheirBone) {
  scene.info.metresPerUnit = 0.5;
  host::MemoryNode& body = scene.AddNode("b.body");
  body.SetTransform(QuarterTurnAt(1, 0, 0));
  host::MemoryNode& arm = scene.AddNode("b.arm r.1", &body);
  arm.SetTransform(MovedBy(1, 2, 0) * Inverse(QuarterTurnAt(1, 0, 0)));
  AddMesh("part", &arm).SetTransform(MovedBy(0, 0, 4));
  const independent::MeshFile file = ExportGeometry();
  ASSERT_EQ(file.bones.size(), 2u);
  EXPECT_EQ(file.bones[0].pose[0], 1);
  EXPECT_NEAR(file.bones[0].pose[5], -0.70710678, 1e-6);
  EXPECT_EQ(file.bones[1].name, "b.arm r.1");
  EXPECT_EQ(file.bones[1].parent, 0);
  const float expected[] = {2, 0, 0, 0, 0, 0.70710678f, 0.70710678f};
  for (size_t i = 0; i < 7; ++i) EXPECT_NEAR(file.bones[1].pose[i], expected[i], 1e-6) << i;
  EXPECT_FALSE(file.hasInfluences);
  EXPECT_EQ(file.chunks.at(0).boneName, "b.arm r.1");
  EXPECT_EQ(Positions(file.chunks[0]),
            (std::vector<Floats3>{{0, 0, 2}, {0, 0.5f, 2}, {0.5f, 0, 2}}));
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

TEST_F(GeometryExport, FilesThatCannotBeWrittenAreAnError) {
  AddMesh("a");
  imName = folder.File("missing/out.im");
  ExportGeometry(false);
  const std::string error = "error: Geometry Exporter reported error code '16'";
  EXPECT_EQ(std::count(ui.log.begin(), ui.log.end(), error), 1);
  EXPECT_TRUE(ui.log.back().starts_with("info: Could not write " + imName + ": "));
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
