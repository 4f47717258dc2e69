#pragma once

#include "animtbl.h"
#include "color.h"
#include "plugapi.h"
#include "strclass.h"

class Texmap;

// Slots for maps; an empty slot answers null.
class ISubMap {
 public:
  virtual int NumSubTexmaps() { return 0; }
  virtual Texmap* GetSubTexmap(int /*i*/) { return nullptr; }

 protected:
  virtual ~ISubMap() = default;
};

class MtlBase : public Animatable, public ISubMap {
 public:
  MSTR& GetName() { return m_name; }
  void SetName(const MSTR& name) { m_name = name; }

 private:
  MSTR m_name;
};

class Mtl : public MtlBase {
 public:
  SClass_ID SuperClassID() override { return MATERIAL_CLASS_ID; }
  virtual int NumSubMtls() { return 0; }
  virtual Mtl* GetSubMtl(int /*i*/) { return nullptr; }  // null where none is assigned
  virtual BOOL GetSelfIllumColorOn(int /*mtlNum*/ = 0, BOOL /*backFace*/ = FALSE) { return FALSE; }
  virtual Color GetSelfIllumColor(int /*mtlNum*/ = 0, BOOL /*backFace*/ = FALSE) { return {}; }
};

class Texmap : public MtlBase {
 public:
  SClass_ID SuperClassID() override { return TEXMAP_CLASS_ID; }
};
