#pragma once

#include "maxapi.h"
#include "readers/MaxExHost.h"
#include "report/ExportUserInterface.h"

namespace orv {

// Exports the movement of the bones among the nodes handed to it.
class MaxExAnimationExporter {
 public:
  // selectedOnly: a node that was handed over already is not taken again.
  void AddNode(INode* node, bool selectedOnly) { m_nodes.Add(node, selectedOnly); }

  // Both frames are included. False, with a message, when there is no bone or the file could not
  // be written. Bones that are left out are reported here only when the geometry export, which
  // reports the same ones, is off.
  bool ExportAnimation(Interface* host, const char* outputFileName, int firstFrame, int lastFrame,
                       ExportUserInterface& ui);

  // Forgets the nodes, for the next export.
  void Clear() { m_nodes.Clear(); }

 private:
  MaxExNodeList m_nodes;
};

}  // namespace orv
