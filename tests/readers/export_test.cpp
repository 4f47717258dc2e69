#include <gtest/gtest.h>

#include <algorithm>

#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
#include "TemporaryFolder.h"
#include "formats/IndexedMeshFile.h"
#include "options/Options.h"
#include "readers/MaxExAnimationExporter.h"
#include "readers/MaxExGeometryExporter.h"
#include "readers/MaxExSkeleton.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;
using Points = std::vector<std::array<float, 3>>;  // in ascending order; none is -0

Points PointsOf(std::span<const IndexedVertex> vertices) {
  Points points;
  for (const IndexedVertex& v : vertices) points.push_back({v.x + 0, v.y + 0, v.z + 0});
  std::sort(points.begin(), points.end());
  return points;
}

Points TriangleAt(float x) { return {{x, 0, 0}, {x, 1, 0}, {x + 1, 0, 0}}; }

// Per bone: the positions of the vertices of chunk 0 that it moves.
using MovedPoints = std::vector<std::pair<std::string, Points>>;

MovedPoints Moved(const IndexedMesh& mesh) {
  MovedPoints result;
  for (const auto& bone : mesh.influences.at(0)->m_bones) {
    std::vector<IndexedVertex> moved;
    for (const VertexWeight& w : bone->m_weights)
      moved.push_back(mesh.chunks[0].vertices[w.vertex]);
    result.emplace_back(bone->m_name, PointsOf(moved));
  }
  return result;
}

// A scene that a test fills and exports.
class GeometryExport : public testing::Test {
 protected:
  GeometryExport() {
    Options::Instance().Reset();
    Options::Instance().m_eventFileName = {};
    SetHostCore(&memoryHost);
  }
  ~GeometryExport() override { SetHostCore(nullptr); }

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
  IndexedMeshFile Export(MaxExGeometryExporter& exporter) {
    EXPECT_TRUE(exporter.ExportGeometry(&memoryHost, imName.c_str(), ui));
    exporter.Clear();
    IndexedMeshFile file;
    ReadProblem problem;
    ReadIndexedMeshFile(imName, file, problem);
    return file;
  }

  IndexedMeshFile Export() {
    MaxExGeometryExporter exporter;
    for (INode* node : AllNodes(scene)) exporter.AddNode(node, false);
    return Export(exporter);
  }

  void ExportAnimation(int frame) {
    MaxExAnimationExporter exporter;
    for (INode* node : AllNodes(scene)) exporter.AddNode(node, false);
    EXPECT_TRUE(
        exporter.ExportAnimation(&memoryHost, folder.File("out.kin").c_str(), frame, frame, ui));
  }

  TemporaryFolder folder;
  std::string imName = folder.File("out.im");
  host::Scene scene;
  host::MemoryHost memoryHost{scene};
  host::MemoryMaterial& plain = scene.AddMaterial("plain.m.notex");
  RecordingUserInterface ui;
};

TEST_F(GeometryExport, NamesAndObjectsDecideTheRole) {
  const std::tuple<const char*, bool, NodeRole, bool> cases[] = {
      {"B.Spine", false, NodeRole::Bone, false},
      {"xb.spine", false, NodeRole::MeshSource, false},
      {"b.hook", true, NodeRole::AttachmentPoint, false},
      {"arm r.1", false, NodeRole::MeshSource, true},
      {"b.arm r.", false, NodeRole::Bone, true},
      {"R.arm", false, NodeRole::MeshSource, false},
  };
  for (const auto& [name, pointHelper, role, bindsItsChildren] : cases) {
    host::MemoryNode& node = pointHelper ? scene.AddPointHelper(name) : scene.AddNode(name);
    EXPECT_EQ(RoleOf(&node), role) << name;
    EXPECT_EQ(IsBone(&node), role == NodeRole::Bone) << name;
    EXPECT_EQ(BindsItsChildren(&node), bindsItsChildren) << name;
  }
}

std::string Tree(const GenericSkeleton::Node& bone) {
  std::string text = bone.Name();
  for (const auto& child : bone.m_children) text += " (" + Tree(*child) + ")";
  return text;
}

