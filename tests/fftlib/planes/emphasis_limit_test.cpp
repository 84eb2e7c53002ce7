// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include "fftlib/planes/emphasis.h"

namespace {

// Above 500 the hyperbola goes on, and the exponent stays at 14.5. By hand for g = 1000: with
// a = 0.001 and b = 999.999, (1 / (0.1 b + a) - a) / b to the power of 14.5, and so on. An
// exponent that went on to 29.5 would give 1.4e-149 for 0.9, and 0.999999996 on the way back.
TEST(EmphasisLimit, KeepsTheExponentOf500OnADirectCall) {
  EXPECT_NEAR(1.0, lx::ApplyEmphasisD(0.9, 1000.0) / 6.86214217253053921e-74, 1e-12);
  EXPECT_NEAR(1.0, lx::ApplyEmphasisD(0.99, 1000.0) / 8.63151287731311284e-59, 1e-12);
  EXPECT_NEAR(0.99999999270729445, lx::UndoEmphasisD(0.9, 1000.0), 1e-15);
  EXPECT_NEAR(0.99999995103574713, lx::UndoEmphasisD(0.5, 1000.0), 1e-15);
}

// The slope of the exponent and the base of the power are floats here.
TEST(EmphasisLimit, KeepsTheExponentOf500InTheFloatFormsToo) {
  EXPECT_NEAR(1.0, lx::ApplyEmphasis(0.9F, 1000.0F) / 6.86214217253053921e-74, 1e-4);
  EXPECT_NEAR(0.99999995103574713, lx::UndoEmphasis(0.5F, 1000.0F), 1e-12);
}

}  // namespace
