// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/convolution_model.h"
#include "tests/support/engine_inside.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Grid;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;
using lx_test::Samples;

constexpr int kWidth = 24;
constexpr int kHeight = 20;

std::vector<std::uint8_t> AsymmetricMask() {
  std::mt19937 random(3);
  std::vector<std::uint8_t> mask(kWidth * kHeight, 0);
  for (int y = 7; y < 12; ++y) {
    for (int x = 9; x < 15; ++x) {
      mask[y * kWidth + x] = static_cast<std::uint8_t>(random());
    }
  }
  return mask;
}

void Load(DefocusEngine* engine, const std::vector<std::uint8_t>& mask, int width = kWidth,
          int height = kHeight, int margin = 6) {
  const Image image = MakeImage(width, height, 1, 0);
  std::copy(mask.begin(), mask.end(), Samples<std::uint8_t>(image));
  ASSERT_TRUE(engine->LoadPsf(image.get(), margin));
}

// A mask of one pixel.
void LoadImpulse(DefocusEngine* engine, int width, int height, int x, int y, int margin = 4) {
  std::vector<std::uint8_t> mask(static_cast<std::size_t>(width) * height, 0);
  mask[static_cast<std::size_t>(y) * width + x] = 255;
  Load(engine, mask, width, height, margin);
}

Image Noise(int width, int height, std::uint32_t channels = 4, int low = 0, int high = 65535) {
  Image image = MakeImage(width, height, channels, 1);
  lx_test::FillNoise(image, 8, low, high);
  return image;
}

Image Blur(DefocusEngine* engine, const Image& source, std::uint32_t mask = 15) {
  Image dest = MakeImage(source->width, source->height, source->channels, source->sampleType);
  std::memset(dest->data, 0x55, lx_test::SampleCount(dest) * dest->elementBytes);
  EXPECT_TRUE(engine->SetSourceImage(source.get()));
  EXPECT_TRUE(engine->Convolve(dest.get(), mask));
  return dest;
}

void ExpectChannel(const std::vector<double>& expected, const Image& got, int channel,
                   double tolerance = 1.0) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    // Colour out of range is cut; one step for two roundings and the colour round trip.
    const double clamped = std::clamp(expected[i], 0.0, 65535.0);
    ASSERT_NEAR(clamped, Samples<std::uint16_t>(got)[i * got->channels + channel], tolerance)
        << "pixel " << i % got->width << "," << i / got->width << " channel " << channel;
  }
}

TEST(Convolve, MatchesADirectSumWithRepeatedEdges) {
  DefocusEngine engine;
  Load(&engine, AsymmetricMask());
  const Image source = Noise(kWidth, kHeight);

  const Image dest = Blur(&engine, source);

  lx_test::PsfModel psf(64, kWidth, kHeight);
  psf.Load(AsymmetricMask());
  for (int c = 0; c < 4; ++c) {
    ExpectChannel(lx_test::ConvolveChannel(source, c, psf.Shifted()), dest, c);
  }
}

TEST(Convolve, GivesTheSameColoursWithAlphaAndWithout) {
  const Image source = Noise(kWidth, kHeight);
  DefocusEngine engine;
  Load(&engine, AsymmetricMask());
  const Image with = Blur(&engine, source, 15);
  // Grids that hold other planes, and an engine that has none yet.
  DefocusEngine fresh;
  Load(&fresh, AsymmetricMask());
  for (DefocusEngine* one : {&engine, &fresh}) {
    const Image without = Blur(one, source, 7);
    for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
      const int expected = i % 4 == 3 ? 0x5555 : Samples<std::uint16_t>(with)[i];
      ASSERT_EQ(expected, Samples<std::uint16_t>(without)[i]) << i;
    }
  }
}

TEST(Convolve, GivesTheSourceBackForAnImpulseInTheMiddleOfAnEvenFrame) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, kWidth / 2, kHeight / 2);
  const Image source = Noise(kWidth, kHeight);

  const Image dest = Blur(&engine, source);

  for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
    ASSERT_NEAR(Samples<std::uint16_t>(source)[i], Samples<std::uint16_t>(dest)[i], 1) << i;
  }
}

