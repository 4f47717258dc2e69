#pragma once

#include "maxapi.h"
#include "readers/MaxExHost.h"
#include "report/ExportUserInterface.h"

namespace orv {

// Exports the meshes, bones and attachment points among the nodes handed to it.
class MaxExGeometryExporter {
 public:
  // selectedOnly: a node that was handed over already is not taken again.
  void AddNode(INode* node, bool selectedOnly) { m_nodes.Add(node, selectedOnly); }

  // True when the mesh was written and when there was nothing to export; what failed is logged.
  // Throws a C string where the scene cannot be exported at all. The user's answers about side
  // files change the process-wide options.
  bool ExportGeometry(Interface* host, const char* outputFileName, ExportUserInterface& ui);

  // Forgets the nodes, for the next export.
  void Clear() { m_nodes.Clear(); }

 private:
  MaxExNodeList m_nodes;
};

}  // namespace orv
