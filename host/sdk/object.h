#pragma once

#include "animtbl.h"
#include "plugapi.h"

class BaseObject : public Animatable {};

// What a node shows, in the node's object space and system units.
class Object : public BaseObject {
 public:
  virtual int CanConvertToType(Class_ID type) { return type == ClassID(); }
  // The object itself, or a new one, which the caller gives back with DeleteThis(); null when it
  // cannot be converted.
  virtual Object* ConvertToType(TimeValue /*t*/, Class_ID type) {
    return CanConvertToType(type) ? this : nullptr;
  }
};

// Outcome of a node's evaluation. The object is the host's and may be null; it is valid until the
// same node is evaluated again.
class ObjectState {
 public:
  Object* obj = nullptr;
};

class Modifier : public BaseObject {
 public:
  SClass_ID SuperClassID() override { return OSM_CLASS_ID; }
};
