// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/lines/line_transforms.h"

#include <array>
#include <utility>

#include "fftkernels/fftkernels.h"

namespace lx {
namespace {

constexpr int kSizes = 13;

constexpr int SizeOf(int place) { return 2 << place; }

template <class T>
const LineTransforms<T>* Find(const std::array<LineTransforms<T>, kSizes>& all,
                              std::int32_t length) {
  for (int place = 0; place < kSizes; ++place) {
    if (SizeOf(place) == length) {
      return &all[static_cast<std::size_t>(place)];
    }
  }
  return nullptr;
}

template <int... place>
constexpr std::array<LineTransforms<float>, kSizes> AllF32(std::integer_sequence<int, place...>) {
  return {{{ForwardComplexF32<SizeOf(place)>, InverseComplexF32<SizeOf(place)>,
            ScaleComplexF32<SizeOf(place)>, MulComplexF32<SizeOf(place)>}...}};
}

template <int... place>
constexpr std::array<LineTransforms<double>, kSizes> AllF64(std::integer_sequence<int, place...>) {
  return {{{ForwardComplexF64<SizeOf(place)>, InverseComplexF64<SizeOf(place)>,
            ScaleComplexF64<SizeOf(place)>, MulComplexF64<SizeOf(place)>}...}};
}

template <int... place>
constexpr std::array<LineTransforms<float>, kSizes> AllReal(std::integer_sequence<int, place...>) {
  return {{{ForwardRealF32<SizeOf(place)>, InverseRealF32<SizeOf(place)>,
            ScaleRealF32<SizeOf(place)>, MulRealF32<SizeOf(place)>}...}};
}

}  // namespace

const LineTransforms<float>* FindLineTransformsF32(std::int32_t length) {
  static constexpr auto kAll = AllF32(std::make_integer_sequence<int, kSizes>{});
  return Find(kAll, length);
}

const LineTransforms<double>* FindLineTransformsF64(std::int32_t length) {
  static constexpr auto kAll = AllF64(std::make_integer_sequence<int, kSizes>{});
  return Find(kAll, length);
}

const LineTransforms<float>* FindRealLineTransforms(std::int32_t length) {
  static constexpr auto kAll = AllReal(std::make_integer_sequence<int, kSizes>{});
  return Find(kAll, length);
}

}  // namespace lx