TEST_F(GeometryExport, BonesHangOnTheNearestBoneAbove) {
  host::MemoryNode& root = scene.AddNode("root", &scene.AddNode("group"));
  host::MemoryNode& group = scene.AddNode("between", &root);
  host::MemoryNode& arm = scene.AddNode("arm", &group);
  host::MemoryNode& hand = scene.AddNode("hand", &scene.AddNode("wrist", &arm));
  host::MemoryNode& leg = scene.AddNode("leg", &group);
  host::MemoryNode &stray = scene.AddNode("stray"), &tail = scene.AddNode("tail", &stray);
  const std::vector<INode*> bones = {&hand, &tail, &leg, &root, &arm, &leg, &stray};
  MaxExGenericSkeleton skeleton(bones);
  EXPECT_EQ(Tree(*skeleton.m_root), "root (leg) (arm (hand))");
  EXPECT_EQ(skeleton.FindBone(&hand)->HostNode(), &hand);
  EXPECT_EQ(skeleton.FindBone(&tail), nullptr);
  skeleton.ReportStrayRoots(ui);
  EXPECT_EQ(ui.log, Lines{"warning: Ignoring bone - not below the first bone root:stray"});
}

TEST_F(GeometryExport, MeshesThatCannotBeUsedAreReportedAndLeftOut) {
  BlendMaterial blend("Blend");
  Mtl& multi = scene.AddMultiMaterial("All", {&plain, &scene.AddMaterial("plain.m.notex"), &blend});
  const std::vector<Point3> points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  scene.AddMeshNode("bare", TriangleMesh());
  scene.AddMeshNode("flat", WithoutTextureVertices(TriangleMesh()), &plain);
  scene.AddMeshNode("empty", WithoutTextureVertices(MeshOf({}, {})), &plain);
  scene.AddMeshNode("blended", TriangleMesh(), &blend);
  scene.AddMeshNode("part", MeshOf(points, {{0, 1, 2, 1, 2}}), &multi);
  scene.AddMeshNode("good", MeshOf(points, {{0, 1, 2}, {0, 2, 1, 1, 1}}), &multi);
  const IndexedMeshFile file = Export();
  EXPECT_EQ(ui.log,
            (Lines{"error: Ignoring mesh - Material missing for mesh:bare",
                   "warning: Ignoring mesh - no texture mapping for mesh:flat",
                   "warning: Ignoring mesh - no faces for mesh:empty",
                   "error: Ignoring mesh - material other than standard or sub-material used for "
                   "mesh:blended,Material:Blend",
                   "error: Ignoring mesh - material other than standard used in sub-material for "
                   "mesh:part,Material:All,SubMaterial:Blend"}));
  ASSERT_EQ(file.mesh.chunks.size(), 1u);  // the two materials are equal
  EXPECT_EQ(file.triangleCount, 2u);
}

// An object that the host has to make a mesh of, which it then counts as lent.
class Ball final : public Object {
 public:
  static inline int s_made = 0, s_lent = 0;

  Class_ID ClassID() override { return Class_ID(0x11, 0); }
  SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
  int CanConvertToType(Class_ID type) override { return type == Class_ID(TRIOBJ_CLASS_ID, 0); }
  Object* ConvertToType(TimeValue, Class_ID) override { return new Lent; }

 private:
  struct Lent final : TriObject {
    Lent() : TriObject(TriangleMesh()) { ++s_made, ++s_lent; }
    void DeleteThis() override {
      --s_lent;
      delete this;
    }
  };
};

// Also of a mesh that is left out, and when the export ends early; then there can be another one.
TEST_F(GeometryExport, MeshesThatTheHostMadeAreGivenBack) {
  scene.AddNode("unused").SetObject(std::make_shared<Ball>());
  host::MemoryNode& used = scene.AddNode("used");
  used.SetObject(std::make_shared<Ball>());
  used.SetMaterial(&plain);
  host::MemoryNode& skin = AddSkinned("skin", scene.AddNode("b.bone"));
  auto& physique = static_cast<host::MemoryPhysique&>(
      *static_cast<IDerivedObject*>(skin.GetObjectRef())->GetModifier(0));
  physique.staysDeformable = true;
  try {
    Export();
    ADD_FAILURE() << "nothing thrown";
  } catch (const Finding& finding) {
    EXPECT_EQ(finding.text, "Unsupported vertex type encountered in physique export");
  }
  physique.staysDeformable = false;
  EXPECT_EQ(Export().mesh.chunks.at(0).triangles.size(), 2u);
  EXPECT_EQ(Ball::s_made, 4);
  EXPECT_EQ(Ball::s_lent, 0);
}

