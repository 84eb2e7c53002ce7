// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/divided_passes.h"
#include "tests/support/engine_inside.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"
#include "tests/support/kernel_model.h"

namespace {

using lx::DefocusEngine;
using lx_test::ComplexGrid;
using lx_test::Image;
using lx_test::Inside;
using lx_test::KernelModel;
using lx_test::kFrameHeight;
using lx_test::kFrameMargin;
using lx_test::kFrameWidth;
using lx_test::kGridHeight;
using lx_test::kGridWidth;
using lx_test::kPixels;
using lx_test::LoadMask;
using lx_test::MakeImage;
using lx_test::MaskValues;
using lx_test::NoiseFrame;
using lx_test::Samples;
using lx_test::SpotMask;

using Planes = std::vector<std::vector<double>>;

// The emphasis curve for g from above 1 to 50, a hyperbola in 1 - x.
double Curve(double x, double g) {
  if (g <= 1.0) {
    return x;
  }
  const double a = 1.0 / g;
  const double b = g - a;
  return (1.0 / ((1.0 - x) * b + a) - a) / b;
}

double Uncurve(double y, double g) {
  if (g <= 1.0) {
    return y;
  }
  const double a = 1.0 / g;
  const double b = g - a;
  return 1.0 - (1.0 / (std::clamp(y, 0.0, 1.0) * b + a) - a) / b;
}

// Luma, Cr, Cb and alpha of a picture, in 0 to 1. Of 32 bits luma takes the low three bytes of
// the first sample.
Planes PlanesOf(const Image& image, double g = 0.0, double alphaG = 0.0) {
  constexpr double kScales[] = {0.00392156862745098, 1.5259021896696422e-05,
                                2.3283064365386963e-10};
  const double scale = kScales[image->sampleType];
  Planes planes(4);
  for (int i = 0; i < image->width * image->height; ++i) {
    double p[4] = {};
    for (int c = 0; c < std::min<int>(4, image->channels); ++c) {
      p[c] = scale * lx_test::SampleAt(image, static_cast<std::size_t>(i) * image->channels + c);
    }
    double l[3] = {p[0], p[1], p[2]};
    if (image->sampleType == lx::kSampleU32) {
      const std::uint32_t word = Samples<std::uint32_t>(image)[i * image->channels];
      for (int c = 0; c < 3; ++c) {
        l[c] = scale * (word >> (8 * c) & 0xFFU);
      }
    }
    planes[0].push_back(Curve(
        0.11400000005960464 * l[2] + 0.5870000123977661 * l[1] + 0.29899999499320984 * l[0], g));
    planes[1].push_back(0.5 * p[0] - 0.41868799924850464 * p[1] - 0.08131200075149536 * p[2] + 0.5);
    planes[2].push_back(-0.2132669985294342 * p[0] - 0.41868799924850464 * p[1] +
                        0.6176890134811401 * p[2] + 0.5);
    planes[3].push_back(Curve(p[3], alphaG));
  }
  return planes;
}

// A pixel's red, green, blue and alpha in 0 to 1.
std::vector<double> ColourOf(const Planes& planes, std::size_t i, double g = 0.0,
                             double alphaG = 0.0) {
  const double y = Uncurve(planes[0][i], g);
  const double cr = planes[1][i] - 0.5;
  const double cb = planes[2][i] - 0.5;
  std::vector<double> colour{
      y + 1.4019999504089355 * cr,
      0.9960359930992126 * y - 0.714136004447937 * cr - 0.27783599495887756 * cb,
      1.020408034324646 * y + 1.4306119680404663 * cb, Uncurve(planes[3][i], alphaG)};
  for (double& value : colour) {
    value = std::clamp(value, 0.0, 1.0);
  }
  return colour;
}

// How far off a colour may be, in 0 to 1, where a plane may be off by tolerance.
//
// Without emphasis planes go into a colour with factors whose sum is below 3, and six operations on
// the way in and out round to 6e-8 in single precision.
//
// The curve's inverse has the slope 1 / (y b + a)^2 at y, g^2 at 0: that lifts the plane's error.
// The curve itself lifts the rounding of the luma that goes into it by (y b + a)^2. Blurred, that
// is at most g (y b + a), so that g / (y b + a) is left of it behind the inverse.
double ColourTolerance(std::int32_t mode, double tolerance, double y, double g) {
  const double rounding = mode == lx::kModeKernelF32 ? 6 * 6e-8 : 6 * 1.2e-16;
  if (g <= 1.0) {
    return 3.0 * tolerance + rounding;
  }
  const double a = 1.0 / g;
  const double b = g - a;
  const double reach = std::clamp(y - tolerance, 0.0, 1.0) * b + a;
  return 1.0204 * (tolerance / (reach * reach) + rounding * g / reach) + 2.0 * tolerance + rounding;
}

// An engine and its model, which go through the same loads and runs.
struct Pair {
  explicit Pair(std::int32_t mode) : engine(mode) {}

