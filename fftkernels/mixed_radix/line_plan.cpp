// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/mixed_radix/line_plan.h"

#include "fftkernels/mixed_radix/roots.h"

namespace lx {

LinePlan MakeLinePlan(std::int32_t length, double* table) {
  const Radices radices = TakeApart(length);
  LinePlan plan;
  plan.length = length;
  plan.count = radices.count;
  std::int32_t rest = length;
  for (std::int32_t s = 0; s < plan.count; ++s) {
    const auto at = static_cast<std::size_t>(s);
    const std::int32_t radix = radices.radix[at];
    const bool isLast = s == plan.count - 1;
    plan.stages[at] = {radix, rest, isLast ? nullptr : table};
    const std::int32_t part = rest / radix;
    for (std::int32_t j = 0; j < part && !isLast; ++j) {
      for (std::int32_t k = 1; k < radix; ++k) {
        const Root root = RootOfUnity(std::int64_t{j} * k % rest, rest);
        // Roots turn forward, twiddles back: the exponent has the negative sign.
        *table++ = root.cosine;
        *table++ = -root.sine;
      }
    }
    rest = part;
  }
  return plan;
}

std::int32_t LinePlan::FrequencyAt(std::int32_t position) const {
  std::int32_t frequency = 0;
  std::int32_t step = 1;
  for (std::int32_t s = 0; s < count; ++s) {
    const Stage& stage = stages[static_cast<std::size_t>(s)];
    const std::int32_t part = stage.length / stage.radix;
    frequency += position / part * step;
    position %= part;
    step *= stage.radix;
  }
  return frequency;
}

std::int32_t LinePlan::PositionOf(std::int32_t frequency) const {
  std::int32_t position = 0;
  for (std::int32_t s = 0; s < count; ++s) {
    const Stage& stage = stages[static_cast<std::size_t>(s)];
    position += frequency % stage.radix * (stage.length / stage.radix);
    frequency /= stage.radix;
  }
  return position;
}

}  // namespace lx
