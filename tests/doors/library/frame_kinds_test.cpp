// SPDX-License-Identifier: BSD-3-Clause
// Kinds of frames: sample types, strides, orders of rows, planes, alpha that is straight, regions.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Blurred;
using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Noise;
using library_test::Pixels;

glimmerblur_look Ellipse(double emphasis = 20.0) {
  glimmerblur_look look = Look(6.0, emphasis);
  look.shape = GLIMMERBLUR_ELLIPSE;
  look.radius_y = 3.0;
  look.rotation = 30.0;
  look.centred = 0;
  return look;
}

template <class Sample>
Pixels<Sample> Whole(const Floats& from, double full) {
  Pixels<Sample> whole(from.width, from.height, from.channels);
  for (std::size_t i = 0; i < whole.samples.size(); ++i) {
    whole.samples[i] =
        static_cast<Sample>(std::lround(static_cast<double>(from.samples[i]) * full));
  }
  return whole;
}

template <class Sample>
Floats Unit(const Pixels<Sample>& from, double full) {
  Floats unit(from.width, from.height, from.channels);
  for (std::size_t i = 0; i < unit.samples.size(); ++i) {
    unit.samples[i] = static_cast<float>(from.samples[i] / full);
  }
  return unit;
}

template <class Sample>
void ExpectRounded(double full) {
  const auto source = Whole<Sample>(Noise(45, 33, 1), full);
  const Floats expected = Blurred(Ellipse(), Unit(source, full));
  const auto got = Blurred(Ellipse(), source);
  for (std::size_t i = 0; i < got.samples.size(); ++i) {
    // Half a step, and what floats leave of it.
    ASSERT_NEAR(static_cast<double>(expected.samples[i]) * full, got.samples[i], 0.51) << i;
  }
}

TEST(LibraryFrames, OfIntegersAreRoundedToTheNearest) {
  ExpectRounded<std::uint8_t>(255.0);
  ExpectRounded<std::uint16_t>(65535.0);
}

TEST(LibraryFrames, OfEveryIntegerComeBackAsTheyWere) {
  Pixels<std::uint16_t> all(256, 256, 1);
  for (std::size_t i = 0; i < all.samples.size(); ++i) {
    all.samples[i] = static_cast<std::uint16_t>(i);
  }
  EXPECT_EQ(all, Blurred(Look(0.0), all));
}

TEST(LibraryFrames, MayChangeTheirSampleTypeOnTheWay) {
  Pixels<std::uint8_t> source = Whole<std::uint8_t>(Noise(20, 20, 2), 255.0);
  Floats dest(20, 20);
  const glimmerblur_frame in = source.Frame();
  const glimmerblur_frame out = dest.Frame();
  const auto object = Make(Ellipse());
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &in, &out, nullptr));
  EXPECT_EQ(Blurred(Ellipse(), Unit(source, 255.0)), dest);
}

TEST(LibraryFrames, WithTheBottomRowFirstGiveTheSamePicture) {
  const Floats source = Noise(31, 22, 3);
  const Floats expected = Blurred(Ellipse(), source);
  Floats turned(31, 22);
  for (int y = 0; y < 22; ++y) {
    std::copy_n(&source.samples[static_cast<std::size_t>(y) * 31 * 4], 31 * 4,
                &turned.samples[static_cast<std::size_t>(21 - y) * 31 * 4]);
  }
  glimmerblur_frame frame = turned.Frame();
  frame.first_row = GLIMMERBLUR_BOTTOM;
  const auto object = Make(Ellipse());
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  for (int y = 0; y < 22; ++y) {
    for (int i = 0; i < 31 * 4; ++i) {
      ASSERT_EQ(expected.samples[static_cast<std::size_t>(y * 31 * 4 + i)],
                turned.samples[static_cast<std::size_t>((21 - y) * 31 * 4 + i)]);
    }
  }
}

