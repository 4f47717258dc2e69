#pragma once

#include "plugapi.h"

using ParamID = short;

class ClassDesc2 : public ClassDesc {};

// Named values of one object.
class IParamBlock2 {
 public:
  virtual int GetInt(ParamID id, TimeValue t = 0, int tabIndex = 0) = 0;
  virtual float GetFloat(ParamID id, TimeValue t = 0, int tabIndex = 0) = 0;

 protected:
  virtual ~IParamBlock2() = default;
};
