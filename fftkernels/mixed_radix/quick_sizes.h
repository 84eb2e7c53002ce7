// SPDX-License-Identifier: BSD-3-Clause
// The lengths that transforms of mixed radix are quick at, and how each is taken apart.
//
// A length is a product of radices of 2 to 10, one a stage. All that decides is here: a length is
// always taken apart in the same way, and nothing is tried out while the program runs.
#pragma once

#include <array>
#include <cstdint>

namespace lx {

inline constexpr std::int32_t kLargestRadix = 10;

// What a stage of each radix takes of a point there and back: the first one, which comes from far
// memory, the last one, which has no twiddles, and those between. The sum for a length of some 1000
// is about 200.
//
// From 5,148 measurements of LineOperations::convolveColumns: all ways of taking apart 560, 588,
// 980, 1000, 1024, 1050, 1080, 1120, 1125, 1134, 1152, 1280, 1296, 1372 and 2000 into up to five
// radices, by AVX-512 and by AVX2. Least squares of the time of a point as a sum of stages, over
// ways up to half as slow again as the best one; both forms count alike. By it the way chosen is
// within 7 % of the best for either form, but for 560 by AVX-512.
using StageCosts = std::array<std::int32_t, kLargestRadix + 1>;
inline constexpr StageCosts kFirstCosts{0, 0, 11, 13, 13, 19, 25, 44, 36, 43, 49};
inline constexpr StageCosts kMiddleCosts{0, 0, 37, 52, 58, 74, 74, 99, 88, 105, 109};
inline constexpr StageCosts kLastCosts{0, 0, 0, 7, 13, 25, 27, 45, 37, 50, 51};

inline constexpr std::int32_t kMostStages = 8;

// The radices of a length, the first stage's first. Two stages at least, for short lengths by a
// stage of 1, which leaves what it is given.
struct Radices {
  std::int32_t count = 0;
  std::array<std::int32_t, kMostStages> radix{};
  std::int32_t cost = 0;  // of a point, as above
};

namespace quick_sizes {

constexpr std::int32_t CostOf(const StageCosts& costs, std::int32_t radix) {
  return costs[static_cast<std::size_t>(radix)];
}

// Adds the cheapest stages between the first and the last, from the largest down, to what is there.
constexpr void SearchMiddle(std::int32_t rest, std::int32_t largest, Radices* now, Radices* best) {
  if (best->count != 0 && now->cost >= best->cost) {
    return;
  }
  if (rest == 1) {
    *best = *now;
    return;
  }
  // The last stage has to find room.
  for (std::int32_t radix = largest; radix >= 2 && now->count + 1 < kMostStages; --radix) {
    if (rest % radix != 0) {
      continue;
    }
    now->radix[static_cast<std::size_t>(now->count++)] = radix;
    now->cost += CostOf(kMiddleCosts, radix);
    SearchMiddle(rest / radix, radix, now, best);
    now->cost -= CostOf(kMiddleCosts, radix);
    now->radix[static_cast<std::size_t>(--now->count)] = 0;
  }
}

}  // namespace quick_sizes

// Whether a length is a product of 2, 3, 5 and 7.
constexpr bool IsSmooth(std::int32_t length) {
  for (const std::int32_t prime : {2, 3, 5, 7}) {
    while (length > 1 && length % prime == 0) {
      length /= prime;
    }
  }
  return length == 1;
}

// Of a length that is a product of 2, 3, 5 and 7; without stages for any other.
constexpr Radices TakeApart(std::int32_t length) {
  Radices best;
  if (length < 1 || !IsSmooth(length)) {
    return best;
  }
  for (std::int32_t first = kLargestRadix; first >= 1; --first) {
    for (std::int32_t last = kLargestRadix; last >= 1; --last) {
      // A stage of 1 only fills up lengths that one radix takes whole.
      if (length % (first * last) != 0 || (first == 1 && length > kLargestRadix) ||
          (last == 1 && length > kLargestRadix)) {
        continue;
      }
      Radices now;
      now.radix[0] = first;
      now.count = 1;
      now.cost = quick_sizes::CostOf(kFirstCosts, first) + quick_sizes::CostOf(kLastCosts, last);
      Radices found = best;
      quick_sizes::SearchMiddle(length / (first * last), kLargestRadix, &now, &found);
      if (best.count == 0 || found.cost < best.cost) {
        found.radix[static_cast<std::size_t>(found.count++)] = last;
        best = found;
      }
    }
  }
  return best;
}

// The length not below atLeast whose transform takes least time, of those up to an eighth above it;
// the next one where there is none so near.
//   atLeast  1 or more
//   step     2 for an even length, whose half is what is taken apart; else 1
constexpr std::int64_t QuickSize(std::int64_t atLeast, std::int32_t step = 1) {
  // The rest of a frame's work grows with the length alone.
  constexpr std::int64_t kRest = 400;
  std::int64_t best = 0;
  std::int64_t bestCost = 0;
  std::int64_t length = (atLeast + step - 1) / step * step;
  for (; best == 0 || length <= atLeast + atLeast / 8; length += step) {
    const Radices radices = TakeApart(static_cast<std::int32_t>(length / step));
    const std::int64_t cost = length * (kRest + radices.cost);
    if (radices.count != 0 && (best == 0 || cost < bestCost)) {
      best = length;
      bestCost = cost;
    }
  }
  return best;
}

}  // namespace lx
