#include "fftlib/fftlib/emphasis.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

TEST(Emphasis, IsOffUpToAThousandthAboveOne) {
  for (const double g : {-5.0, 0.0, 1.0, 1.0005}) {
    EXPECT_EQ(1.5, lx::ApplyEmphasisD(1.5, g));
    EXPECT_EQ(-0.1, lx::UndoEmphasisD(-0.1, g));
  }
  EXPECT_NE(0.5, lx::ApplyEmphasisD(0.5, 1.001F));
}

TEST(Emphasis, ClampsWhereItIsOn) {
  EXPECT_NEAR(1.0, lx::ApplyEmphasisD(1.5, 2), 1e-15);
  EXPECT_NEAR(0.0, lx::ApplyEmphasisD(-0.1, 2), 1e-15);
}

TEST(Emphasis, IsAHyperbolaWithBothEndsFixed) {
  // a = 0.5, b = 1.5: (1 / (0.75 + 0.5) - 0.5) / 1.5.
  EXPECT_NEAR(0.2, lx::ApplyEmphasisD(0.5, 2), 1e-15);
  EXPECT_NEAR(0.00039984, lx::ApplyEmphasisD(0.5, 50), 1e-8);
  for (const double g : {2.0, 50.0, 51.0, 500.0}) {
    EXPECT_NEAR(0.0, lx::ApplyEmphasisD(0, g), 1e-15);
    EXPECT_NEAR(1.0, lx::ApplyEmphasisD(1, g), 1e-13);
  }
}

TEST(Emphasis, GoesOnAsAPowerAbove50WithoutAStep) {
  EXPECT_NEAR(lx::ApplyEmphasisD(0.9, 50), lx::ApplyEmphasisD(0.9, 50.0001), 1e-6);
  // The exponent at 500 is 14.5.
  const double a = 1.0 / 500;
  const double b = 500 - a;
  const double y = (1 / (0.001 * b + a) - a) / b;
  EXPECT_NEAR(std::pow(y, 14.5), lx::ApplyEmphasisD(0.999, 500), 1e-12);
}

TEST(Emphasis, IsUndoneByItsInverse) {
  for (const double g : {2.0, 10.0, 50.0, 100.0, 500.0}) {
    for (int i = 0; i <= 4096; ++i) {
      const double x = i / 4096.0;
      EXPECT_NEAR(x, lx::UndoEmphasisD(lx::ApplyEmphasisD(x, g), g), 1e-12) << g << " " << x;
    }
  }
}

TEST(Emphasis, LetsNotANumberThrough) {
  EXPECT_TRUE(std::isnan(lx::ApplyEmphasisD(std::numeric_limits<double>::quiet_NaN(), 2)));
  EXPECT_TRUE(std::isnan(lx::UndoEmphasisD(0.5, std::numeric_limits<double>::quiet_NaN())));
}

}  // namespace
