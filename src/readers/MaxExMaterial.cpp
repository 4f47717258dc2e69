#include "readers/MaxExMaterial.h"

#include <cmath>
#include <string>

#include "iparamb2.h"
#include "platform/ExString.h"
#include "readers/MaxExHost.h"

namespace orv {
namespace {

// As messages call them; "shininesNs" is what users know.
// Pinned by Materials.EveryFieldIsReadAndMapsThatCannotBeUsedReported.
constexpr const char* kChannelNames[kMapChannelCount] = {
    "ambient", "diffuse",      "specular", "shininesNs", "shininess strength", "self-illumination",
    "opacity", "filter color", "bump",     "reflection", "refraction",         "displacement"};

// Numbers of a bitmap texture's parameters.
enum CropParameter : ParamID {
  kCropU = 0,
  kCropV = 1,
  kCropWidth = 2,
  kCropHeight = 3,
  kCropOn = 6
};

void ReadCrop(IParamBlock2& parameters, TexCoordTransform& transform) {
  transform.cropEnabled = parameters.GetInt(kCropOn) != 0;
  transform.cropOrigin = {parameters.GetFloat(kCropU), parameters.GetFloat(kCropV)};
  transform.cropSize = {parameters.GetFloat(kCropWidth), parameters.GetFloat(kCropHeight)};
}

void ReadGenerator(StdUVGen& generator, TexCoordTransform& transform) {
  transform.offset = {generator.GetUOffs(0), generator.GetVOffs(0)};
  transform.tiling = {generator.GetUScl(0), generator.GetVScl(0)};
  transform.angle = generator.GetWAng(0);
  const float cosine = static_cast<float>(std::cos(static_cast<double>(transform.angle)));
  const float sine = static_cast<float>(std::sin(static_cast<double>(transform.angle)));
  transform.rotation[0] = cosine;
  transform.rotation[1] = -sine;
  transform.rotation[2] = sine;
  transform.rotation[3] = cosine;
}

// The diffuse map alone says how its texture repeats and how it lies on the mesh.
void ReadPlacement(BitmapTex& bitmap, MaterialMap& map, TexCoordTransform& transform) {
  map.tileS = map.tileT = false;
  if (StdUVGen* generator = bitmap.GetUVGen()) {
    const int tiling = generator->GetTextureTiling();
    map.tileS = (tiling & U_WRAP) != 0;
    map.tileT = (tiling & V_WRAP) != 0;
    ReadGenerator(*generator, transform);
  }
  if (IParamBlock2* parameters = bitmap.GetParamBlock(0)) ReadCrop(*parameters, transform);
}

// The map's bitmap, or null after a message.
BitmapTex* UsableBitmap(StdMat2& material, int channel, const char* meshName,
                        ExportUserInterface& ui) {
  Texmap* const texmap = material.GetSubTexmap(channel);
  if (!texmap) return nullptr;
  if (texmap->ClassID() != Class_ID(BMTEX_CLASS_ID, 0)) {
    ui.Report("map-not-bitmap", material.GetName().data(), kChannelNames[channel], meshName);
    return nullptr;
  }
  auto* const bitmap = static_cast<BitmapTex*>(texmap);
  const TCHAR* const name = bitmap->GetMapName();
  if (!name || !*name) {
    ui.Report("bitmap-name-missing", material.GetName().data(), kChannelNames[channel], meshName);
    return nullptr;
  }
  return bitmap;
}

MaterialMap ReadMap(StdMat2& material, int channel, BitmapTex& bitmap, bool flipGreen,
                    TexCoordTransform& transform) {
  MaterialMap map;
  map.channel = channel;
  map.fileName = std::string(bitmap.GetMapName()).substr(0, kMaxMapFileName);
  map.amount = material.GetTexmapAmt(channel, 0);
  map.tileS = map.tileT = true;
  if (channel == kDiffuse) ReadPlacement(bitmap, map, transform);
  map.flipGreen = channel == kBump && flipGreen;
  map.alphaFromFile = bitmap.GetAlphaSource() == ALPHA_FILE;
  return map;
}

void ReadColours(GenericMaterial& out, StdMat2& material) {
  out.opacity = material.GetOpacity(0);
  out.ambient = ToVec3(material.GetAmbient(0));
  out.diffuse = ToVec3(material.GetDiffuse(0));
  out.specular = ToVec3(material.GetSpecular(0));
  out.shininess = material.GetShininess(0) * 100;
  out.emissive = material.GetSelfIllumColorOn()
                     ? ToVec3(material.GetSelfIllumColor())
                     : ToVec3(material.GetDiffuse(0) * material.GetSelfIllum(0));
}

}  // namespace

void ReadMaterial(GenericMaterial& out, StdMat2* material, TexCoordTransform& transform,
                  const char* meshName, bool flipGreen, ExportUserInterface& ui) {
  if (!material) return;
  out.maps.clear();
  for (int channel = 0; channel < kMapChannelCount; ++channel) {
    if (BitmapTex* bitmap = UsableBitmap(*material, channel, meshName, ui)) {
      out.maps.push_back(ReadMap(*material, channel, *bitmap, flipGreen, transform));
    }
  }
  out.twoSided = material->GetTwoSided() ? 1 : 0;
  out.name = LowerCase(material->GetName().data());
  ReadColours(out, *material);
}

}  // namespace orv
