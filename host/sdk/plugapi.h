// What a plug-in library tells the host of itself, and the identities of the host's own classes.
#pragma once

#include "maxheap.h"
#include "maxtypes.h"

// Release 14000, interface 38, revision 0.
constexpr ULONG VERSION_3DSMAX = (14000u << 16) | (38u << 8) | 0u;

// Families.
constexpr SClass_ID GEN_DERIVOB_CLASS_ID = 0x2;
constexpr SClass_ID GEOMOBJECT_CLASS_ID = 0x10;
constexpr SClass_ID CAMERA_CLASS_ID = 0x20;
constexpr SClass_ID LIGHT_CLASS_ID = 0x30;
constexpr SClass_ID HELPER_CLASS_ID = 0x50;
constexpr SClass_ID OSM_CLASS_ID = 0x810;
constexpr SClass_ID SCENE_EXPORT_CLASS_ID = 0xA20;
constexpr SClass_ID MATERIAL_CLASS_ID = 0xC00;
constexpr SClass_ID TEXMAP_CLASS_ID = 0xC10;
constexpr SClass_ID UVGEN_CLASS_ID = 0xC20;

// Part A of the Class_ID; part B is 0.
constexpr ULONG TRIOBJ_CLASS_ID = 9;
constexpr ULONG POINTHELP_CLASS_ID = 0x2013;
constexpr ULONG DMTL_CLASS_ID = 2;       // standard material
constexpr ULONG MULTI_CLASS_ID = 0x200;  // multi/sub-object material
constexpr ULONG BMTEX_CLASS_ID = 0x240;  // bitmap texture
constexpr ULONG STDUV_CLASS_ID = 0x100;  // its coordinate generator

// One class that the library offers. The texts stay the library's.
class ClassDesc : public MaxHeapOperators {
 public:
  virtual ~ClassDesc() = default;
  virtual int IsPublic() = 0;
  virtual void* Create(BOOL loading = FALSE) = 0;
  virtual const TCHAR* ClassName() = 0;
  virtual SClass_ID SuperClassID() = 0;
  virtual Class_ID ClassID() = 0;
  virtual const TCHAR* Category() = 0;
  virtual const TCHAR* InternalName() { return nullptr; }
  virtual HINSTANCE HInstance() { return nullptr; }
};