  void Load(const std::vector<std::uint8_t>& mask) {
    ASSERT_TRUE(LoadMask(&engine, mask));
    model.Load(MaskValues(mask));
  }

  // The planes of the last run against the model's. Alpha's stays in the work grid.
  void ExpectPlanes(const Planes& expected, double tolerance) const {
    const void* grids[] = {Inside(engine).kernelLuma(), Inside(engine).kernelCr(),
                           Inside(engine).kernelCb(), Inside(engine).kernelWork()};
    for (std::size_t c = 0; c < expected.size(); ++c) {
      const ComplexGrid grid = lx_test::GridOf(engine, grids[c]);
      for (int i = 0; i < kPixels; ++i) {
        const int x = i % kFrameWidth;
        const int y = i / kFrameWidth;
        ASSERT_NEAR(expected[c][i], grid.At(model.left + x, model.top + y).real(), tolerance)
            << "plane " << c << " at " << x << "," << y;
      }
    }
  }

  // A picture against the colours of planes, to the nearest step.
  void ExpectPicture(const Planes& planes, const Image& got, double g, double alphaG = 0.0) const {
    const double largest = lx_test::LargestSample(got->sampleType);
    const double tolerance = model.Tolerance(Inside(engine).engineMode());
    for (std::size_t i = 0; i < kPixels; ++i) {
      const std::vector<double> colour = ColourOf(planes, i, g, alphaG);
      for (std::size_t c = 0; c < 4; ++c) {
        const double noise =
            c == 3 ? ColourTolerance(Inside(engine).engineMode(), tolerance, planes[3][i], alphaG)
                   : ColourTolerance(Inside(engine).engineMode(), tolerance, planes[0][i], g);
        ASSERT_NEAR(colour[c] * largest, lx_test::SampleAt(got, i * 4 + c), 0.5 + largest * noise)
            << "pixel " << i % kFrameWidth << "," << i / kFrameWidth << " channel " << c;
      }
    }
  }

  // All values of a run times a factor, which brings them out of their range.
  void ScaleSpectrum(double factor) {
    ComplexGrid spectrum = lx_test::GridOf(engine, Inside(engine).kernelPsf());
    for (auto& value : spectrum.values) {
      value *= factor;
    }
    lx_test::SetGrid(engine, Inside(engine).kernelPsf(), spectrum);
  }

