// SPDX-License-Identifier: BSD-3-Clause
// Whether an EXR file that was just written has all its lines.
#pragma once

#include "host/pictures/file_bytes.h"

namespace glimmerhost {

// OpenEXR leaves out lines that it had no memory to deflate by, says nothing of it, and writes 0
// for the place where they are: false then. True for a file of another format.
//   bytes  of the file, open; its place moves
bool HasAllExrChunks(FileBytes* bytes);

}  // namespace glimmerhost
