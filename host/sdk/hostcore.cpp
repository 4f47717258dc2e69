#include "hostcore.h"

#include "bmmlib.h"
#include "units.h"

namespace {
orv::HostCore* s_core = nullptr;
}

void orv::SetHostCore(HostCore* core) { s_core = core; }

double GetMasterScale(int unitCode) { return s_core ? s_core->MasterScale(unitCode) : 1.0; }

int GetTicksPerFrame() { return s_core ? s_core->TicksPerFrame() : 160; }

int GetFrameRate() { return s_core ? s_core->FrameRate() : 30; }

BOOL BMMGetFullFilename(BitmapInfo* info) {
  char found[4096];
  if (!s_core || !s_core->FindBitmap(info->Name(), found, sizeof found)) return FALSE;
  info->SetName(found);
  return TRUE;
}
