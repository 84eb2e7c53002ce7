// SPDX-License-Identifier: BSD-3-Clause
// The fixed-size transforms by the length of a line.
#pragma once

#include <cstdint>

namespace lx {

// Of one length. Each works on that many complex numbers in place, or real ones.
template <class T>
struct LineTransforms {
  void (*forward)(T* line);
  void (*inverse)(T* line);
  void (*scale)(T* line);
  void (*multiply)(T* line, const T* by);
};

// Null for a length that is none of the thirteen.
const LineTransforms<float>* FindLineTransformsF32(std::int32_t length);
const LineTransforms<double>* FindLineTransformsF64(std::int32_t length);
const LineTransforms<float>* FindRealLineTransforms(std::int32_t length);

template <class T>
const LineTransforms<T>* FindLineTransforms(std::int32_t length) {
  if constexpr (sizeof(T) == sizeof(float)) {
    return FindLineTransformsF32(length);
  } else {
    return FindLineTransformsF64(length);
  }
}

}  // namespace lx
