#pragma once

#include <string>

#include "formats/AnimationFile.h"
#include "formats/IndexedMeshFile.h"
#include "inspect/ChunkFacts.h"
#include "inspect/Findings.h"

namespace orv::inspect {

// What can be said of a file by itself; each adds what it finds.
void CheckStructure(const IndexedMeshFile& file, Findings& findings);
void CheckStructure(const AnimationFile& file, Findings& findings);
void CheckContent(const IndexedMeshFile& file, Findings& findings);
void CheckContent(const AnimationFile& file, Findings& findings);

// Whether the side files of the textures stand in the folder, and the pictures that they name.
// folder: with its trailing separator, or "" for the current one.
void CheckTextures(const IndexedMesh& mesh, const std::string& folder, Findings& findings);

// Whether mesh and animation are about the same bones. Nothing is found of a mesh without bones
// beside an animation with frames but the one thing that it does not move.
void CheckBones(const IndexedMeshFile& mesh, const AnimationFile& animation,
                const std::string& animationName, Findings& findings);

// The parts of CheckStructure and CheckContent that are about one chunk's geometry, and the skin.
void CheckGeometry(const IndexedMeshFile& file, size_t number, const VertexUse& use,
                   Findings& findings);
void CheckWeightStructure(const IndexedMeshFile& file, const std::vector<VertexUse>& uses,
                          const std::vector<ChunkWeights>& weights, Findings& findings);
void CheckWeightContent(const IndexedMeshFile& file, Findings& findings);

// Helpers of the checks
Place PlaceInChunk(const IndexedMeshFile& file, size_t chunk, const char* tag);
Place PlaceOfWeights(const IndexedMeshFile& file, size_t chunk);
void CheckRemarks(const std::vector<ReadProblem>& remarks, Findings& findings);
void CheckBoneNames(const std::vector<BoneNode>& bones, Findings& findings);

}  // namespace orv::inspect
