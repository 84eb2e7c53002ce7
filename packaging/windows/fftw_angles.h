// SPDX-License-Identifier: BSD-3-Clause
// Sines and cosines for the FFTW that is built for Windows: included before its own source of
// angles, in place of the C library's.
//
// Its factors come from these two functions, and the last bit of a factor goes into every sample of
// a frame. With them the factors are those that Debian's FFTW gets from Debian's C library, for all
// lengths that are powers of two up to 8192, which are those of our grids. Compiled as C.
#ifndef FFTW_ANGLES_H
#define FFTW_ANGLES_H

#include <math.h>
#include <stddef.h>

// A number from 0 up to but not with 1, times 2^128.
typedef unsigned __int128 lx_fraction;

// Cut off, by less than 3 of its last bits.
static lx_fraction lx_product(lx_fraction a, lx_fraction b) {
  const lx_fraction a1 = a >> 64, a0 = (unsigned long long)a;
  const lx_fraction b1 = b >> 64, b0 = (unsigned long long)b;
  return a1 * b1 + ((a1 * b0) >> 64) + ((a0 * b1) >> 64);
}

// A power series from a term on: each next one is the last one times the square over two numbers
// more, and has the other sign.
static lx_fraction lx_series(lx_fraction term, lx_fraction square, unsigned number) {
  lx_fraction sum = 0;
  int isAdded = 1;
  for (; term != 0; isAdded = !isAdded, number += 2) {
    sum = isAdded ? sum + term : sum - term;
    term = lx_product(term, square) / (number * (number + 1));
  }
  return sum;
}

static lx_fraction lx_fraction_of(double angle) { return (lx_fraction)ldexp(angle, 104) << 24; }

// Rounded once: some 50 bits are left to tell on which side of the middle of two doubles it lies.
static double lx_double_of(lx_fraction value) { return ldexp((double)value, -128); }

// Of angles from 0 to a quarter of pi, into which FFTW brings them.
static double lx_cosine(double angle) {
  const lx_fraction square = lx_product(lx_fraction_of(angle), lx_fraction_of(angle));
  const lx_fraction below1 = lx_series(square / 2, square, 3);
  return below1 == 0 ? 1.0 : lx_double_of(-below1);
}

static double lx_sine(double angle) {
  // Intended: these three are not the nearest double but the next one. They lie almost in the
  // middle of two, and Debian's C library takes the other one: where the processor fuses
  // multiplications and additions, and elsewhere, too, with one more angle of length 8192.
  static const double others[][2] = {
      {0x1.534ac0f19860cp-3, 0x1.51bdf8597c5f2p-3},  // 27 of 1024 parts of a turn
      {0x1.6ada9c90984b1p-3, 0x1.68f5631885546p-3},  // 231 of 8192
      {0x1.02655ffa5cefap-2, 0x1.ff532f192e476p-3},  // 329 of 8192
  };
  size_t i;
  for (i = 0; i < sizeof others / sizeof *others; ++i) {
    if (angle == others[i][0]) {
      return others[i][1];
    }
  }
  const lx_fraction fraction = lx_fraction_of(angle);
  return lx_double_of(lx_series(fraction, lx_product(fraction, fraction), 2));
}

#define cos lx_cosine
#define sin lx_sine

#endif
