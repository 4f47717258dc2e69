#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "iparamb2.h"
#include "stdmat.h"

namespace orv::host {

// How a bitmap lies on the texture coordinates. All public, as everything here: a scene's maker
// sets it, the exporter asks.
class MemoryCoordinates final : public StdUVGen {
 public:
  int tiling = U_WRAP | V_WRAP;
  float uOffset = 0, vOffset = 0;
  float uScale = 1, vScale = 1;
  float angle = 0;  // radians

  int GetTextureTiling() override { return tiling; }
  float GetUOffs(TimeValue) override { return uOffset; }
  float GetVOffs(TimeValue) override { return vOffset; }
  float GetUScl(TimeValue) override { return uScale; }
  float GetVScl(TimeValue) override { return vScale; }
  float GetWAng(TimeValue) override { return angle; }
};

// The part of the bitmap that is used.
class MemoryCrop final : public IParamBlock2 {
 public:
  bool on = false;
  float u = 0, v = 0, width = 1, height = 1;

  int GetInt(ParamID id, TimeValue = 0, int = 0) override { return id == 6 && on; }
  float GetFloat(ParamID id, TimeValue = 0, int = 0) override {
    const float values[] = {u, v, width, height};
    return id >= 0 && id < 4 ? values[id] : 0;
  }
};

class MemoryBitmap final : public BitmapTex {
 public:
  std::string mapName;
  int alphaSource = ALPHA_NONE;
  bool hasCoordinates = true;
  bool hasCrop = true;
  MemoryCoordinates coordinates;
  MemoryCrop crop;

  explicit MemoryBitmap(std::string name) : mapName(std::move(name)) {}

  const TCHAR* GetMapName() override { return mapName.c_str(); }
  int GetAlphaSource() override { return alphaSource; }
  StdUVGen* GetUVGen() override { return hasCoordinates ? &coordinates : nullptr; }
  IParamBlock2* GetParamBlock(int i) override { return i == 0 && hasCrop ? &crop : nullptr; }
};

// A standard material; its values until set are the host's for a new one.
class MemoryMaterial final : public StdMat2 {
 public:
  static constexpr int kSlots = 12;

  bool twoSided = false;
  Color ambient{0.588f, 0.588f, 0.588f};
  Color diffuse{0.588f, 0.588f, 0.588f};
  Color specular{0.9f, 0.9f, 0.9f};
  float shininess = 0.25f;  // 0 to 1
  bool hasSelfIllumColor = false;
  Color selfIllumColor;
  float selfIllum = 0;  // share of the diffuse colour, where there is no colour
  float opacity = 1;
  std::array<Texmap*, kSlots> maps{};  // by slot; not owned
  std::array<float, kSlots> amounts;

  explicit MemoryMaterial(const std::string& name) {
    SetName(name.c_str());
    amounts.fill(1);
  }

  int NumSubTexmaps() override { return kSlots; }
  Texmap* GetSubTexmap(int i) override {
    return i >= 0 && i < kSlots ? maps[static_cast<size_t>(i)] : nullptr;
  }
  float GetTexmapAmt(int slot, TimeValue) override {
    return slot >= 0 && slot < kSlots ? amounts[static_cast<size_t>(slot)] : 0;
  }
  BOOL GetTwoSided() override { return twoSided; }
  Color GetAmbient(TimeValue) override { return ambient; }
  Color GetDiffuse(TimeValue) override { return diffuse; }
  Color GetSpecular(TimeValue) override { return specular; }
  float GetShininess(TimeValue) override { return shininess; }
  float GetSelfIllum(TimeValue) override { return selfIllum; }
  float GetOpacity(TimeValue) override { return opacity; }
  BOOL GetSelfIllumColorOn(int = 0, BOOL = FALSE) override { return hasSelfIllumColor; }
  Color GetSelfIllumColor(int = 0, BOOL = FALSE) override { return selfIllumColor; }
};

class MemoryMultiMaterial final : public MultiMtl {
 public:
  std::vector<Mtl*> subMaterials;  // not owned; null where none is assigned

  MemoryMultiMaterial(const std::string& name, std::vector<Mtl*> subs)
      : subMaterials(std::move(subs)) {
    SetName(name.c_str());
  }

  int NumSubMtls() override { return static_cast<int>(subMaterials.size()); }
  Mtl* GetSubMtl(int i) override {
    return i >= 0 && i < NumSubMtls() ? subMaterials[static_cast<size_t>(i)] : nullptr;
  }
};

}  // namespace orv::host