  DefocusEngine engine;
  KernelModel model{kFrameWidth, kFrameHeight, kFrameMargin};
};

Image MarkedLike(const Image& source) {
  Image dest = MakeImage(source->width, source->height, source->channels, source->sampleType);
  std::fill_n(Samples<std::uint8_t>(dest), lx_test::SampleCount(dest) * dest->elementBytes,
              std::uint8_t{0x55});
  return dest;
}

bool IsMarked(const Image& image) { return lx_test::SameSamples(image, MarkedLike(image)); }

Image Blur(DefocusEngine* engine, const Image& source, std::uint32_t mask = 15) {
  Image dest = MarkedLike(source);
  EXPECT_TRUE(engine->SetSourceImage(source.get()));
  EXPECT_TRUE(engine->Convolve(dest.get(), mask));
  return dest;
}

class KernelConvolve : public testing::TestWithParam<std::int32_t> {};

INSTANTIATE_TEST_SUITE_P(Modes, KernelConvolve,
                         testing::Values(lx::kModeKernelF32, lx::kModeKernelF64),
                         lx_test::ModeName);

TEST_P(KernelConvolve, MatchesDirectSumsInEveryPlane) {
  for (const std::int32_t edgeMode : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    for (const std::uint32_t type : {lx::kSampleU8, lx::kSampleU16, lx::kSampleU32}) {
      Pair pair(GetParam());
      pair.Load(SpotMask(1));
      pair.engine.SetEdgeMode(edgeMode);
      const Image source = NoiseFrame(type, 3);

      Blur(&pair.engine, source);

      SCOPED_TRACE(testing::Message() << "type " << type << " edge " << edgeMode);
      pair.ExpectPlanes(pair.model.RunPicture(PlanesOf(source), edgeMode),
                        pair.model.Tolerance(GetParam()));
    }
  }
}

TEST_P(KernelConvolve, MatchesTheModelToTheNearestStep) {
  for (const std::uint32_t type : {lx::kSampleU8, lx::kSampleU16}) {
    for (const float g : {0.F, 10.F}) {
      Pair pair(GetParam());
      pair.Load(SpotMask(1));
      pair.engine.SetEmphasis(g);
      const Image source = NoiseFrame(type, 3);

      const Image dest = Blur(&pair.engine, source);

      SCOPED_TRACE(testing::Message() << "type " << type << " emphasis " << g);
      pair.ExpectPicture(pair.model.RunPicture(PlanesOf(source, g), lx::kEdgeReplicate), dest, g);
    }
  }
}

TEST_P(KernelConvolve, EmphasisesAlphaOnlyIfAsked) {
  for (const bool asked : {false, true}) {
    const double alphaG = asked ? 10.0 : 0.0;
    Pair pair(GetParam());
    pair.Load(SpotMask(1));
    pair.engine.SetEmphasis(10.0F);
    pair.engine.SetEmphasisAlpha(asked);
    const Image source = NoiseFrame(lx::kSampleU16, 3);

    const Image dest = Blur(&pair.engine, source);

    SCOPED_TRACE(asked);
    pair.ExpectPicture(pair.model.RunPicture(PlanesOf(source, 10.0, alphaG), lx::kEdgeReplicate),
                       dest, 10.0, alphaG);
  }
}

// The library's grid is square, and its PSF's scale double: neither may show. Two roundings to
// the nearest step may fall apart where the values agree to any precision.
TEST_P(KernelConvolve, AgreesWithTheLibraryToOneStepWithoutEmphasis) {
  for (const std::uint32_t type : {lx::kSampleU8, lx::kSampleU16}) {
    const Image source = NoiseFrame(type, 3);
    DefocusEngine kernel(GetParam());
    DefocusEngine library(lx::kModeFftw);
    LoadMask(&kernel, SpotMask(1));
    LoadMask(&library, SpotMask(1));
    ASSERT_NE(Inside(library).paddedHeight(), Inside(kernel).paddedHeight());

    const Image got = Blur(&kernel, source);
    const Image expected = Blur(&library, source);

    for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
      ASSERT_NEAR(lx_test::SampleAt(expected, i), lx_test::SampleAt(got, i), 1.0)
          << "type " << type << " sample " << i;
    }
  }
}

// One half of the frame is black and the other white, or nearly: the white half sets the rounding
// of the plane, and at black the curve's inverse is steepest. In double one step is still enough,
// and in single precision a step of 8 bits. 16 bits get what the slope g * g makes of the
// rounding: of 10 up to ten steps at black, and one in the light.
TEST_P(KernelConvolve, AgreesWithTheLibraryUnderEmphasisAsFarAsTheSlopeAtBlackLetsIt) {
  constexpr float kG = 10.0F;
  for (const std::uint32_t type : {lx::kSampleU8, lx::kSampleU16}) {
    const Image source = NoiseFrame(type, 3, 0.9, 1.0);
    const Image dark = NoiseFrame(type, 4, 0.0, 0.01);
    for (int y = 0; y < kFrameHeight; ++y) {
      for (int i = 0; i < kFrameWidth / 2 * 4; ++i) {
        const std::size_t at = static_cast<std::size_t>(y) * kFrameWidth * 4 + i;
        lx_test::SetSample(source, at, lx_test::SampleAt(dark, at));
      }
    }
    Pair pair(GetParam());
    DefocusEngine library(lx::kModeFftw);
    pair.Load(SpotMask(1));
    LoadMask(&library, SpotMask(1));
    pair.engine.SetEmphasis(kG);
    library.SetEmphasis(kG);

    const Image got = Blur(&pair.engine, source);
    const Image expected = Blur(&library, source);

    const Planes planes = pair.model.RunPicture(PlanesOf(source, kG), lx::kEdgeReplicate);
    const double largest = lx_test::LargestSample(type);
    double widest = 0.0;
    for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
      const double noise = largest * ColourTolerance(GetParam(), pair.model.Tolerance(GetParam()),
                                                     planes[0][i / 4], i % 4 == 3 ? 0.0 : kG);
      widest = std::max(widest, noise);
      // Whole numbers: a difference of less than a step and the noise.
      ASSERT_LT(std::abs(lx_test::SampleAt(expected, i) - lx_test::SampleAt(got, i)), 1.0 + noise)
          << "type " << type << " sample " << i;
    }
    EXPECT_LT(widest, GetParam() == lx::kModeKernelF32 && type == lx::kSampleU16 ? 10.0 : 0.1);
  }
}

