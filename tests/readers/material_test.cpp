#include <gtest/gtest.h>

#include "RecordingUserInterface.h"
#include "SceneBuilders.h"
#include "scene/MaxExMaterial.h"

namespace orv {
namespace {

using Lines = std::vector<std::string>;

struct Read {
  GenericMaterial record;
  TexCoordTransform transform;
  RecordingUserInterface ui;

  explicit Read(StdMat2* material, bool flipGreen = false) {
    ReadMaterial(record, material, transform, "crate", flipGreen, ui);
  }
};

TEST(Materials, RecordHoldsWhatTheHostSays) {
  host::MemoryMaterial material("Old OAK.m.Gloss");
  material.twoSided = true;
  material.opacity = 0.5f;
  material.ambient = {1, 2, 3};
  material.diffuse = {4, 5, 6};
  material.specular = {7, 8, 9};
  material.shininess = 0.25f;
  material.selfIllum = 0.5f;
  material.selfIllumColor = {10, 11, 12};
  const GenericMaterial record = Read(&material).record;
  EXPECT_EQ(record.name, "old oak.m.gloss");
  EXPECT_EQ(record.twoSided, 1u);
  EXPECT_EQ(record.opacity, 0.5f);
  EXPECT_EQ(record.ambient, (Vec3{1, 2, 3}));
  EXPECT_EQ(record.diffuse, (Vec3{4, 5, 6}));
  EXPECT_EQ(record.specular, (Vec3{7, 8, 9}));
  EXPECT_EQ(record.shininess, 25);
  EXPECT_EQ(record.emissive, (Vec3{2, 2.5f, 3}));
  material.hasSelfIllumColor = true;
  EXPECT_EQ(Read(&material).record.emissive, (Vec3{10, 11, 12}));
}

TEST(Materials, MissingMaterialChangesNothing) {
  const Read read(nullptr);
  EXPECT_EQ(read.record.opacity, 1);
  EXPECT_EQ(read.record.shininess, 0.25f);
  EXPECT_TRUE(read.ui.log.empty());
}

TEST(Materials, MapsThatCannotBeUsedAreReported) {
  host::MemoryMaterial material("Oak");
  NoiseMap noise;
  host::MemoryBitmap nameless(""), good("good.tga");
  material.maps[kShininess] = &noise;
  material.maps[kFilterColor] = &nameless;
  material.maps[kDisplacement] = &good;
  const Read read(&material);
  EXPECT_EQ(read.ui.log, (Lines{"warning: Ignoring material map - use of non-bitmap in material:Oak"
                                ",Map:shininesNs,Mesh:crate",
                                "error: Ignoring material map - missing bitmap name in material:Oak"
                                ",Map:filter color,Mesh:crate"}));
  ASSERT_EQ(read.record.maps.size(), 1u);
  EXPECT_EQ(read.record.maps[0].channel, kDisplacement);
  EXPECT_EQ(read.record.maps[0].fileName, "good.tga");
}

TEST(Materials, MapsCarryTheirFlags) {
  host::MemoryMaterial material("m");
  host::MemoryBitmap diffuse("d"), opacity("o"), bump("b"), nameTooLong(std::string(600, 'x'));
  diffuse.coordinates.tiling = V_WRAP;
  opacity.coordinates.tiling = 0;
  opacity.alphaSource = ALPHA_FILE;
  bump.alphaSource = ALPHA_RGB;
  material.maps[kDiffuse] = &diffuse;
  material.maps[kOpacity] = &opacity;
  material.maps[kBump] = &bump;
  material.maps[kReflection] = &nameTooLong;
  material.amounts[kBump] = 0.3f;
  const std::vector<MaterialMap> maps = Read(&material, true).record.maps;
  const struct {
    int32_t channel;
    bool tileS, tileT, flipGreen, alphaFromFile;
    float amount;
  } expected[] = {{kDiffuse, false, true, false, false, 1},
                  {kOpacity, true, true, false, true, 1},
                  {kBump, true, true, true, false, 0.3f},
                  {kReflection, true, true, false, false, 1}};
  ASSERT_EQ(maps.size(), std::size(expected));
  for (size_t i = 0; i < maps.size(); ++i) {
    EXPECT_EQ(maps[i].channel, expected[i].channel);
    EXPECT_EQ(maps[i].tileS, expected[i].tileS) << i;
    EXPECT_EQ(maps[i].tileT, expected[i].tileT) << i;
    EXPECT_EQ(maps[i].flipGreen, expected[i].flipGreen) << i;
    EXPECT_EQ(maps[i].alphaFromFile, expected[i].alphaFromFile) << i;
    EXPECT_EQ(maps[i].amount, expected[i].amount) << i;
  }
  EXPECT_EQ(maps[3].fileName.size(), 514u);
  EXPECT_FALSE(Read(&material, false).record.maps[2].flipGreen);
}

TEST(Materials, DiffuseMapAlonePlacesTheTexture) {
  for (const bool hasCoordinates : {false, true}) {
    for (const bool hasCrop : {false, true}) {
      host::MemoryMaterial material("m");
      host::MemoryBitmap diffuse("d"), specular("s");
      diffuse.hasCoordinates = hasCoordinates;
      diffuse.hasCrop = hasCrop;
      diffuse.coordinates.uOffset = 0.1f;
      diffuse.coordinates.vOffset = 0.2f;
      diffuse.coordinates.uScale = 3;
      diffuse.coordinates.vScale = 4;
      diffuse.coordinates.angle = 1.5707964f;
      diffuse.crop = {};
      diffuse.crop.on = true;
      diffuse.crop.u = 0.5f;
      diffuse.crop.v = 0.6f;
      diffuse.crop.width = 0.7f;
      diffuse.crop.height = 0.8f;
      specular.coordinates.uScale = 99;
      specular.crop.on = true;
      material.maps[kDiffuse] = &diffuse;
      material.maps[kSpecular] = &specular;
      const Read read(&material);
      SCOPED_TRACE(testing::Message() << hasCoordinates << hasCrop);
      const TexCoordTransform& t = read.transform;
      EXPECT_EQ(read.record.maps[0].tileS, hasCoordinates);
      EXPECT_EQ(read.record.maps[0].tileT, hasCoordinates);
      EXPECT_EQ(t.offset.u, hasCoordinates ? 0.1f : 0);
      EXPECT_EQ(t.offset.v, hasCoordinates ? 0.2f : 0);
      EXPECT_EQ(t.tiling.u, hasCoordinates ? 3 : 1);
      EXPECT_EQ(t.tiling.v, hasCoordinates ? 4 : 1);
      EXPECT_EQ(t.angle, hasCoordinates ? 1.5707964f : 0);
      EXPECT_NEAR(t.rotation[0], hasCoordinates ? 0 : 1, 1e-6);
      EXPECT_NEAR(t.rotation[1], hasCoordinates ? -1 : 0, 1e-6);
      EXPECT_NEAR(t.rotation[2], hasCoordinates ? 1 : 0, 1e-6);
      EXPECT_NEAR(t.rotation[3], hasCoordinates ? 0 : 1, 1e-6);
      EXPECT_EQ(t.cropEnabled, hasCrop);
      EXPECT_EQ(t.cropOrigin.u, hasCrop ? 0.5f : 0);
      EXPECT_EQ(t.cropOrigin.v, hasCrop ? 0.6f : 0);
      EXPECT_EQ(t.cropSize.u, hasCrop ? 0.7f : 1);
      EXPECT_EQ(t.cropSize.v, hasCrop ? 0.8f : 1);
    }
  }
}

}  // namespace
}  // namespace orv