TEST(Convolve, KeepsAConstantFrameForEveryShape) {
  for (const float emphasis : {0.F, 20.F}) {
    for (int shape = 1; shape <= 4; ++shape) {
      DefocusEngine engine;
      engine.SetEmphasis(emphasis);
      engine.BuildShapePsf(30, 22, shape, 5, 3, 25, 5);
      const Image source = MakeImage(30, 22, 4, 1);
      for (std::size_t i = 0; i < lx_test::SampleCount(source); i += 4) {
        const std::uint16_t pixel[] = {50000, 20000, 3000, 40000};
        std::copy(pixel, pixel + 4, Samples<std::uint16_t>(source) + i);
      }

      const Image dest = Blur(&engine, source);

      for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
        ASSERT_NEAR(Samples<std::uint16_t>(source)[i], Samples<std::uint16_t>(dest)[i], 1)
            << "shape " << shape << " emphasis " << emphasis << " sample " << i;
      }
    }
  }
}

// Where the light of one bright pixel lies, on average.
struct Point {
  double x;
  double y;
};
Point CentreOfLight(const Image& image) {
  double sum = 0;
  Point p{0, 0};
  for (int y = 0; y < image->height; ++y) {
    for (int x = 0; x < image->width; ++x) {
      const double v = Samples<std::uint16_t>(image)[(y * image->width + x) * 4];
      sum += v;
      p.x += v * x;
      p.y += v * y;
    }
  }
  return {p.x / sum, p.y / sum};
}

TEST(Convolve, MovesAnEvenFrameByHalfAPixelAndAnOddOneByAWhole) {
  for (const int side : {40, 41}) {
    DefocusEngine engine;
    engine.BuildShapePsf(side, side, 1, 4, 4, 0, 6);
    const Image source = MakeImage(side, side, 4, 1);
    lx_test::Fill<std::uint16_t>(source, 0);
    for (int c = 0; c < 4; ++c) {
      Samples<std::uint16_t>(source)[(20 * side + 20) * 4 + c] = 65535;
    }

    const Point centre = CentreOfLight(Blur(&engine, source));

    const double shift = side % 2 == 0 ? 0.5 : 1.0;
    EXPECT_NEAR(20 - shift, centre.x, 0.01) << side;
    EXPECT_NEAR(20 - shift, centre.y, 0.01) << side;
  }
}

TEST(Convolve, RepeatsABrightEdgeIntoTheMargin) {
  DefocusEngine engine;
  engine.BuildShapePsf(32, 32, 1, 5, 5, 0, 6);
  const Image source = MakeImage(32, 32, 4, 1);
  for (int i = 0; i < 32 * 32; ++i) {
    std::fill_n(Samples<std::uint16_t>(source) + i * 4, 4,
                static_cast<std::uint16_t>(i % 32 < 16 ? 60000 : 100));
  }

  const Image dest = Blur(&engine, source);

  for (int y = 0; y < 32; ++y) {
    EXPECT_NEAR(60000, Samples<std::uint16_t>(dest)[y * 32 * 4], 1) << y;
    EXPECT_NEAR(100, Samples<std::uint16_t>(dest)[(y * 32 + 31) * 4], 1) << y;
  }
}

TEST(Convolve, DarkensTheBorderWithMarginsOfZero) {
  DefocusEngine engine;
  engine.SetEdgeMode(lx::kEdgeZero);
  Load(&engine, AsymmetricMask());
  const Image source = Noise(kWidth, kHeight, 4, 30000, 65535);

  const Image dest = Blur(&engine, source);

  lx_test::PsfModel psf(64, kWidth, kHeight);
  psf.Load(AsymmetricMask());
  // Alpha has no colour transform, whose chroma planes are centred at a half.
  ExpectChannel(lx_test::ConvolveChannel(source, 3, psf.Shifted(), false), dest, 3);
  EXPECT_LT(Samples<std::uint16_t>(dest)[3], 30000);
}

TEST(Convolve, LeavesAlphaAsItIsWithoutItsBitOrChannel) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  const Image source = Noise(kWidth, kHeight);

  const Image dest = Blur(&engine, source, 7);
  for (std::size_t i = 3; i < lx_test::SampleCount(dest); i += 4) {
    ASSERT_EQ(0x5555, Samples<std::uint16_t>(dest)[i]);
  }

  const Image three = MakeImage(kWidth, kHeight, 3, 1);
  EXPECT_TRUE(engine.Convolve(three.get(), 15));
  EXPECT_NEAR(Samples<std::uint16_t>(source)[4], Samples<std::uint16_t>(three)[3], 1);
}