TEST_P(KernelConvolve, IsThePlainBlurUpToAnEmphasisOfOne) {
  const Image source = NoiseFrame(lx::kSampleU16, 3);
  Pair plain(GetParam());
  plain.Load(SpotMask(1));
  const Image expected = Blur(&plain.engine, source);
  for (const float g : {0.5F, 1.F, 1.0005F}) {
    Pair pair(GetParam());
    pair.Load(SpotMask(1));
    pair.engine.SetEmphasis(g);
    EXPECT_TRUE(lx_test::SameSamples(expected, Blur(&pair.engine, source))) << g;
  }
}

// Of 32 bits luma is read from the low bytes of one sample, colours are scaled by one more than
// their largest number, and alpha keeps the low half of its own.
TEST(KernelConvolveInDouble, Stores32BitsWithALimitOneTooHighAndHalfOfAlpha) {
  Pair pair(lx::kModeKernelF64);
  pair.Load(SpotMask(1));
  const Image source = NoiseFrame(lx::kSampleU32, 3, 0.2, 0.8);

  const Image dest = Blur(&pair.engine, source);

  const Planes planes = pair.model.RunPicture(PlanesOf(source), lx::kEdgeReplicate);
  const auto* samples = Samples<std::uint32_t>(dest);
  for (std::size_t i = 0; i < kPixels; ++i) {
    const std::vector<double> colour = ColourOf(planes, i);
    for (std::size_t c = 0; c < 3; ++c) {
      // 4e9 times some 1e-13 of the transforms.
      ASSERT_NEAR(colour[c] * 4294967296.0, samples[i * 4 + c], 0.51) << i << " channel " << c;
    }
    const double alpha = colour[3] * 4294967296.0 - samples[i * 4 + 3];
    ASSERT_LT(samples[i * 4 + 3], 65536U) << i;
    ASSERT_NEAR(0.0, std::remainder(alpha, 65536.0), 0.51) << i;
  }
}

// Brightened, so that red of a red frame and alpha are cut to exactly 1.
TEST_P(KernelConvolve, WrapsAFullWhiteOf32BitsToZero) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  pair.ScaleSpectrum(2.0);
  const Image source = MakeImage(kFrameWidth, kFrameHeight, 4, lx::kSampleU32);
  for (int i = 0; i < kPixels; ++i) {
    const std::uint32_t pixel[] = {0xFFFFFFFFU, 0U, 0U, 0xFFFFFFFFU};
    std::copy(pixel, pixel + 4, Samples<std::uint32_t>(source) + i * 4);
  }

  const Image dest = Blur(&pair.engine, source);

  // Cr is 2 * 1 - 0.5 above its middle, which 1.402 brings over 1.
  for (int i = 0; i < kPixels; ++i) {
    ASSERT_EQ(0U, Samples<std::uint32_t>(dest)[i * 4]) << i;
    ASSERT_EQ(0U, Samples<std::uint32_t>(dest)[i * 4 + 3]) << i;
  }
}

TEST_P(KernelConvolve, CutsEachColourToItsRange) {
  struct {
    double factor;
    int red;
    int alpha;
  } const cases[] = {{3.0, 65535, 65535}, {-1.0, 0, 0}};
  for (const auto& one : cases) {
    Pair pair(GetParam());
    pair.Load(SpotMask(1));
    pair.ScaleSpectrum(one.factor);

    // Of 3: luma is 1.5 at least, Cr 1 above its middle; of -1: luma is negative, Cr 1 below.
    const Image dest = Blur(&pair.engine, NoiseFrame(lx::kSampleU16, 3, 0.5, 1.0));

    EXPECT_EQ(one.red, Samples<std::uint16_t>(dest)[0]);
    EXPECT_EQ(one.alpha, Samples<std::uint16_t>(dest)[3]);
  }
}

