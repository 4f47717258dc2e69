#pragma once

#include "platform/Platform.h"
#include "report/Messages.h"

namespace orv {

// Runs the body of an entry point, which no exception may leave; one that comes is shown, and the
// answer is then false.
template <typename Body>
bool CatchAll(Body body) {
  try {
    body();
    return true;
  } catch (...) {
    platform::ShowMessageBox(MakeFinding("unhandled-exception").text.c_str(), "Exception",
                             platform::Buttons::Ok, platform::Icon::Error);
    return false;
  }
}

}  // namespace orv