TEST(Convolve, LeavesTheAlphaPlaneInTheWorkGrid) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  const Image source = Noise(kWidth, kHeight);

  Blur(&engine, source);

  const int n = Inside(engine).paddedWidth();
  const double alpha =
      Inside(engine).workSpatial()[Inside(engine).offsetY() * n + Inside(engine).offsetX()] /
      (n * n);
  EXPECT_NEAR(Samples<std::uint16_t>(source)[3] / 65535.0, alpha, 1e-12);
}

TEST(Convolve, ChecksPsfThenDestinationThenChannels) {
  DefocusEngine engine;
  const Image two = MakeImage(kWidth, kHeight, 2, 1);
  const Image small = MakeImage(5, 5, 2, 1);
  const Image bytes = MakeImage(kWidth, kHeight, 4, 0);
  const Image source = Noise(kWidth, kHeight);

  EXPECT_FALSE(engine.Convolve(small.get(), 3));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  engine.SetSourceImage(source.get());
  EXPECT_FALSE(engine.Convolve(small.get(), 3));
  EXPECT_EQ(lx::kStatusDestination, engine.GetStatus());
  EXPECT_FALSE(engine.Convolve(bytes.get(), 3));
  EXPECT_EQ(lx::kStatusDestination, engine.GetStatus());
  EXPECT_FALSE(engine.Convolve(two.get(), 15));
  EXPECT_EQ(lx::kStatusChannels, engine.GetStatus());
  for (const std::uint32_t mask : {3U, 5U, 6U, 8U}) {
    EXPECT_FALSE(engine.Convolve(source.get(), mask)) << mask;
    EXPECT_EQ(lx::kStatusChannels, engine.GetStatus());
  }
}

TEST(Convolve, StoresZeroWhereThereIsNoNumber) {
  DefocusEngine engine;
  engine.BuildShapePsf(kWidth, kHeight, 5, 4, 4, 0, 6);  // an empty mask on a fresh engine
  const Image source = Noise(kWidth, kHeight);

  const Image dest = Blur(&engine, source);

  EXPECT_TRUE(std::all_of(Samples<std::uint16_t>(dest),
                          Samples<std::uint16_t>(dest) + lx_test::SampleCount(dest),
                          [](std::uint16_t v) { return v == 0; }));
}

TEST(Convolve, StoresZeroForAnEmphasisThatIsNoNumber) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  engine.SetEmphasis(std::numeric_limits<float>::quiet_NaN());

  const Image dest = Blur(&engine, Noise(kWidth, kHeight));

  EXPECT_EQ(0, Samples<std::uint16_t>(dest)[0]);
}

TEST(Convolve, CutsEachColourByItself) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  engine.SetEmphasis(2);
  const Image source = MakeImage(kWidth, kHeight, 4, 1);
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const std::uint16_t pixel[] = {65535, 0, 0, 65535};
    std::copy(pixel, pixel + 4, Samples<std::uint16_t>(source) + i * 4);
  }

  const Image dest = Blur(&engine, source);

  EXPECT_NEAR(65535, Samples<std::uint16_t>(dest)[0], 1);
  EXPECT_NEAR(0, Samples<std::uint16_t>(dest)[1], 1);
  EXPECT_NEAR(0, Samples<std::uint16_t>(dest)[2], 1);
}

TEST(Convolve, EmphasisesAlphaOnlyIfAsked) {
  const Image source = Noise(kWidth, kHeight);
  DefocusEngine plain;
  DefocusEngine curved;
  for (DefocusEngine* engine : {&plain, &curved}) {
    Load(engine, AsymmetricMask());
    engine->SetEmphasis(10);
  }
  curved.SetEmphasisAlpha(true);

  const Image plainDest = Blur(&plain, source);
  const Image curvedDest = Blur(&curved, source);

  lx_test::PsfModel psf(64, kWidth, kHeight);
  psf.Load(AsymmetricMask());
  ExpectChannel(lx_test::ConvolveChannel(source, 3, psf.Shifted()), plainDest, 3);
  // The curve is convex: emphasised alpha is drawn towards its bright neighbours.
  double difference = 0;
  for (int i = 0; i < kWidth * kHeight; ++i) {
    difference += Samples<std::uint16_t>(curvedDest)[i * 4 + 3] -
                  Samples<std::uint16_t>(plainDest)[i * 4 + 3];
  }
  EXPECT_GT(difference / (kWidth * kHeight), 1000);
}