// What the forward pass finds, plane by plane, when margins are not repeated.
TEST_P(KernelConvolve, PadsChromaWithAHalfAndTheOthersWithZero) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  pair.engine.SetEdgeMode(lx::kEdgeZero);
  lx_test::DividedPasses passes;
  passes.Attach(&pair.engine);
  const double margins[] = {0.0, 0.5, 0.5, 0.0};
  passes.onBegin = [&](int pass) {
    if (pass % 6 != 1) {
      return;
    }
    const ComplexGrid grid = lx_test::GridOf(pair.engine, Inside(pair.engine).kernelWork());
    for (int y = 0; y < kGridHeight; ++y) {
      for (int x = 0; x < kGridWidth; ++x) {
        if (x < pair.model.left || x >= pair.model.left + kFrameWidth || y < pair.model.top ||
            y >= pair.model.top + kFrameHeight) {
          ASSERT_EQ(margins[pass / 6], grid.At(x, y).real())
              << "plane " << pass / 6 << " at " << x << "," << y;
        }
      }
    }
  };

  Blur(&pair.engine, NoiseFrame(lx::kSampleU16, 3));

  EXPECT_EQ(25U, passes.counts.size());
}

TEST_P(KernelConvolve, KeepsTheColourOfGreyAtBordersThatGoDark) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  pair.engine.SetEdgeMode(lx::kEdgeZero);
  const Image source = MakeImage(kFrameWidth, kFrameHeight, 4, lx::kSampleU16);
  lx_test::Fill<std::uint16_t>(source, 40000);

  const Image dest = Blur(&pair.engine, source);

  // Red is luma where Cr is neutral, which it is for grey inside and outside.
  const auto* corner = Samples<std::uint16_t>(dest);
  EXPECT_LT(corner[0], 30000);
  EXPECT_NEAR(corner[3], corner[0], 1);
}

// Numbers that stand in the grid before a run show what the input passes write.
TEST_P(KernelConvolve, WritesRealSamplesAndRepeatsThemWithTheirImaginaryParts) {
  for (const std::int32_t edgeMode : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    Pair pair(GetParam());
    pair.Load(SpotMask(1));
    pair.engine.SetEdgeMode(edgeMode);
    ComplexGrid marked(kGridWidth, kGridHeight);
    std::fill(marked.values.begin(), marked.values.end(), std::complex<double>(7.0, 9.0));
    lx_test::SetGrid(pair.engine, Inside(pair.engine).kernelWork(), marked);
    const Image source = NoiseFrame(lx::kSampleU16, 3);
    const std::vector<double> luma = PlanesOf(source)[0];
    lx_test::DividedPasses passes;
    passes.Attach(&pair.engine);
    passes.onBegin = [&](int pass) {
      if (pass != 1) {
        return;
      }
      const ComplexGrid grid = lx_test::GridOf(pair.engine, Inside(pair.engine).kernelWork());
      for (int y = 0; y < kGridHeight; ++y) {
        for (int x = 0; x < kGridWidth; ++x) {
          const int sx = std::clamp(x - pair.model.left, 0, kFrameWidth - 1);
          const int sy = std::clamp(y - pair.model.top, 0, kFrameHeight - 1);
          const bool inside = sx == x - pair.model.left && sy == y - pair.model.top;
          const std::complex<double> expected = inside || edgeMode == lx::kEdgeReplicate
                                                    ? luma[sy * kFrameWidth + sx]
                                                    : marked.At(0, 0);
          // Three products and two sums of single precision.
          ASSERT_NEAR(expected.real(), grid.At(x, y).real(), 3e-7) << x << "," << y;
          ASSERT_EQ(expected.imag(), grid.At(x, y).imag()) << x << "," << y;
        }
      }
    };

    Blur(&pair.engine, source);
  }
}

// A PSF that inherits a spectrum is complex, and so is what it makes of a plane. Between luma and
// Cr only real parts are reset; Cb and alpha start from a grid of zeros.
TEST_P(KernelConvolve, ClearsTheWorkGridAfterBothChromaPlanesOnly) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1, 4));
  pair.Load(SpotMask(2, 4));
  pair.engine.SetEdgeMode(lx::kEdgeZero);
  lx_test::DividedPasses passes;
  passes.Attach(&pair.engine);
  double leftOfLuma = 0.0;
  passes.onBegin = [&](int pass) {
    const ComplexGrid grid = lx_test::GridOf(pair.engine, Inside(pair.engine).kernelWork());
    if (pass == 6) {  // Cr's input
      for (const auto& value : grid.values) {
        EXPECT_EQ(0.5, value.real());
        leftOfLuma = std::max(leftOfLuma, std::abs(value.imag()));
      }
    }
    if (pass == 12 || pass == 18) {  // Cb's and alpha's
      ComplexGrid expected(kGridWidth, kGridHeight);
      std::fill(expected.values.begin(), expected.values.end(), pass == 12 ? 0.5 : 0.0);
      EXPECT_EQ(expected.values, grid.values) << "pass " << pass;
    }
  };

  Blur(&pair.engine, NoiseFrame(lx::kSampleU16, 3));

  EXPECT_GT(leftOfLuma, 1e-3);
}

