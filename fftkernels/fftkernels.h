// SPDX-License-Identifier: BSD-3-Clause
// Transforms of the thirteen sizes 2, 4, 8 .. 8192, in place, for convolutions.
//
// The spectrum stays in the order in which it falls out, which saves the pass that would put it
// right: whoever multiplies two spectra point by point and transforms back never sees it.
// BuildFrequencyTable tells the order. Forward has the positive sign in the exponent; with
// w = exp(2 pi i / n) and t the frequency table of n:
//
//   ForwardComplex   y[p] = sum over j of x[j] w^(j t[p])
//   InverseComplex   y[j] = sum over p of x[p] w^(-j t[p]), n times what went forward
//   ScaleComplex     every number times 1/n
//   MulComplex       a[p] = a[p] b[p]; b may be a
//
// Real transforms take n real numbers s as a sequence u of another order, u[k] = s[2k] and
// u[k + n/2] = s[2k + 1], and give them back in that order. Their spectrum U holds U[0] and U[n/2]
// in the first two places, then complex numbers, one of each conjugate pair:
//
//   4:  U[0] U[2] | 1
//   8:  U[0] U[4] | 2 | 1 5
//   16: U[0] U[8] | 4 | 2 10 | 1 9 5 13
//
//   ScaleReal        the first two numbers times 1/n, all others times 2/n, after which
//                    InverseReal gives what went forward
//   MulReal          the first two as real numbers, then pairs as complex ones
//
// Complex numbers are pairs, real part first. Nothing is asked of alignment and nothing is
// allocated; the first call fills tables that are static. Any thread may call. Of sizes of 32 and
// above there is a form for each kind of processor, which round differently:
//
//   largest error of components of -1 to 1 at n = 8192     5e-5 in 32 bits, 1e-13 in 64
//   formulas                                               H. Kamar and Y. Elcherif, Electronics
//                                                          Letters 25, 1989
#pragma once

#include <cstdint>

#include "fftkernels/fftkernels/small_transforms.h"
#include "fftkernels/fftkernels/transform_table.h"

namespace lx {

constexpr bool IsKernelSize(int n) {
  return n >= 2 && n <= kLargestTransform && (n & (n - 1)) == 0;
}

template <int n>
void ForwardComplexF32(float* data);
template <int n>
void InverseComplexF32(float* data);
template <int n>
void ScaleComplexF32(float* data);
template <int n>
void MulComplexF32(float* a, const float* b);

template <int n>
void ForwardComplexF64(double* data);
template <int n>
void InverseComplexF64(double* data);
template <int n>
void ScaleComplexF64(double* data);
template <int n>
void MulComplexF64(double* a, const double* b);

template <int n>
void ForwardRealF32(float* data);
template <int n>
void InverseRealF32(float* data);
template <int n>
void ScaleRealF32(float* data);
template <int n>
void MulRealF32(float* a, const float* b);

// The frequencies that the places of a complex spectrum of n hold.
//   n  a power of two
void BuildFrequencyTable(std::uint32_t* table, std::uint32_t n);

}  // namespace lx

#include "fftkernels/fftkernels/kernels_inline.h"
