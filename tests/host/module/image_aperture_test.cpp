// SPDX-License-Identifier: BSD-3-Clause
// A frame that a module without memory gave back as it was, where its aperture comes from a
// picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "host/module/border_pictures.h"
#include "host/module/frame_checks.h"
#include "host/support/failure.h"
#include "tests/support/looks.h"

namespace {

using glimmerhost::FrameImage;

constexpr int kSide = 16;
constexpr int kBlue = 0;
constexpr int kRed = 2;

struct LeftAlone {
  // The disc has its middle at (8, 8), and weighs nothing from 5 pixels on.
  LeftAlone() : LeftAlone("5px") {}

  // Its full weight up to 3 pixels and none from the outer radius on.
  explicit LeftAlone(const char* outer, int frameWidth = kSide, const char* middle = "50%,50%")
      : width(frameWidth), disc(new FrameImage(width, kSide)) {
    glimmerhost::TypedLook typed;
    typed["shape"] = "image";
    typed["center"] = middle;
    typed["radius-psf1"] = "3px";
    typed["radius-psf2"] = outer;
    input.values = lx_test::StillValuesOf(glimmerhost::Page::Load(PAGE), typed, width, kSide);
    input.source = quantel::cPtr<FrameImage>(new FrameImage(width, kSide));
    input.spread = disc;
  }

  // Columns of two kinds, which differ by that much. Even and dark, so that they pass the border.
  void Stripe(std::uint16_t step) const {
    std::uint16_t* const samples = input.source->buffer();
    for (int i = 0; i < width * kSide * 4; ++i) {
      samples[i] = i / 4 % 2 == 0 ? 1000 : static_cast<std::uint16_t>(1000 + step);
    }
  }

  void Light(int x, int rowFromTop, int channel, std::uint16_t sample) const {
    disc->buffer()[(static_cast<std::ptrdiff_t>(rowFromTop) * width + x) * 4 + channel] = sample;
  }

  bool IsTaken() const {
    const quantel::cPtr<FrameImage> result(new FrameImage(width, kSide));
    std::copy_n(input.source->buffer(), width * kSide * 4, result->buffer());
    return glimmerhost::CheckRendered(input, result.Object());
  }

  int width;
  glimmerhost::FrameInput input;
  quantel::cPtr<FrameImage> disc;
};

TEST(FrameLeftAlone, IsRefusedWhereTheDiscShowsRed) {
  // The darkest red that weighs anything, and nothing that shows in the other colours.
  for (const std::uint16_t red : {std::uint16_t{65535}, std::uint16_t{256}}) {
    LeftAlone frame;
    frame.Stripe(2000);
    frame.Light(8, 7, kRed, red);
    frame.Light(9, 7, kRed, red);

    EXPECT_THROW(frame.IsTaken(), glimmerhost::Failure) << red;
  }
}

TEST(FrameLeftAlone, IsOneWithoutApertureWhereTheDiscShowsNoRed) {
  LeftAlone blue;
  blue.Stripe(2000);
  blue.Light(8, 7, kBlue, 65535);
  blue.Light(9, 7, kBlue, 65535);
  EXPECT_FALSE(blue.IsTaken());

  LeftAlone dark;
  dark.Stripe(2000);
  dark.Light(8, 7, kRed, 255);
  dark.Light(9, 7, kRed, 255);
  EXPECT_FALSE(dark.IsTaken());

  LeftAlone beyond;
  beyond.Stripe(2000);
  beyond.Light(8, 1, kRed, 65535);
  beyond.Light(14, 7, kRed, 65535);
  EXPECT_FALSE(beyond.IsTaken());
}

// Row 7 from the top is row 8 from the bottom, the disc's middle; the sixth from it is beyond.
TEST(FrameLeftAlone, HasItsDiscsMiddleInTheRowFromTheBottom) {
  for (const auto& [row, isLit] : {std::pair{3, true}, {11, true}, {2, false}, {12, false}}) {
    LeftAlone frame;
    frame.Stripe(2000);
    frame.Light(8, row, kRed, 65535);
    EXPECT_EQ(isLit, frame.IsTaken()) << row;
  }
}

// Of a hard edge, too, light is weighed that lies a part of a pixel beyond it: the root of 10.
TEST(FrameLeftAlone, HasADiscWhoseEdgeIsAtLeastOnePixel) {
  LeftAlone frame("3px");
  frame.Stripe(2000);
  frame.Light(9, 4, kRed, 65535);
  EXPECT_TRUE(frame.IsTaken());

  LeftAlone beyond("3px");
  beyond.Stripe(2000);
  beyond.Light(12, 7, kRed, 65535);
  EXPECT_FALSE(beyond.IsTaken());
}

// With its middle, row 4 from the bottom, moved to row 8, what is above row 11 is beyond the frame.
TEST(FrameLeftAlone, HasADiscThatEndsWhereTheFrameDoes) {
  for (const auto& [row, isLit] : {std::pair{4, true}, {3, false}}) {
    LeftAlone frame("15px", 2 * kSide, "50%,25%");
    frame.Stripe(2000);
    frame.Light(kSide, row, kRed, 65535);
    EXPECT_EQ(isLit, frame.IsTaken()) << row;
  }
}

// A part of 1 in 256 beside the point: less than 64 steps of a picture whose neighbours are 2000
// apart.
TEST(FrameLeftAlone, IsTakenWhereAPointHasLittleBesideIt) {
  LeftAlone frame;
  frame.Light(8, 7, kRed, 65535);
  frame.Light(9, 7, kRed, 256);

  frame.Stripe(2000);
  EXPECT_TRUE(frame.IsTaken());

  frame.Stripe(20000);
  EXPECT_THROW(frame.IsTaken(), glimmerhost::Failure);
}

TEST(FrameLeftAlone, IsTakenWhereTheApertureIsAPoint) {
  LeftAlone frame;
  frame.Stripe(20000);
  frame.Light(8, 7, kRed, 65535);

  EXPECT_TRUE(frame.IsTaken());
}

}  // namespace