// What runs through a PSF that inherits a spectrum may be off by: the PSF is off twice and may be
// larger than 1, and what it makes of one plane goes through it again.
double ResidueTolerance(const KernelModel& model, std::int32_t mode) {
  double gain = 0.0;
  for (const auto& value : model.psf.values) {
    gain = std::max(gain, std::abs(value) * kGridWidth * kGridHeight);
  }
  return 3.0 * model.Tolerance(mode) * gain * gain;
}

// What a pass does not write shows what the grid held: for Cr the result of luma, imaginary parts
// and all, and zeros for Cb and alpha.
TEST_P(KernelConvolve, FindsZerosUnderACancelledPlaneButUnderCr) {
  for (int plane = 1; plane < 4; ++plane) {
    for (const int rows : {0, 3}) {
      Pair pair(GetParam());
      pair.Load(SpotMask(1, 4));
      pair.Load(SpotMask(2, 4));
      const Image source = NoiseFrame(lx::kSampleU16, 3);
      lx_test::PollCounter counter(plane * (8 + 16 + 32 + 16 + 16 + 32) + rows, true);
      counter.Attach(&pair.engine);

      Blur(&pair.engine, source);

      SCOPED_TRACE(testing::Message() << "plane " << plane << " rows " << rows);
      pair.ExpectPlanes(pair.model.RunPicture(PlanesOf(source), lx::kEdgeReplicate, plane, rows),
                        ResidueTolerance(pair.model, GetParam()));
    }
  }
}

// With margins of zero Cr meets luma's imaginary parts there, and luma the alpha of the frame
// before.
TEST_P(KernelConvolve, CarriesAResidueInMarginsOfZeroFromFrameToFrame) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1, 4));
  pair.Load(SpotMask(2, 4));
  pair.engine.SetEdgeMode(lx::kEdgeZero);
  const double tolerance = ResidueTolerance(pair.model, GetParam());
  Planes first;
  for (int frame = 0; frame < 2; ++frame) {
    const Image source = NoiseFrame(lx::kSampleU16, 3);

    Blur(&pair.engine, source);

    SCOPED_TRACE(frame);
    const Planes expected = pair.model.RunPicture(PlanesOf(source), lx::kEdgeZero);
    pair.ExpectPlanes(expected, tolerance);
    if (frame == 0) {
      first = expected;
    } else {
      // The frames are the same, and yet luma is another one.
      EXPECT_GT(std::abs(expected[0][0] - first[0][0]), 10.0 * tolerance);
    }
  }
}

TEST_P(KernelConvolve, LeavesNothingForTheNextFrameWithoutAlpha) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  pair.engine.SetEdgeMode(lx::kEdgeZero);
  const Image source = NoiseFrame(lx::kSampleU16, 3);

  const Image first = Blur(&pair.engine, source, 7);

  EXPECT_TRUE(lx_test::SameSamples(first, Blur(&pair.engine, source, 7)));
  pair.engine.SetEdgeMode(lx::kEdgeReplicate);
  Blur(&pair.engine, source, 7);
  pair.engine.SetEdgeMode(lx::kEdgeZero);
  EXPECT_TRUE(lx_test::SameSamples(first, Blur(&pair.engine, source, 7)));
}

TEST_P(KernelConvolve, LeavesAlphaAsItIsWithoutItsBitOrChannel) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  const Image source = NoiseFrame(lx::kSampleU16, 3);
  const Image whole = Blur(&pair.engine, source, 15);

  const Image without = Blur(&pair.engine, source, 7);
  const Image three = MakeImage(kFrameWidth, kFrameHeight, 3, lx::kSampleU16);
  EXPECT_TRUE(pair.engine.Convolve(three.get(), 15));

  for (std::size_t i = 0; i < kPixels; ++i) {
    for (std::size_t c = 0; c < 3; ++c) {
      const int expected = Samples<std::uint16_t>(whole)[i * 4 + c];
      ASSERT_EQ(expected, Samples<std::uint16_t>(without)[i * 4 + c]) << i;
      ASSERT_EQ(expected, Samples<std::uint16_t>(three)[i * 3 + c]) << i;
    }
    ASSERT_EQ(0x5555, Samples<std::uint16_t>(without)[i * 4 + 3]) << i;
  }
}

