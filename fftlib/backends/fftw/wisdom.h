// SPDX-License-Identifier: BSD-3-Clause
// The file that keeps what the transform library has learnt by measuring. Under FftPlannerLock.
#pragma once

namespace lx {

// Makes the folder of the file, once in a process.
void MakeWisdomFolder();

// Whether that has been done. For tests that want to begin anew.
bool& wisdom_folder_made();

// False where the file cannot be opened or is none of the library's.
bool ReadWisdomFile();

// False, with the file as it was, where it cannot be written whole.
bool WriteWisdomFile();

}  // namespace lx
