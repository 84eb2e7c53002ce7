// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/emphasis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "fftlib/fftlib.h"
#include "fftlib/planes/power.h"
#include "tests/support/engine_inside.h"

namespace {

using lx::ApplyEmphasis;
using lx::ApplyEmphasisD;
using lx::UndoEmphasis;
using lx::UndoEmphasisD;
using lx_test::Inside;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Emphasis, IsOffUpToAThousandthAboveOne) {
  for (const double g : {-5.0, 0.0, 1.0, 1.0005, 1.0009999}) {
    EXPECT_EQ(0.3, ApplyEmphasisD(0.3, g)) << g;
    EXPECT_EQ(0.3, UndoEmphasisD(0.3, g)) << g;
  }
}

TEST(Emphasis, LetsEverythingThroughUnclampedWhereItIsOff) {
  for (const double g : {0.0, 1.0, 1.0005}) {
    EXPECT_EQ(1.5, ApplyEmphasisD(1.5, g));
    EXPECT_EQ(-0.1, ApplyEmphasisD(-0.1, g));
    EXPECT_EQ(1.5, UndoEmphasisD(1.5, g));
    EXPECT_EQ(-0.1, UndoEmphasisD(-0.1, g));
  }
}

// The float 1.001 lies just above the double.
TEST(Emphasis, IsOnAtTheFloatAThousandthAboveOne) {
  const double g = 1.001F;
  EXPECT_EQ(1.0, ApplyEmphasisD(1.5, g));
  EXPECT_NE(0.5, ApplyEmphasisD(0.5, g));
  EXPECT_NEAR(0.5, ApplyEmphasisD(0.5, g), 1e-3);
}

TEST(Emphasis, ClampsWhereItIsOn) {
  EXPECT_NEAR(1.0, ApplyEmphasisD(1.5, 2), 1e-15);
  EXPECT_NEAR(0.0, ApplyEmphasisD(-0.1, 2), 1e-15);
  EXPECT_NEAR(1.0, UndoEmphasisD(1.5, 2), 1e-15);
  EXPECT_NEAR(0.0, UndoEmphasisD(-0.1, 2), 1e-15);
  EXPECT_NEAR(1.0, UndoEmphasisD(1e9, 200), 1e-15);
  EXPECT_NEAR(0.0, UndoEmphasisD(-1e9, 200), 1e-15);
}

// a = 0.5, b = 1.5: (1 / (0.75 + 0.5) - 0.5) / 1.5.
TEST(Emphasis, IsAHyperbola) { EXPECT_NEAR(0.2, ApplyEmphasisD(0.5, 2), 1e-16); }

// Computed with fifty digits from the definition of the curve.
TEST(Emphasis, HasTheValuesOfItsDefinition) {
  const struct {
    double x, g, y;
  } cases[] = {{0.5, 10, 0.0099009900990099009901},   {0.5, 50, 0.00039984006397441023591},
               {0.5, 100, 9.9975004374343891338e-11}, {0.9, 200, 8.6390596094515558043e-21},
               {0.99, 120, 1.9333974822049583905e-7}, {0.25, 500, 6.4804219516288788059e-86},
               {0.75, 500, 4.4468502121349786842e-72}};
  for (const auto& c : cases) {
    EXPECT_NEAR(1.0, ApplyEmphasisD(c.x, c.g) / c.y, 1e-12) << c.x << " at " << c.g;
  }
}

TEST(Emphasis, ClampsWhatIsInfinite) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double g : {2.0, 200.0}) {
    EXPECT_NEAR(1.0, ApplyEmphasisD(infinity, g), 1e-14);
    EXPECT_NEAR(0.0, ApplyEmphasisD(-infinity, g), 1e-15);
    EXPECT_NEAR(1.0, UndoEmphasisD(infinity, g), 1e-15);
    EXPECT_NEAR(0.0, UndoEmphasisD(-infinity, g), 1e-15);
  }
}

TEST(Emphasis, FixesBothEnds) {
  for (const double g : {1.01, 2.0, 3.7, 50.0, 51.0, 100.0, 333.3, 500.0}) {
    EXPECT_EQ(0.0, ApplyEmphasisD(0, g)) << g;
    EXPECT_NEAR(0.0, UndoEmphasisD(0, g), 3e-16) << g;
    EXPECT_NEAR(1.0, ApplyEmphasisD(1, g), 1e-14) << g;
    EXPECT_NEAR(1.0, UndoEmphasisD(1, g), 1e-15) << g;
  }
}

TEST(Emphasis, RisesEverywhere) {
  for (const double g : {2.0, 50.0, 200.0, 500.0}) {
    for (int i = 1; i <= 1000; ++i) {
      ASSERT_LT(ApplyEmphasisD((i - 1) / 1000.0, g), ApplyEmphasisD(i / 1000.0, g)) << g;
      ASSERT_LT(UndoEmphasisD((i - 1) / 1000.0, g), UndoEmphasisD(i / 1000.0, g)) << g;
    }
  }
}

