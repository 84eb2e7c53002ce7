// SPDX-License-Identifier: BSD-3-Clause
// Corners of the header's promises: outlines drawn by hand, frames that overlap, limits that just
// do, and the ends of what floats hold.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Blurred;
using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Noise;
using library_test::Object;
using library_test::Options;

struct Outline {
  const char* about;
  int shape;
  int sides;
  double radiusX;
  double radiusY;
  double rotation;  // degrees, anticlockwise as one sees it
  double aspect;
};

// Whether a point, y upwards, is inside: turned back and made square it is compared with a circle,
// or with each side of a polygon whose first corner is to the right.
bool IsInside(const Outline& outline, double x, double y) {
  const double turn =
      outline.shape == GLIMMERBLUR_CIRCLE ? 0.0 : -outline.rotation * std::numbers::pi / 180.0;
  const double wide = x * outline.aspect;
  const double u = (wide * std::cos(turn) - y * std::sin(turn)) / outline.radiusX;
  const double v = (wide * std::sin(turn) + y * std::cos(turn)) /
                   (outline.shape == GLIMMERBLUR_CIRCLE ? outline.radiusX : outline.radiusY);
  if (outline.shape != GLIMMERBLUR_POLYGON) {
    return u * u + v * v <= 1.0;
  }
  const double angle = std::numbers::pi / outline.sides;
  for (int i = 0; i < outline.sides; ++i) {
    const double towards = (2 * i + 1) * angle;
    if (u * std::cos(towards) + v * std::sin(towards) > std::cos(angle)) {
      return false;
    }
  }
  return true;
}

class LibraryOutline : public testing::TestWithParam<Outline> {};

// What a point becomes is the part of each pixel that lies inside the outline.
TEST_P(LibraryOutline, CoversPixelsByTheirArea) {
  constexpr int kSize = 61;
  constexpr int kMiddle = 30;
  constexpr int kParts = 16;
  const Outline& outline = GetParam();
  std::vector<double> covered(std::size_t{kSize} * kSize);
  double sum = 0.0;
  for (std::size_t i = 0; i < covered.size(); ++i) {
    const auto x = static_cast<int>(i % kSize) - kMiddle;
    const auto y = kMiddle - static_cast<int>(i / kSize);
    int inside = 0;
    for (int part = 0; part < kParts * kParts; ++part) {
      const int column = part % kParts;
      const int row = part / kParts;
      const double across = (column + 0.5) / kParts - 0.5;
      const double up = (row + 0.5) / kParts - 0.5;
      inside += IsInside(outline, x + across, y + up) ? 1 : 0;
    }
    covered[i] = inside / double{kParts * kParts};
    sum += covered[i];
  }
  glimmerblur_look look = Look(outline.radiusX);
  look.shape = outline.shape;
  look.sides = outline.sides;
  look.radius_y = outline.radiusY;
  look.rotation = outline.rotation;
  look.pixel_aspect = outline.aspect;
  Floats point(kSize, kSize, 1);
  point.At(kMiddle, kMiddle, 0) = 1.0F;

  const Floats image = Blurred(look, point);

  for (std::size_t i = 0; i < covered.size(); ++i) {
    // Weights are of 8 bits, and circles have corners.
    ASSERT_NEAR(covered[i] / sum, image.samples[i], 0.05 / sum)
        << outline.about << ' ' << i % kSize << ',' << i / kSize;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, LibraryOutline,
    testing::Values(
        Outline{"circle", GLIMMERBLUR_CIRCLE, 6, 9.3, 1.0, 77.0, 1.0},
        Outline{"circle of wide pixels", GLIMMERBLUR_CIRCLE, 6, 12.0, 1.0, 0.0, 2.0},
        Outline{"circle of narrow pixels", GLIMMERBLUR_CIRCLE, 6, 7.0, 1.0, 0.0, 0.4},
        Outline{"ellipse", GLIMMERBLUR_ELLIPSE, 6, 15.0, 6.0, 30.0, 1.0},
        Outline{"ellipse of wide pixels", GLIMMERBLUR_ELLIPSE, 6, 15.0, 6.0, 30.0, 1.6},
        Outline{"ellipse of narrow pixels", GLIMMERBLUR_ELLIPSE, 6, 8.0, 14.0, -200.0, 0.6},
        Outline{"triangle", GLIMMERBLUR_POLYGON, 3, 14.0, 14.0, 0.0, 1.0},
        Outline{"pentagon", GLIMMERBLUR_POLYGON, 5, 14.0, 9.0, 20.0, 1.0},
        Outline{"hexagon of wide pixels", GLIMMERBLUR_POLYGON, 6, 18.0, 18.0, 10.0, 2.0},
        Outline{"fifty sides", GLIMMERBLUR_POLYGON, 50, 10.0, 10.0, 3.0, 1.0}),
    [](const auto& each) {
      std::string name = each.param.about;
      name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
      return name;
    });

// The destination is a window of the source's own memory.
TEST(LibraryOverlap, OfAWindowWithItsPictureGivesTheSameSamples) {
  const Floats source = Noise(50, 40, 1);
  for (const double emphasis : {1.0, 30.0}) {
    const Object object = Make(Look(4.0, emphasis));
    const Floats expected = Blurred(object, source);
    Floats shared = source;
    const glimmerblur_frame from = shared.Frame();
    glimmerblur_frame to = from;
    to.rect = {11, 7, 20, 13};
    to.data = &shared.At(11, 7, 0);
    to.row_stride = 50 * 4 * static_cast<std::int64_t>(sizeof(float));

    ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &from, &to, nullptr));

    for (int i = 0; i < 50 * 40 * 4; ++i) {
      const int x = i / 4 % 50;
      const int y = i / 200;
      const bool isInside = x >= 11 && x < 31 && y >= 7 && y < 20;
      ASSERT_NEAR((isInside ? expected : source).samples[static_cast<std::size_t>(i)],
                  shared.samples[static_cast<std::size_t>(i)], isInside ? 1e-6 : 0.0)
          << x << ',' << y;
    }
  }
}

