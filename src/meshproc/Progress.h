#pragma once

#include "report/ExportUserInterface.h"

namespace orv {

// Reported before each item of a stage.
inline void ReportProgress(ExportUserInterface& ui, size_t item, size_t itemCount) {
  ui.SetProgress(static_cast<float>(item) / static_cast<float>(itemCount));
}

}  // namespace orv
