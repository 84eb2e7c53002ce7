// SPDX-License-Identifier: BSD-3-Clause
// ImagePort: one image slot of an effect.
#pragma once

#include <cstdint>

#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ptr.h"
#include "library/lx_image.h"

namespace lx {

struct ImagePort {
  std::int32_t frame = 0;                                        // number of the image's frame
  const quantel::cPtr<qplugin::iQpluginSource>* clip = nullptr;  // the adapter's, borrowed
  LXImage* image = nullptr;            // the render adapter's, and null between renders
  const void* targetHandle = nullptr;  // the adapter's target; read by nobody
};

}  // namespace lx
