#pragma once

#include "object.h"
#include "plugapi.h"

// An object with modifiers on top. INode::GetObjectRef() answers one when the node has modifiers;
// test SuperClassID() == GEN_DERIVOB_CLASS_ID before the cast.
class IDerivedObject : public Object {
 public:
  SClass_ID SuperClassID() override { return GEN_DERIVOB_CLASS_ID; }
  virtual int NumModifiers() = 0;
  virtual Modifier* GetModifier(int i) = 0;  // 0 is the topmost
  virtual Object* GetObjRef() = 0;           // below the modifiers; can be a derived object itself
};
