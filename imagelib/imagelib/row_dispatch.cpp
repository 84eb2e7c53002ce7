// SPDX-License-Identifier: BSD-3-Clause
#include "imagelib/imagelib/row_dispatch.h"

namespace lx {

ImageRowDispatcher& GetImageRowDispatcher() {
  static ImageRowDispatcher dispatcher{nullptr, nullptr};
  return dispatcher;
}

void DispatchRows(ImageRowFunction function, std::int32_t count, void* user) {
  const ImageRowDispatcher& slot = GetImageRowDispatcher();
  if (slot.parallelFor != nullptr) {
    slot.parallelFor(slot.context, function, count, user);
  } else {
    function(user, 0, count - 1);
  }
}

}  // namespace lx