// Luma by the constants of the colour transform, in 0..1, curved with g = 20 by its definition,
// blurred and curved back; chroma blurred as it is. The curve is written out here.
TEST(Convolve, CurvesLumaBeforeTheBlurAndBackAfterItAndChromaNever) {
  constexpr double kG = 20.0;
  constexpr double kA = 1.0 / kG;
  constexpr double kB = kG - kA;
  const auto hyperbola = [](double z) { return (1.0 / (z * kB + kA) - kA) / kB; };
  const Image source = Noise(kWidth, kHeight, 4, 15000, 50000);
  std::vector<double> curved;
  std::vector<double> red;
  std::vector<double> blue;
  std::vector<double> luma;
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const auto* p = Samples<std::uint16_t>(source) + i * 4;
    luma.push_back((0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2]) / 65535.0);
    curved.push_back(hyperbola(1.0 - luma.back()));
    // What is blurred of red and blue beside luma: their differences from it, blue by 0.98.
    red.push_back(p[0] / 65535.0 - luma.back());
    blue.push_back(0.98 * p[2] / 65535.0 - luma.back());
  }
  DefocusEngine engine;
  Load(&engine, AsymmetricMask());
  engine.SetEmphasis(static_cast<float>(kG));

  const Image dest = Blur(&engine, source);

  lx_test::PsfModel psf(64, kWidth, kHeight);
  psf.Load(AsymmetricMask());
  const auto blur = [&](const std::vector<double>& plane) {
    return lx_test::ConvolvePlane(plane, kWidth, kHeight, psf.Shifted());
  };
  const std::vector<double> blurred = blur(curved);
  const std::vector<double> redShift = blur(red);
  const std::vector<double> blueShift = blur(blue);
  for (int i = 0; i < kWidth * kHeight; ++i) {
    const double y = 1.0 - hyperbola(blurred[i]);
    const auto* p = Samples<std::uint16_t>(dest) + i * 4;
    ASSERT_NEAR((y + redShift[i]) * 65535.0, p[0], 1) << i;
    ASSERT_NEAR((y + blueShift[i]) / 0.98 * 65535.0, p[2], 1) << i;
  }
}

// Up to 1 nothing is curved, and nothing is cut before the colours come back: a luma that the
// blur of one plane alone would cut still gives its colours.
TEST(Convolve, IsThePlainBlurUpToAnEmphasisOfOne) {
  const Image source = Noise(kWidth, kHeight);
  DefocusEngine plain;
  Load(&plain, AsymmetricMask());
  const Image expected = Blur(&plain, source);
  for (const float g : {0.5F, 1.F, 1.0005F}) {
    DefocusEngine engine;
    Load(&engine, AsymmetricMask());
    engine.SetEmphasis(g);
    const Image dest = Blur(&engine, source);
    EXPECT_TRUE(std::equal(Samples<std::uint16_t>(expected),
                           Samples<std::uint16_t>(expected) + lx_test::SampleCount(expected),
                           Samples<std::uint16_t>(dest)))
        << g;
  }
}

// Margins repeat what the curve makes of the edge: a constant border, emphasised, stays what
// it is, whatever lies inside.
TEST(Convolve, RepeatsTheEdgeAfterTheCurve) {
  DefocusEngine engine;
  engine.SetEmphasis(20);
  engine.BuildShapePsf(40, 40, 1, 4, 4, 0, 6);
  const Image source = MakeImage(40, 40, 4, 1);
  for (int y = 0; y < 40; ++y) {
    for (int x = 0; x < 40; ++x) {
      const bool border = x < 12 || y < 12 || x >= 28 || y >= 28;
      std::fill_n(Samples<std::uint16_t>(source) + (y * 40 + x) * 4, 4,
                  static_cast<std::uint16_t>(border ? 20000 : 60000));
    }
  }

  const Image dest = Blur(&engine, source);

  for (int k = 0; k < 40; ++k) {
    EXPECT_NEAR(20000, Samples<std::uint16_t>(dest)[k * 4], 1);
    EXPECT_NEAR(20000, Samples<std::uint16_t>(dest)[(39 * 40 + k) * 4 + 1], 1);
  }
}