// At 50.0001 the power's exponent is 1.000003.
TEST(Emphasis, GoesOnAsAPowerAbove50WithoutAStep) {
  for (const double x : {0.1, 0.5, 0.9, 0.999}) {
    const double at50 = ApplyEmphasisD(x, 50);
    const double above = ApplyEmphasisD(x, 50.0001);
    EXPECT_NE(at50, above);
    EXPECT_NEAR(1.0, above / at50, 5e-5) << x;
  }
}

TEST(Emphasis, OfTheEngineEndsAt500) {
  lx::DefocusEngine engine;
  engine.SetEmphasis(1000);
  const double g = Inside(engine).emphasis();
  engine.SetEmphasis(500);
  for (const double x : {0.1, 0.9, 0.99}) {
    EXPECT_EQ(ApplyEmphasisD(x, Inside(engine).emphasis()), ApplyEmphasisD(x, g));
  }
}

TEST(Emphasis, IsUndoneByItsInverse) {
  for (const double g : {2.0, 10.0, 50.0, 100.0, 500.0}) {
    for (int i = 0; i <= 4096; ++i) {
      const double x = i / 4096.0;
      ASSERT_NEAR(x, UndoEmphasisD(ApplyEmphasisD(x, g), g), 4e-16) << g << " " << x;
    }
  }
}

// Whatever the emphasis, also called beyond what the engine takes. The rounding of 1 - x is
// what limits the smallest arguments.
TEST(Emphasis, IsUndoneToATrillionthForEveryG) {
  for (int step = 0; step <= 4000; ++step) {
    const double g = step / 4.0;
    for (int i = 1; i <= 256; ++i) {
      const double x = i / 256.0;
      ASSERT_NEAR(1.0, UndoEmphasisD(ApplyEmphasisD(x, g), g) / x, 1e-12) << g << " " << x;
    }
  }
}

TEST(Emphasis, GivesANumberForEveryNumber) {
  const double largest = std::numeric_limits<double>::max();
  const double values[] = {-largest, -1.0, -1e-300, -0.0,        0.0, 5e-324, 1e-308, 1e-200,
                           1e-17,    0.5,  1.0,     1.0 + 1e-15, 2.0, 1e10,   largest};
  for (const double g : {-largest, -1.0, 0.0, 1e-300, 1.0, 1.001, 1.5, 50.0, 50.1, 499.0, 500.0,
                         1000.0, 1e10, 1e150}) {
    for (const double v : values) {
      EXPECT_FALSE(std::isnan(ApplyEmphasisD(v, g))) << v << " at " << g;
      EXPECT_FALSE(std::isnan(UndoEmphasisD(v, g))) << v << " at " << g;
    }
  }
}

TEST(Emphasis, LetsNotANumberThrough) {
  for (const double g : {0.0, 2.0, 200.0}) {
    EXPECT_TRUE(std::isnan(ApplyEmphasisD(kNan, g)));
    EXPECT_TRUE(std::isnan(UndoEmphasisD(kNan, g)));
  }
  EXPECT_TRUE(std::isnan(ApplyEmphasisD(0.5, kNan)));
  EXPECT_TRUE(std::isnan(UndoEmphasisD(0.5, kNan)));
}

// What is left of a black area after the transforms, in steps of 16 bits. This is why an
// emphasis above some 75 shows noise in the dark.
TEST(Emphasis, LiftsRoundingNoiseToVisibleAtHighValues) {
  EXPECT_NEAR(0.4735, UndoEmphasisD(1e-17, 80) * 65535, 1e-3);
  EXPECT_NEAR(103.70, UndoEmphasisD(1e-17, 100) * 65535, 1e-1);
  EXPECT_NEAR(63577.1, UndoEmphasisD(1e-17, 200) * 65535, 1e-1);
  EXPECT_NEAR(65531.4, UndoEmphasisD(1e-17, 500) * 65535, 1e-1);
}

// The float of 0.9 is not 0.9, so the numbers are those of the float, with fifty digits.
TEST(FloatEmphasis, RoundsToAFloatBeforeThePowerOnItsWayIn) {
  EXPECT_NEAR(1.0, ApplyEmphasis(0.5F, 100.F) / 9.9975033517610549609e-11, 1e-13);
  EXPECT_NEAR(1.0, ApplyEmphasis(0.9F, 200.F) / 8.6390542301477070728e-21, 1e-13);
  EXPECT_NEAR(1.0, ApplyEmphasis(0.75F, 500.F) / 4.4468644114557614517e-72, 1e-12);
}

TEST(FloatEmphasis, KeepsDoublesOnItsWayBack) {
  EXPECT_NEAR(0.9999998041430128938, UndoEmphasis(0.5F, 500.F), 3e-16);
  EXPECT_NEAR(0.99993722414644168903, UndoEmphasis(0.001F, 200.F), 3e-16);
  EXPECT_NEAR(0.99998442463829288159, UndoEmphasis(1e-10F, 500.F), 3e-16);
}

