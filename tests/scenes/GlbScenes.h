#pragma once

#include <cstddef>
#include <string>

namespace orv {

// Scenes of any size as binary glTF files, all with the material "grid.m.onetex".

// A wavy square of at least this many triangles, with normals and texture coordinates.
std::string GridGlb(size_t triangleCount);

// This many nodes below one root, each with a mesh of its own of 8 triangles.
std::string NodesGlb(size_t nodeCount);

}  // namespace orv
