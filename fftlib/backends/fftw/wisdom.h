// Where the engine keeps what the transform library has learnt by measuring.
#pragma once

namespace lx {

// Makes the folder of the wisdom file, once in a process. Under FftPlannerLock.
void MakeWisdomFolder();

// Whether that has been done. For tests that want to begin anew.
bool& wisdom_folder_made();

}  // namespace lx
