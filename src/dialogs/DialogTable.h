#pragma once

#include <cstdint>

namespace orv {

// The border between native and managed code: plain C records of which Bridge.cs has the same,
// field by field. Texts are 8-bit and NUL-terminated; flags are 0 or 1. All calls come from the
// host's user-interface thread, and no exception crosses in either direction.

struct OptionsRecord {
  int32_t exportGeometry;
  int32_t exportAnimation;
  int32_t forceTxtOverwrite;
  int32_t collectTextures;
  int32_t useDefaultColors;
  int32_t normalMapFlipGreen;
  int32_t animationStartFrame;  // bounds of the next two
  int32_t animationEndFrame;
  int32_t exportStartFrame;
  int32_t exportEndFrame;
  const char* eventFileName;
  char* newEventFileName;  // out: null when unchanged, else to be freed with freeAnsiString
};

struct DialogTable {
  int32_t size = sizeof(DialogTable);  // tells versions apart

  // Filled in by the native side.
  void (*logWindowSignalsClose)() = nullptr;       // however the window went away
  void (*reportException)(const char*) = nullptr;  // one that stopped at the border

  // Filled in by the managed side. Each answers 0 or null after an exception.
  int32_t (*showOptions)(int32_t owner, OptionsRecord*) = nullptr;  // 1: start the export
  int32_t (*openLog)(int32_t owner) = nullptr;                      // 1: the window is open
  void (*appendToLog)(int32_t severity, const char* text) = nullptr;
  void (*closeLog)() = nullptr;
  // Handles the messages that have come in; wait: sleeps a moment when there may be none.
  void (*handleMessages)(int32_t wait) = nullptr;
  int32_t (*messageBoxExt)(int32_t kind, const char* caption, const char* text) = nullptr;
  int32_t (*showMessageBox)(const char* text, const char* caption, int32_t yesNo,
                            int32_t icon) = nullptr;  // 1: Yes
  void (*showAbout)(const char* copyright) = nullptr;
  char* (*pickEventFile)() = nullptr;  // null: cancelled
  void (*freeAnsiString)(char*) = nullptr;
  void (*releaseResources)() = nullptr;  // at the end of an export
};

// What Start answers.
enum class StartAnswer : int32_t { Ready = 0, NoDisplay = 1, OtherVersion = 2 };

}  // namespace orv
