#pragma once

#include "imtl.h"

// Slots of a standard material.
constexpr int ID_AM = 0;   // ambient
constexpr int ID_DI = 1;   // diffuse
constexpr int ID_SP = 2;   // specular
constexpr int ID_SH = 3;   // shininess
constexpr int ID_SS = 4;   // shininess strength
constexpr int ID_SI = 5;   // self-illumination
constexpr int ID_OP = 6;   // opacity
constexpr int ID_FI = 7;   // filter colour
constexpr int ID_BU = 8;   // bump
constexpr int ID_RL = 9;   // reflection
constexpr int ID_RR = 10;  // refraction
constexpr int ID_DP = 11;  // displacement

class StdMat : public Mtl {
 public:
  Class_ID ClassID() override { return Class_ID(DMTL_CLASS_ID, 0); }
  virtual BOOL GetTwoSided() = 0;
  virtual Color GetAmbient(TimeValue t) = 0;
  virtual Color GetDiffuse(TimeValue t) = 0;
  virtual Color GetSpecular(TimeValue t) = 0;
  virtual float GetShininess(TimeValue t) = 0;  // 0 to 1
  virtual float GetSelfIllum(TimeValue t) = 0;  // 0 to 1, share of the diffuse colour
  virtual float GetOpacity(TimeValue t) = 0;    // 0 to 1
  virtual float GetTexmapAmt(int slot, TimeValue t) = 0;
};

class StdMat2 : public StdMat {};

// Faces choose among its sub-materials by their material number.
class MultiMtl : public Mtl {
 public:
  Class_ID ClassID() override { return Class_ID(MULTI_CLASS_ID, 0); }
};

// Bits of StdUVGen::GetTextureTiling.
constexpr int U_WRAP = 1;
constexpr int V_WRAP = 2;

class UVGen : public Animatable {
 public:
  SClass_ID SuperClassID() override { return UVGEN_CLASS_ID; }
};

// How a texture lies on its texture coordinates.
class StdUVGen : public UVGen {
 public:
  Class_ID ClassID() override { return Class_ID(STDUV_CLASS_ID, 0); }
  virtual int GetTextureTiling() = 0;
  virtual float GetUOffs(TimeValue t) = 0;
  virtual float GetVOffs(TimeValue t) = 0;
  virtual float GetUScl(TimeValue t) = 0;
  virtual float GetVScl(TimeValue t) = 0;
  virtual float GetWAng(TimeValue t) = 0;  // radians
};

// BitmapTex::GetAlphaSource: where the map's alpha comes from.
constexpr int ALPHA_FILE = 0;
constexpr int ALPHA_NONE = 2;
constexpr int ALPHA_RGB = 3;

// Its GetParamBlock(0) holds the crop: floats 0 to 3 are u, v, width and height, int 6 is on or
// off.
class BitmapTex : public Texmap {
 public:
  Class_ID ClassID() override { return Class_ID(BMTEX_CLASS_ID, 0); }
  virtual const TCHAR* GetMapName() = 0;  // file name; can be null or empty
  virtual int GetAlphaSource() = 0;
  virtual StdUVGen* GetUVGen() = 0;  // can be null
};
