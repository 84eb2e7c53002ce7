// SPDX-License-Identifier: BSD-3-Clause
// What the grids of the kernel modes hold.
#pragma once

namespace lx {

template <class T>
struct ComplexSample {
  T re;
  T im;
};

template <class T>
ComplexSample<T> operator*(ComplexSample<T> z, T factor) {
  return {z.re * factor, z.im * factor};
}

}  // namespace lx
