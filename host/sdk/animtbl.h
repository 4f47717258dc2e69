#pragma once

#include "maxheap.h"
#include "maxtypes.h"

class IParamBlock2;

// Base of everything in a scene but its nodes. The host owns such objects, save where a function
// says otherwise; those are given back with DeleteThis(), never with delete.
class Animatable : public MaxHeapOperators {
 public:
  virtual ~Animatable() = default;
  virtual Class_ID ClassID() = 0;
  virtual SClass_ID SuperClassID() = 0;
  virtual void DeleteThis() { delete this; }
  virtual void* GetInterface(ULONG /*id*/) { return nullptr; }
  // Null when there is no block of that number.
  virtual IParamBlock2* GetParamBlock(int /*i*/) { return nullptr; }
};