TEST_P(KernelConvolve, WritesIntoItsOwnSource) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  const Image source = NoiseFrame(lx::kSampleU16, 3);
  const Image expected = Blur(&pair.engine, source);

  EXPECT_TRUE(pair.engine.Convolve(source.get(), 15));

  EXPECT_TRUE(lx_test::SameSamples(expected, source));
}

// Of sides that differ by much too.
TEST_P(KernelConvolve, GivesAnEvenFrameBackForAnImpulseInItsMiddle) {
  struct {
    int width, height;
  } const cases[] = {{kFrameWidth, kFrameHeight}, {600, 2}, {2, 300}};
  for (const auto& one : cases) {
    DefocusEngine engine(GetParam());
    ASSERT_TRUE(lx_test::LoadImpulse(&engine, one.width, one.height));
    const Image source = lx_test::NoiseImage(one.width, one.height, 4, lx::kSampleU16, 3);

    const Image dest = Blur(&engine, source);

    for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
      ASSERT_NEAR(Samples<std::uint16_t>(source)[i], Samples<std::uint16_t>(dest)[i], 1)
          << one.width << "x" << one.height << " sample " << i;
    }
  }
}

// Of an odd side the middle of the grid is the pixel after the frame's.
TEST_P(KernelConvolve, MovesAnOddFrameByAPixelOnEitherSide) {
  constexpr int kWidth = 17;
  constexpr int kHeight = 7;
  DefocusEngine engine(GetParam());
  lx_test::LoadImpulse(&engine, kWidth, kHeight);
  ASSERT_EQ(32, Inside(engine).paddedWidth());
  ASSERT_EQ(16, Inside(engine).paddedHeight());
  const Image source = lx_test::NoiseImage(kWidth, kHeight, 4, lx::kSampleU16, 3);

  const Image dest = Blur(&engine, source);

  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const int from = std::min(y + 1, kHeight - 1) * kWidth + std::min(x + 1, kWidth - 1);
      for (int c = 0; c < 4; ++c) {
        ASSERT_NEAR(Samples<std::uint16_t>(source)[from * 4 + c],
                    Samples<std::uint16_t>(dest)[(y * kWidth + x) * 4 + c], 1)
            << x << "," << y;
      }
    }
  }
}

TEST_P(KernelConvolve, ChecksPsfThenDestinationThenFloatThenChannels) {
  DefocusEngine engine(GetParam());
  const Image source = MakeImage(kFrameWidth, kFrameHeight, 2, lx::kSampleFloat);
  lx_test::Fill<float>(source, 0.5F);
  const Image small = MakeImage(5, 5, 2, lx::kSampleFloat);
  const Image words = NoiseFrame(lx::kSampleU16, 3, 0.0, 1.0, 2);
  const Image frame = NoiseFrame(lx::kSampleU16, 3);
  struct {
    const Image& source;
    const Image& dest;
    std::uint32_t mask;
    std::int32_t status;
  } const cases[] = {
      {source, small, 3, lx::kStatusDestination}, {source, words, 3, lx::kStatusDestination},
      {words, source, 3, lx::kStatusDestination}, {source, source, 3, lx::kStatusFloatImage},
      {words, words, 15, lx::kStatusChannels},    {frame, words, 15, lx::kStatusChannels},
      {frame, frame, 3, lx::kStatusChannels},     {frame, frame, 5, lx::kStatusChannels},
      {frame, frame, 14, lx::kStatusChannels}};

  EXPECT_FALSE(engine.Convolve(small.get(), 3));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  LoadMask(&engine, SpotMask(1));
  EXPECT_FALSE(engine.Convolve(small.get(), 3));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  for (const auto& one : cases) {
    ASSERT_TRUE(engine.SetSourceImage(one.source.get()));
    EXPECT_FALSE(engine.Convolve(one.dest.get(), one.mask)) << one.mask;
    EXPECT_EQ(one.status, engine.GetStatus()) << one.mask;
  }
  EXPECT_EQ(nullptr, Inside(engine).kernelLuma());
}