TEST_F(GeometryExport, PointHelpersBecomeAttachments) {
  scene.info.metresPerUnit = 0.5;
  AddMesh("a");
  scene.AddPointHelper(std::string(300, 'n'))
      .SetTransform(ScaledBy(3, 3, 3) * QuarterTurnAt(2, 4, 6));
  const AttachmentPoint point = Export().mesh.attachmentPoints.at(0);
  ui.stages.resize(3);
  EXPECT_EQ(ui.stages,
            (Lines{"Reading data from the scene", "Transforming and cropping", "Merging meshes"}));
  EXPECT_FLOAT_EQ(ui.progress[5], 1.0f / 3);  // at the last of three nodes, in the second half
  EXPECT_EQ(point.name.size(), 255u);
  EXPECT_EQ(point.position, (Vec3{1, 2, 3}));
  EXPECT_EQ(point.rotation, (Matrix33{Vec3{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}));
}

TEST_F(GeometryExport, RigidPartsAreBoundAtTimeZero) {
  host::MemoryNode& bone = scene.AddNode("b.r.");
  bone.SetMotion([](double seconds) { return MovedBy(static_cast<float>(seconds), 0, 0); });
  AddMesh("part", &bone);
  ExportAnimation(900);
  const IndexedMeshFile file = Export();
  EXPECT_EQ(PointsOf(file.mesh.chunks.at(0).vertices), TriangleAt(0));
  EXPECT_EQ(file.chunks[0].boneName, "b.r.");
  EXPECT_EQ(file.bones.at(0).name, "b.r.");
}

TEST_F(GeometryExport, BonesWithoutWeightsAreInTheInfluenceToo) {
  host::MemoryNode& one = scene.AddNode("b.one");
  AddSkinned("skin", scene.AddNode("B.TWO", &one));
  const IndexedMeshFile file = Export();
  EXPECT_EQ(Moved(file.mesh), (MovedPoints{{"B.TWO", TriangleAt(0)}, {"b.one", {}}}));
  EXPECT_EQ(file.mesh.influences[0]->m_bones[0]->m_parentName, "b.one");
}

// Three meshes side by side. The weights of the second name vertices of the third.
TEST_F(GeometryExport, MergedWeightsAreShiftedPastTheirOwnMesh) {
  host::MemoryNode &one = scene.AddNode("b.one"), &two = scene.AddNode("b.two");
  two.SetTransform(MovedBy(5, 0, 0));
  AddSkinned("first", one);
  AddSkinned("second", two);
  AddMesh("third").SetTransform(MovedBy(9, 0, 0));
  EXPECT_EQ(Moved(Export().mesh),
            (MovedPoints{{"b.one", TriangleAt(0)}, {"b.two", TriangleAt(9)}}));
}

// The ignored mesh keeps its place in the list of influences, so the first mesh gets its weights.
TEST_F(GeometryExport, IgnoredMeshShiftsTheInfluences) {
  host::MemoryNode &one = scene.AddNode("b.one"), &two = scene.AddNode("b.two");
  AddSkinned("ignored", one).SetMaterial(nullptr);
  AddSkinned("kept", two);
  EXPECT_EQ(Moved(Export().mesh), (MovedPoints{{"b.one", TriangleAt(0)}, {"b.two", {}}}));
}

TEST_F(GeometryExport, StrayBonesAreReportedByTheGeometryExportAlone) {
  scene.AddNode("b.root");
  scene.AddNode("b.stray");
  AddMesh("a");
  Export();
  ExportAnimation(0);
  const Lines once = {"warning: Ignoring bone - not below the first bone root:b.stray"};
  EXPECT_EQ(ui.log, once);
  ui.log.clear();
  Options::Instance().m_exportGeometry = false;
  ExportAnimation(0);
  EXPECT_EQ(ui.log, once);
}

TEST_F(GeometryExport, AnExporterCanExportAgain) {
  host::MemoryNode& a = AddMesh("a");
  MaxExGeometryExporter exporter;
  for (const size_t triangles : {1, 2}) {
    exporter.AddNode(&a, true);
    exporter.AddNode(&a, triangles == 1);
    EXPECT_EQ(Export(exporter).triangleCount, triangles);
  }
  exporter.AddNode(&scene.AddPointHelper("b.hook"), false);
  std::filesystem::remove(imName);
  Export(exporter);
  EXPECT_EQ(folder.Count(), 0u);
  EXPECT_EQ(ui.log, Lines{"warning: Export cancelled - nothing to export"});
}

}  // namespace
}  // namespace orv
