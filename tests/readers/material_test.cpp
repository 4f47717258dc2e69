#include <gtest/gtest.h>

#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
#include "readers/MaxExMaterial.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

TEST(Materials, MapsThatCannotBeUsedAreReported) {
  host::MemoryMaterial material("Oak");
  NoiseMap noise;
  host::MemoryBitmap nameless(""), good("good.tga");
  material.maps[kShininess] = &noise;
  material.maps[kFilterColor] = &nameless;
  material.maps[kDisplacement] = &good;
  GenericMaterial record;
  TexCoordTransform transform;
  RecordingUserInterface ui;
  ReadMaterial(record, &material, transform, "crate", false, ui);
  EXPECT_EQ(ui.log, (Lines{"warning: Ignoring material map - use of non-bitmap in material:Oak"
                           ",Map:shininesNs,Mesh:crate",
                           "error: Ignoring material map - missing bitmap name in material:Oak"
                           ",Map:filter color,Mesh:crate"}));
  ASSERT_EQ(record.maps.size(), 1u);
  EXPECT_EQ(record.maps[0].channel, kDisplacement);
  EXPECT_EQ(record.maps[0].fileName, "good.tga");
}

}  // namespace
}  // namespace orv