// Channels one behind the other, rows backwards with gaps, and at an odd address.
TEST(LibraryFrames, MayLieAnyWay) {
  const Floats source = Noise(19, 14, 4);
  const Floats expected = Blurred(Ellipse(), source);
  constexpr std::ptrdiff_t kRow = 19 * 4 + 12;
  constexpr std::ptrdiff_t kChannel = 14 * kRow + 8;
  std::vector<unsigned char> memory(static_cast<std::size_t>(4 * kChannel + 1), 0xAB);
  const auto at = [&](int x, int y, int c) {
    return memory.data() + 1 + c * kChannel + (13 - y) * kRow + x * 4;
  };
  for (int i = 0; i < 19 * 14 * 4; ++i) {
    std::memcpy(at(i / 4 % 19, i / 76, i % 4), &source.samples[static_cast<std::size_t>(i)], 4);
  }
  glimmerblur_frame frame = Floats(19, 14).Frame();
  frame.data = at(0, 0, 0);
  frame.row_stride = -kRow;
  frame.pixel_stride = 4;
  frame.channel_stride = kChannel;
  const auto object = Make(Ellipse());
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &frame, &frame, nullptr))
      << glimmerblur_message(object.get());
  for (int i = 0; i < 19 * 14 * 4; ++i) {
    float got = 0.0F;
    std::memcpy(&got, at(i / 4 % 19, i / 76, i % 4), 4);
    ASSERT_EQ(expected.samples[static_cast<std::size_t>(i)], got) << i;
  }
  EXPECT_EQ(0xAB, memory[0]);
  EXPECT_EQ(0xAB, *(at(18, 4, 2) + 4));
}

TEST(LibraryFrames, WithoutAlphaGiveTheSameColours) {
  const Floats source = Noise(25, 18, 5);
  Floats colours(25, 18, 3);
  for (int i = 0; i < 25 * 18 * 3; ++i) {
    colours.samples[static_cast<std::size_t>(i)] = source.At(i / 3 % 25, i / 75, i % 3);
  }
  const Floats expected = Blurred(Ellipse(), source);
  const Floats got = Blurred(Ellipse(), colours);
  for (int i = 0; i < 25 * 18 * 3; ++i) {
    ASSERT_EQ(expected.At(i / 3 % 25, i / 75, i % 3), got.samples[static_cast<std::size_t>(i)]);
  }
}

TEST(LibraryFrames, OfPlanesBlurEachForItself) {
  const Floats source = Noise(25, 18, 6, 0.0, 2.0, 5);
  const Floats got = Blurred(Ellipse(), source);
  for (int c = 0; c < 5; ++c) {
    Floats one(25, 18, 1);
    for (int i = 0; i < 25 * 18; ++i) {
      one.samples[static_cast<std::size_t>(i)] = source.At(i % 25, i / 25, c);
    }
    const Floats expected = Blurred(Ellipse(), one);
    for (int i = 0; i < 25 * 18; ++i) {
      ASSERT_EQ(expected.samples[static_cast<std::size_t>(i)], got.At(i % 25, i / 25, c));
    }
  }
}

// Colours under no alpha do not come in: that is what multiplying is for.
TEST(LibraryFrames, WithStraightAlphaAreMultipliedForTheBlur) {
  const Floats straight = Noise(25, 18, 7);
  Floats multiplied = straight;
  for (int i = 0; i < 25 * 18 * 3; ++i) {
    multiplied.At(i / 3 % 25, i / 75, i % 3) *= straight.At(i / 3 % 25, i / 75, 3);
  }
  const Floats expected = Blurred(Ellipse(), multiplied);
  Floats got = straight;
  glimmerblur_frame frame = got.Frame();
  frame.alpha = GLIMMERBLUR_STRAIGHT;
  const auto object = Make(Ellipse());
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  for (int y = 0; y < 18; ++y) {
    for (int x = 0; x < 25; ++x) {
      const float alpha = expected.At(x, y, 3);
      ASSERT_EQ(alpha, got.At(x, y, 3));
      for (int c = 0; c < 3; ++c) {
        ASSERT_NEAR(expected.At(x, y, c) / alpha, got.At(x, y, c), 2e-6);
      }
    }
  }
}

