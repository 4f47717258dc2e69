#pragma once

#include <gtest/gtest.h>

#include "MeshFaults.h"

namespace orv {

inline void ExpectConsistent(const IndexedMesh& mesh) { EXPECT_EQ(FaultOf(mesh), ""); }

}  // namespace orv
