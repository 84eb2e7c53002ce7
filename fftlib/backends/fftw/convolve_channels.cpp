// The plain run: stored channels one by one, without colour transform.
#include <algorithm>
#include <cstdint>

#include "fftlib/backends/fftw/passes.h"
#include "fftlib/fftlib.h"

namespace lx {

bool DefocusEngine::ConvolveChannelsFftw(ImageRec* dest, std::uint32_t channelMask) {
  if (!CheckRun(dest) || !PrepareWorkGrids(true)) {
    return false;
  }
  const std::int32_t channels = std::min(sourceImage->channels, dest->channels);
  for (std::int32_t c = 0; c < channels; ++c) {
    const std::uint32_t bit = 1U << (static_cast<std::uint32_t>(c) & 31U);
    if ((channelMask & bit) == 0) {
      continue;
    }
    SetPlaneParameters(dest, bit);
    passChannel = c;
    // Intended: the work grids are not cleared between channels; with margins of zero
    // they hold what the channel before left there.
    TransformPlane(ChannelInputPass);
    RunRows(ChannelOutputPass, dest->height);
  }
  return true;
}

}  // namespace lx
