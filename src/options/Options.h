#pragma once

#include <cstdint>

#include "platform/ExString.h"

namespace orv {

// The exporter's settings: one record per process, loaded before the options dialog, edited by it
// in place and saved after it.
class Options {
 public:
  static Options& Instance();
  virtual ~Options() = default;

  // Sets the defaults again, except the animation frames and the event file name.
  void Reset();

  // Both return false when the file cannot be opened or, for Load, is no options file; a failed
  // Load changes nothing.
  bool Load(const char* path);
  bool Save(const char* path) const;

  bool m_buildNeighbourInfo = false;  // not persisted, no control in the dialog
  bool m_useDefaultColors = false;
  bool m_forceTxtOverwrite = false;
  bool m_askTxtOverwrite = true;
  bool m_optimise = true;  // not persisted, no control in the dialog
  bool m_collectTextures = false;
  bool m_normalMapFlipGreen = false;
  int32_t m_animationStartFrame = 0;  // the host's range, in frames; set before each dialog
  int32_t m_animationEndFrame = 0;
  int32_t m_exportStartFrame = -1;  // the range to export, both ends included
  int32_t m_exportEndFrame = -1;
  ExString m_eventFileName;
  bool m_enableWarnings = true;
  bool m_exportGeometry = true;
  bool m_exportAnimation = true;
};

const char* BoolToText(bool value);

// "0", "1", "true..." and "false..." after white space, ignoring case; anything else, and a null
// text, gives the fallback.
bool TextToBool(const char* text, bool fallback);

}  // namespace orv
