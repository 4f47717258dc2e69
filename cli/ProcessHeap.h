#pragma once

namespace orv::cli {

// Has the process keep the memory that it frees, in huge pages where the system has them: an export
// frees and takes tens of megabytes at each stage, and would spend a third of its time on getting
// the pages anew. Call it before much memory is taken. Does nothing where it cannot be done.
void KeepFreedMemory();

}  // namespace orv::cli
