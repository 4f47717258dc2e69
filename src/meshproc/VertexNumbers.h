#pragma once

#include <span>

#include "scene/GenericInfluence.h"

namespace orv {

// Makes all weights name the new number of their vertex, newNumbers[old].
inline void RenumberWeights(GenericMeshInfluence& influence, std::span<const uint32_t> newNumbers) {
  for (const auto& bone : influence.m_bones) {
    for (VertexWeight& weight : bone->m_weights) weight.vertex = newNumbers[weight.vertex];
  }
}

}  // namespace orv
