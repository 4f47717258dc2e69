#pragma once

#include <cstddef>
#include <string>

namespace orv {

// Scenes of any size as binary glTF files, all with the material "grid.m.onetex".

// A wavy square of at least this many triangles, with normals and texture coordinates.
std::string GridGlb(size_t triangleCount);

// This many nodes below one root, each with a mesh of its own of 8 triangles.
std::string NodesGlb(size_t nodeCount);

// A grid as above whose vertices hang on two bones each, of at least two, called "b.0", "b.1", ...
std::string SkinGlb(size_t triangleCount, size_t boneCount);

// That many bones, all moving in each of the frames 0 to frameCount - 1, and a small mesh.
std::string BonesGlb(size_t boneCount, size_t frameCount);

}  // namespace orv