TEST_P(KernelConvolve, RunsSixPassesPerPlaneAndOneForTheOutput) {
  for (const std::uint32_t mask : {7U, 15U}) {
    Pair pair(GetParam());
    pair.Load(SpotMask(1));
    lx_test::DividedPasses passes;
    passes.Attach(&pair.engine);

    Blur(&pair.engine, NoiseFrame(lx::kSampleU16, 3), mask);

    std::vector<int> expected;
    for (int plane = 0; plane < (mask == 7 ? 3 : 4); ++plane) {
      // Rows of the source, rows and columns of the grid forwards, its rows multiplied, rows and
      // columns back.
      for (const int count : {8, 16, 32, 16, 16, 32}) {
        expected.push_back(count);
      }
    }
    expected.push_back(8);
    EXPECT_EQ(expected, passes.counts);
  }
}

TEST_P(KernelConvolve, GivesTheSameBitsHoweverLinesAreDivided) {
  const Image source = NoiseFrame(lx::kSampleU16, 3);
  Pair inLine(GetParam());
  inLine.Load(SpotMask(1));
  inLine.engine.SetEmphasis(10.0F);
  const Image expected = Blur(&inLine.engine, source);
  for (const int ways : {1, 2, 7, 33}) {
    for (const bool onThreads : {false, true}) {
      lx_test::DividedPasses passes(ways, onThreads);
      DefocusEngine engine(GetParam());
      passes.Attach(&engine);
      LoadMask(&engine, SpotMask(1));
      engine.SetEmphasis(10.0F);
      EXPECT_TRUE(lx_test::SameSamples(expected, Blur(&engine, source))) << ways << onThreads;
    }
  }
}

TEST_P(KernelConvolve, AsksBeforeEachLineOfEveryPass) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  lx_test::PollCounter counter;
  counter.Attach(&pair.engine);

  Blur(&pair.engine, NoiseFrame(lx::kSampleU16, 3));

  EXPECT_EQ(4 * (8 + 16 + 32 + 16 + 16 + 32) + 8, counter.polls);
}

TEST_P(KernelConvolve, LeavesTheRestOfACancelledPictureAndNoError) {
  const Image source = NoiseFrame(lx::kSampleU16, 3);
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  const Image full = Blur(&pair.engine, source);
  lx_test::PollCounter counter(4 * (8 + 16 + 32 + 16 + 16 + 32) + 3);  // three rows of output
  counter.Attach(&pair.engine);

  const Image cut = Blur(&pair.engine, source);

  EXPECT_EQ(lx::kStatusOk, pair.engine.GetStatus());
  const std::size_t row = kFrameWidth * 4;
  for (std::size_t i = 0; i < lx_test::SampleCount(cut); ++i) {
    const int expected = i < 3 * row ? Samples<std::uint16_t>(full)[i] : 0x5555;
    ASSERT_EQ(expected, Samples<std::uint16_t>(cut)[i]) << i;
  }
}

TEST_P(KernelConvolve, LeavesThePictureOfARunThatIsCancelledAtOnce) {
  Pair pair(GetParam());
  pair.Load(SpotMask(1));
  lx_test::PollCounter counter(0);
  counter.Attach(&pair.engine);

  const Image dest = Blur(&pair.engine, NoiseFrame(lx::kSampleU16, 3));

  EXPECT_EQ(25, counter.polls);  // one per pass
  EXPECT_TRUE(IsMarked(dest));
}

TEST_P(KernelConvolve, LeavesThePictureForWantOfMemoryAndRunsOnTheNextTry) {
  const Image source = NoiseFrame(lx::kSampleU16, 3);
  Pair whole(GetParam());
  whole.Load(SpotMask(1));
  const Image expected = Blur(&whole.engine, source);
  int refusals = 0;
  for (bool done = false; !done; ++refusals) {
    ASSERT_LT(refusals, 100);
    const Image dest = MarkedLike(source);
    lx_test::HeapFaults heap;
    Pair pair(GetParam());
    pair.Load(SpotMask(1));
    pair.engine.SetSourceImage(source.get());
    heap.Refuse(refusals + 1);

    done = pair.engine.Convolve(dest.get(), 15);

    heap.Refuse(0);
    if (!done) {
      EXPECT_EQ(lx::kStatusNoMemory, pair.engine.GetStatus()) << refusals;
      EXPECT_TRUE(IsMarked(dest)) << refusals;
      EXPECT_TRUE(pair.engine.Convolve(dest.get(), 15)) << refusals;
    }
    EXPECT_TRUE(lx_test::SameSamples(expected, dest)) << refusals;
  }
  // Three grids of results, and a line at least for two passes over columns of four planes.
  EXPECT_GE(refusals - 1, 11);
}

}  // namespace
