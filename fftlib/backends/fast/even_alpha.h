// SPDX-License-Identifier: BSD-3-Clause
// Whether alpha is one value all over, as that of most pictures is: it then stays what it is, and
// needs no transform.
#pragma once

#include <atomic>
#include <cstdint>

#include "fftlib/core/rows.h"
#include "imagelib/imagelib.h"

namespace lx {

// Clears the flag if rows of an image have an alpha other than its first pixel's.
//   source  four channels or more, any sample type
struct EvenAlphaPass {
  const ImageRec* source;
  std::atomic<bool>* isEven;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

}  // namespace lx
