#pragma once

#include <utility>

#include "mesh.h"
#include "object.h"
#include "plugapi.h"

// A triangle mesh as an object; every object that can be converted to one answers TRIOBJ_CLASS_ID.
class TriObject : public Object {
 public:
  TriObject() = default;
  explicit TriObject(Mesh theMesh) : mesh(std::move(theMesh)) {}

  Class_ID ClassID() override { return Class_ID(TRIOBJ_CLASS_ID, 0); }
  SClass_ID SuperClassID() override { return GEOMOBJECT_CLASS_ID; }
  Mesh& GetMesh() { return mesh; }

  Mesh mesh;
};
