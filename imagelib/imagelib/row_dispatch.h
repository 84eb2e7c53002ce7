// SPDX-License-Identifier: BSD-3-Clause
// Row work of this library, through the dispatcher's slot.
#pragma once

#include <cstdint>

#include "imagelib/imagelib.h"

namespace lx {

// Runs function over the rows 0 to count - 1: in one call on this thread, or as the
// slot's parallel-for divides them.
void DispatchRows(ImageRowFunction function, std::int32_t count, void* user);

}  // namespace lx