TEST(FloatEmphasis, IsTheDoubleFormBelow50) {
  for (const float g : {1.5F, 10.F, 50.F}) {
    for (const float x : {0.F, 0.125F, 0.5F, 0.75F, 1.F}) {
      EXPECT_EQ(ApplyEmphasisD(x, g), ApplyEmphasis(x, g));
      EXPECT_EQ(UndoEmphasisD(x, g), UndoEmphasis(x, g));
    }
  }
}

// Both start at the float 1.001, which lies above both thresholds, and not at the float
// before it.
TEST(FloatEmphasis, StartsAtTheFloatAThousandthAboveOne) {
  const float on = 1.001F;
  const float off = std::nextafter(on, 0.F);
  EXPECT_NE(0.5, ApplyEmphasis(0.5F, on + 1e-6F));
  EXPECT_NE(0.5, UndoEmphasis(0.5F, on));
  EXPECT_EQ(0.5, ApplyEmphasis(0.5F, off));
  EXPECT_EQ(0.5, UndoEmphasis(0.5F, off));
  EXPECT_EQ(1.5, ApplyEmphasis(1.5F, 1.F));
  EXPECT_EQ(-0.5, UndoEmphasis(-0.5F, 0.F));
}

TEST(FloatEmphasis, IsUndoneByItsInverseToItsPrecision) {
  for (const float g : {2.F, 50.F, 75.F, 200.F, 500.F}) {
    for (int i = 0; i <= 256; ++i) {
      const float x = static_cast<float>(i) / 256.F;
      const auto curved = static_cast<float>(ApplyEmphasis(x, g));
      // A result below the floats' range is lost, as is what the power does to the rest.
      if (curved > 1e-30F) {
        ASSERT_NEAR(x, UndoEmphasis(curved, g), 2e-6) << g << " " << x;
      }
    }
  }
}

TEST(Power, IsWithinOneUnitInTheLastPlace) {
  std::vector<double> values = {1.0, 0.5, std::nextafter(1.0, 0.0), std::nextafter(1.0, 2.0)};
  for (int i = 1; i < 4000; ++i) {
    values.push_back(i / 4001.0);
    values.push_back(std::exp2(-i / 40.0));
    values.push_back(1.0 - std::exp2(-i / 80.0));
  }
  for (const double exponent : {1.000003, 1.03, 2.5, 5.5, 14.5, 1 / 1.03, 1 / 5.5, 1 / 14.5}) {
    const lx::PowerExponent e = lx::MakePowerExponent(exponent);
    for (const double y : values) {
      const long double exact = std::pow(static_cast<long double>(y), exponent);
      if (exact < 1e-300L) {
        continue;
      }
      const auto unit = std::ldexp(1.0L, std::ilogb(exact) - 52);
      ASSERT_LT(std::fabs(lx::Power(y, e) - exact), unit) << y << " to the " << exponent;
    }
  }
}

template <std::size_t Count>
long double Polynomial(const double (&coefficients)[Count], long double x) {
  long double sum = 0.0L;
  for (std::size_t i = Count; i-- > 0;) {
    sum = sum * x + static_cast<long double>(coefficients[i]);
  }
  return sum;
}

// By their series, to the precision of a long double.
TEST(Power, HasPolynomialsThatFitWhatTheyStandFor) {
  if (std::numeric_limits<long double>::digits < 64) {
    GTEST_SKIP() << "a long double is no wider than a double here";
  }
  const long double ln2 = std::log(2.0L);
  for (int i = 0; i <= 200; ++i) {
    const long double z = 0.02944L * i / 200;
    long double log = 0.0L;
    long double power = 1.0L;
    for (int j = 1; j < 40; ++j, power *= z) {
      log += 2.0L / ln2 / (2 * j + 1) * power;
    }
    ASSERT_NEAR(1.0, Polynomial(lx::power::kLog, z) / log, 1e-16) << i;
    const long double f = (i - 100) / 200.0L;
    long double exp = 0.0L;
    long double term = ln2 * ln2 / 2;
    for (int j = 3; j < 40; ++j) {
      exp += term;
      term *= ln2 * f / j;
    }
    ASSERT_NEAR(1.0, Polynomial(lx::power::kExp, f) / exp, 1e-16) << i;
  }
}

TEST(Power, CountsWhatIsBelowTheNormalNumbersAsZero) {
  const lx::PowerExponent root = lx::MakePowerExponent(1 / 14.5);
  const lx::PowerExponent high = lx::MakePowerExponent(14.5);
  EXPECT_EQ(0.0, lx::Power(0.0, high));
  EXPECT_EQ(0.0, lx::Power(0.0, root));
  EXPECT_EQ(0.0, lx::Power(5e-324, root));
  EXPECT_EQ(0.0, lx::Power(1e-30, high));
}

}  // namespace
