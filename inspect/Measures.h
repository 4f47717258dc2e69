#pragma once

#include "formats/BonePose.h"
#include "meshproc/IndexedMesh.h"

namespace orv::inspect {

bool IsFinite(Vec3 v);
bool IsFinite(const Matrix33& m);
bool IsFinite(const IndexedVertex& v);
bool IsFinite(const BonePose& pose);

// Within a thousandth.
bool IsUnit(Vec3 v);
bool IsUnit(Quaternion q);

float LengthOf(Quaternion q);

}  // namespace orv::inspect
