#pragma once

#include "Measure.h"

// Each registers what it measures on a model, beside its peers.
namespace orv::bench {

void AddWelding(const ModelSource& source);
void AddChunkBuilding(const ModelSource& source);
void AddSplitting(const ModelSource& source);  // for a skinned one
void AddTangents(const ModelSource& source);
void AddIndexOrder(const ModelSource& source);
void AddReadBack(const ModelSource& source);
void AddExport(const ModelSource& source);

void AddTangentsRoundOneVertex();

}  // namespace orv::bench
