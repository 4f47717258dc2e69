#pragma once

#include "platform/Platform.h"

namespace orv {

inline constexpr char kUnhandledException[] =
    "Unhandled exception occurred in plug-in!\nPlug-in terminated.";

// Runs the body of an entry point, which no exception may leave; one that comes is shown.
template <typename Body>
void CatchAll(Body body) {
  try {
    body();
  } catch (...) {
    platform::ShowMessageBox(kUnhandledException, "Exception", platform::Buttons::Ok,
                             platform::Icon::Error);
  }
}

}  // namespace orv