TEST(LibraryFrames, WithStraightAlphaHaveNoColourWhereThereIsNothing) {
  Floats pixels(20, 20);
  std::fill(pixels.samples.begin(), pixels.samples.end(), 0.75F);
  for (int i = 0; i < 400; ++i) {
    pixels.samples[static_cast<std::size_t>(i) * 4 + 3] = 0.0F;
  }
  glimmerblur_frame frame = pixels.Frame();
  frame.alpha = GLIMMERBLUR_STRAIGHT;
  const auto object = Make(Look(3.0));
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &frame, &frame, nullptr));
  for (const float sample : pixels.samples) {
    ASSERT_EQ(0.0F, sample);
  }
}

class LibraryRegions : public testing::TestWithParam<int> {};

// A region of the result, from no more of the source than is said to be needed.
TEST_P(LibraryRegions, HaveTheSamplesOfTheWholePicture) {
  const int firstRow = GetParam();
  const Floats source = Noise(60, 50, 8);
  Floats whole = source;
  glimmerblur_look look = Ellipse();
  look.emphasis = 10.0;
  const auto object = Make(look);
  glimmerblur_frame all = whole.Frame();
  all.first_row = firstRow;
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &all, &all, nullptr));

  const glimmerblur_rect picture{-7, 100, 60, 50};
  for (const glimmerblur_rect wanted :
       {glimmerblur_rect{-7, 100, 60, 50}, glimmerblur_rect{-7, 100, 1, 1},
        glimmerblur_rect{20, 120, 9, 4}, glimmerblur_rect{40, 141, 13, 9},
        glimmerblur_rect{52, 149, 1, 1}}) {
    glimmerblur_rect needed{};
    ASSERT_EQ(GLIMMERBLUR_OK,
              glimmerblur_region_needed(object.get(), &picture, firstRow, &wanted, &needed));
    ASSERT_GE(needed.x, picture.x);
    ASSERT_GE(needed.y, picture.y);
    ASSERT_LE(needed.x + needed.width, picture.x + picture.width);
    ASSERT_LE(needed.y + needed.height, picture.y + picture.height);
    Floats part(needed.width, needed.height);
    for (int i = 0; i < needed.width * needed.height * 4; ++i) {
      part.samples[static_cast<std::size_t>(i)] =
          source.At(needed.x - picture.x + i / 4 % needed.width,
                    needed.y - picture.y + i / 4 / needed.width, i % 4);
    }
    glimmerblur_frame in = part.Frame();
    in.rect = needed;
    in.first_row = firstRow;
    Floats region(wanted.width, wanted.height);
    glimmerblur_frame out = region.Frame();
    out.rect = wanted;
    out.first_row = firstRow;
    ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object.get(), &in, &out, &picture))
        << glimmerblur_message(object.get());
    for (int i = 0; i < wanted.width * wanted.height * 4; ++i) {
      ASSERT_NEAR(whole.At(wanted.x - picture.x + i / 4 % wanted.width,
                           wanted.y - picture.y + i / 4 / wanted.width, i % 4),
                  region.samples[static_cast<std::size_t>(i)], 1e-6)
          << wanted.x << ' ' << wanted.y << ' ' << i;
    }
    // And one column or row less is refused.
    if (needed.width > 1) {
      in.rect.width -= 1;
      EXPECT_EQ(GLIMMERBLUR_INVALID_FRAME, glimmerblur_render(object.get(), &in, &out, &picture));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(FirstRow, LibraryRegions,
                         testing::Values(GLIMMERBLUR_TOP, GLIMMERBLUR_BOTTOM));

}  // namespace