// The plane that the colour transform makes of one pixel.
TEST(Convolve, MakesItsPlanesWithTheTransformsConstants) {
  DefocusEngine engine;
  LoadImpulse(&engine, 8, 8, 4, 4);
  const Image source = MakeImage(8, 8, 4, 1);
  for (int i = 0; i < 64; ++i) {
    const std::uint16_t pixel[] = {60000, 30000, 10000, 65535};
    std::copy(pixel, pixel + 4, Samples<std::uint16_t>(source) + i * 4);
  }

  Blur(&engine, source);

  const double r = 60000 / 65535.0;
  const double g = 30000 / 65535.0;
  const double b = 10000 / 65535.0;
  const int n = Inside(engine).paddedWidth();
  const std::size_t at =
      static_cast<std::size_t>(Inside(engine).offsetY()) * n + Inside(engine).offsetX();
  EXPECT_NEAR(0.299 * r + 0.587 * g + 0.114 * b, Inside(engine).lumaResult()[at] / (n * n), 1e-7);
  EXPECT_NEAR(0.5 * r - 0.418688 * g - 0.081312 * b + 0.5, Inside(engine).crResult()[at] / (n * n),
              1e-7);
  EXPECT_NEAR(-0.213267 * r - 0.418688 * g + 0.617689 * b + 0.5,
              Inside(engine).cbResult()[at] / (n * n), 1e-7);
}

TEST(Convolve, RoundsBytesToTheNearest) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  const Image source = MakeImage(kWidth, kHeight, 4, 0);
  std::mt19937 random(2);
  for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
    Samples<std::uint8_t>(source)[i] = static_cast<std::uint8_t>(random());
  }

  const Image dest = Blur(&engine, source);

  EXPECT_EQ(0, std::memcmp(source->data, dest->data, lx_test::SampleCount(source)));
}

TEST(Convolve, Takes32BitLumaFromThreeBytesAndStores16BitsOfAlpha) {
  DefocusEngine engine;
  LoadImpulse(&engine, 8, 8, 4, 4);
  const Image source = MakeImage(8, 8, 4, 2);
  for (int i = 0; i < 64; ++i) {
    const std::uint32_t pixel[] = {0x80FF4020U, 0x90000000U, 0xA0000000U, 0xFFFFFFFFU};
    std::copy(pixel, pixel + 4, Samples<std::uint32_t>(source) + i * 4);
  }

  const Image dest = Blur(&engine, source);

  const int n = Inside(engine).paddedWidth();
  const std::size_t at =
      static_cast<std::size_t>(Inside(engine).offsetY()) * n + Inside(engine).offsetX();
  const double bytes = 0.299 * 0x20 + 0.587 * 0x40 + 0.114 * 0xFF;
  EXPECT_NEAR(bytes / 4294967295.0, Inside(engine).lumaResult()[at] / (n * n), 1e-12);
  const double cr =
      (0.5 * 0x80FF4020U - 0.418688 * 0x90000000U - 0.081312 * 0xA0000000U) / 4294967295.0 + 0.5;
  EXPECT_NEAR(cr, Inside(engine).crResult()[at] / (n * n), 1e-6);
  EXPECT_LT(Samples<std::uint32_t>(dest)[3], 65536U);
}

TEST(Convolve, LeavesFloatImagesAndSaysTrue) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  const Image source = MakeImage(kWidth, kHeight, 4, 3);
  lx_test::Fill<float>(source, 0.5F);

  const Image dest = Blur(&engine, source);

  EXPECT_EQ(0x55, static_cast<std::uint8_t*>(dest->data)[0]);
}

TEST(Convolve, WritesIntoItsOwnSource) {
  DefocusEngine engine;
  Load(&engine, AsymmetricMask());
  const Image source = Noise(kWidth, kHeight);
  const Image dest = Blur(&engine, source);

  EXPECT_TRUE(engine.Convolve(source.get(), 15));

  EXPECT_EQ(0, std::memcmp(dest->data, source->data, kWidth * kHeight * 8));
}

TEST(Convolve, UsesFourPlanesOfAnImageWithMore) {
  DefocusEngine engine;
  LoadImpulse(&engine, kWidth, kHeight, 12, 10);
  const Image source = Noise(kWidth, kHeight, 5);

  const Image dest = Blur(&engine, source, 0xFFFFFFFFU);

  EXPECT_NEAR(Samples<std::uint16_t>(source)[3], Samples<std::uint16_t>(dest)[3], 1);
  EXPECT_EQ(0x5555, Samples<std::uint16_t>(dest)[4]);
}

}  // namespace
