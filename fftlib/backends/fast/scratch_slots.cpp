// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/scratch_slots.h"

#include <algorithm>

namespace lx {

std::size_t ScratchSlots::Take() {
  std::unique_lock hold(mutex_);
  auto found = isTaken_.end();
  free_.wait(hold, [&] {
    found = std::find(isTaken_.begin(), isTaken_.end(), false);
    return found != isTaken_.end();
  });
  *found = true;
  return static_cast<std::size_t>(found - isTaken_.begin());
}

void ScratchSlots::GiveBack(std::size_t at) {
  {
    const std::scoped_lock hold(mutex_);
    isTaken_[at] = false;
  }
  free_.notify_one();
}

}  // namespace lx