// The limit that a refusal names is enough, and a byte less is not; neither is one less than what
// a render reports.
TEST(LibraryLimit, ThatIsNamedJustDoes) {
  const Floats source = Noise(160, 120, 2);
  glimmerblur_options options = Options();
  options.memory_limit = 1;
  Floats dest(160, 120);
  const Object low = Make(Look(6.0), options);
  ASSERT_EQ(GLIMMERBLUR_NO_MEMORY, library_test::Render(low, source, &dest));
  const std::string message = glimmerblur_message(low.get());
  const std::size_t needs = message.find("needs ");
  ASSERT_NE(std::string::npos, needs) << message;
  const std::uint64_t least = std::stoull(message.substr(needs + 6));

  for (const int less : {0, 1}) {
    options.memory_limit = least - static_cast<std::uint64_t>(less);
    const Object object = Make(Look(6.0), options);
    EXPECT_EQ(less == 0 ? GLIMMERBLUR_OK : GLIMMERBLUR_NO_MEMORY,
              library_test::Render(object, source, &dest))
        << glimmerblur_message(object.get());
  }
  library_test::ExpectNear(Blurred(Look(6.0), source), dest, 1e-6);
}

// Planes that are done, and tiles, wait for the last.
TEST(LibraryCancel, BetweenPlanesAndTilesLeavesNothing) {
  struct Countdown {
    int left;
    static std::int32_t Ask(void* user, double /*done*/) {
      return --static_cast<Countdown*>(user)->left == 0 ? 1 : 0;
    }
  };
  for (const std::uint64_t limit : {0, 700000}) {
    for (const int channels : {3, 4}) {
      glimmerblur_options options = Options(2);
      options.memory_limit = limit;
      Floats source = Noise(110, 90, 3, 0.0, 1.0, channels);
      glimmerblur_frame frame = source.Frame();
      frame.layout = channels == 3 ? GLIMMERBLUR_PLANES : GLIMMERBLUR_RGBA;
      const Floats before = source;
      int cancelled = 0;
      for (int at = 1;; at += 1 + at / 8) {
        const Object object = Make(Look(3.0), options);
        Countdown countdown{at};
        glimmerblur_set_progress(object.get(), Countdown::Ask, &countdown);
        const glimmerblur_status status = glimmerblur_render(object.get(), &frame, &frame, nullptr);
        if (countdown.left > 0) {
          ASSERT_EQ(GLIMMERBLUR_OK, status) << glimmerblur_message(object.get());
          break;
        }
        ++cancelled;
        ASSERT_EQ(GLIMMERBLUR_CANCELLED, status);
        ASSERT_EQ(before, source) << at;
      }
      EXPECT_GT(cancelled, 10);
      EXPECT_NE(before, source);
    }
  }
}

TEST(LibraryEnds, OfFloatsGoThroughAnApertureOfOnePixel) {
  constexpr float kLargest = std::numeric_limits<float>::max();
  constexpr float kLeast = std::numeric_limits<float>::denorm_min();
  for (const float value : {kLargest, -kLargest, 1e-30F, kLeast, -0.0F}) {
    Floats source(7, 5, 1);
    source.At(3, 2, 0) = value;
    const Floats dest = Blurred(Look(0.0), source);
    EXPECT_NEAR(value, dest.At(3, 2, 0), std::abs(value) * 1e-6F);
    for (const float sample : dest.samples) {
      ASSERT_TRUE(std::isfinite(sample)) << value;
    }
  }
}

// The emphasis curve begins at 0.
TEST(LibraryEnds, OfFloatsBelowZeroAreNothingUnderAnEmphasis) {
  for (const int channels : {1, 4}) {
    Floats source(9, 7, channels);
    for (int c = 0; c < std::min(channels, 3); ++c) {
      source.At(4, 3, c) = -0.5F;
    }
    EXPECT_NEAR(-0.5, Blurred(Look(0.0), source).At(4, 3, 0), 1e-6);
    EXPECT_NEAR(0.0, Blurred(Look(0.0, 20.0), source).At(4, 3, 0), 2e-3);
  }
}

// All of the brightest: sums must not leave the floats.
TEST(LibraryEnds, OfFloatsEverywhereStayNumbers) {
  for (const double emphasis : {1.0, 20.0, 500.0}) {
    Floats source(30, 20);
    std::fill(source.samples.begin(), source.samples.end(), std::numeric_limits<float>::max());
    const Floats dest = Blurred(Look(3.0, emphasis), source);
    for (const float sample : dest.samples) {
      ASSERT_FALSE(std::isnan(sample)) << emphasis;
      ASSERT_GT(sample, 3.4e38F) << emphasis;
    }
  }
}

}  // namespace
