#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "e2e/Orv.h"

namespace orv {
namespace {

// Two triangles, the second without area, and so without a normal.
constexpr char kFlatTriangle[] =
    "mtllib flat.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 2 0 0\nvt 0 0\nvt 1 0\nvt 0 1\n"
    "usemtl rail_m.notex\nf 1/1 2/2 3/3\nf 1/1 2/2 4/3\n";

TEST(Inspection, StatusTellsTheWorst) {
  const Workplace place;
  WriteContent(place.Path("flat.obj"), kFlatTriangle);
  WriteContent(place.Path("flat.mtl"), "newmtl rail_m.notex\n");
  const std::string line =
      "orv: ./flat.im: QIRF/CHNK 0/GEOM (rail_m.notex): the normal of vertex 3 is not a finite "
      "number (3 such) [not-finite]";
  const Outcome unchecked = place.Export("flat.obj", "flat", {"--no-animation", "--no-check"});
  EXPECT_EQ(unchecked.status, 0) << unchecked.err;
  EXPECT_FALSE(unchecked.Says(line));
  const Outcome checked = place.Export("flat.obj", "flat", {"--no-animation"});
  EXPECT_EQ(checked.status, 1);
  EXPECT_TRUE(checked.Says(line)) << checked.err;
  EXPECT_EQ(checked.out, "./flat.im (476 bytes)\n");

  WriteContent(place.Path("cut.im"), place.Content("flat.im").substr(0, 200));
  const struct {
    std::vector<std::string> arguments;
    int status;
    size_t files;  // in the document
    long complaints;
  } cases[] = {
      {{"info", "flat.im", "--json"}, 0, 1, 0},
      {{"info", "flat.im", "cut.im", "none.im", "--json"}, 2, 3, 2},
      {{"check", "flat.im", "--json"}, 1, 1, 0},
      {{"check", "cut.im", "none.im", "--json"}, 2, 2, 1},
      {{"check", "cut.im", "--json"}, 1, 1, 0},
  };
  for (const auto& c : cases) {
    const Outcome run = place.Orv(c.arguments);
    EXPECT_EQ(run.status, c.status) << run.err;
    EXPECT_EQ(nlohmann::json::parse(run.out)["files"].size(), c.files);
    EXPECT_EQ(run.Count("orv: "), c.complaints);
  }
  EXPECT_EQ(place.Orv({"info"}).status, 2);
  EXPECT_EQ(place.Orv({"info", "flat.im"}).out.substr(0, 29), "flat.im: mesh, 476 bytes\n  si");
}

}  // namespace
}  // namespace orv
