// SPDX-License-Identifier: BSD-3-Clause
// What holds for every back-end, whatever it transforms by.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/tested_backends.h"
#include "tests/support/divided_passes.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::kFrameHeight;
using lx_test::kFrameWidth;
using lx_test::Samples;

template <class Footprint>
class EveryBackend : public testing::Test {
 protected:
  static std::unique_ptr<DefocusEngine> MakeEngine() {
    return std::make_unique<DefocusEngine>(Footprint::Make());
  }
};

TYPED_TEST_SUITE(EveryBackend, lx_test::TestedBackends, lx_test::BackendNames);

const std::vector<std::uint8_t>& Mask() {
  static const auto mask = lx_test::SpotMask(7);
  return mask;
}

Image Source() { return lx_test::NoiseFrame(lx::kSampleU16, 11); }

Image Unwritten() {
  Image dest = lx_test::NoiseFrame(lx::kSampleU16, 12);
  lx_test::Fill<std::uint16_t>(dest, 0x5555);
  return dest;
}

// A frame with alpha, through a PSF that is loaded here.
Image Render(DefocusEngine* engine, float emphasis = 0.0F) {
  const Image source = Source();
  Image dest = Unwritten();
  EXPECT_TRUE(lx_test::LoadMask(engine, Mask()));
  EXPECT_TRUE(engine->SetSourceImage(source.get()));
  engine->SetEmphasis(emphasis);
  EXPECT_TRUE(engine->Convolve(dest.get(), 15));
  return dest;
}

// The emphasis up to 50: a hyperbola through (0, 0) and (1, 1), and its mirror image.
double Emphasise(double x, double g) {
  const double a = 1.0 / g;
  const double b = g - a;
  return (1.0 / ((1.0 - x) * b + a) - a) / b;
}
double Undo(double y, double g) { return 1.0 - Emphasise(1.0 - y, g); }

// The sum over the mask, its middle pixel staying in place, of a plane whose edge goes on for ever.
std::vector<double> Blur(const std::vector<double>& plane) {
  const std::vector<double> weights = lx_test::MaskValues(Mask());
  double sum = 0.0;
  for (const double weight : weights) {
    sum += weight;
  }
  std::vector<double> blurred(plane.size(), 0.0);
  for (int y = 0; y < kFrameHeight; ++y) {
    for (int x = 0; x < kFrameWidth; ++x) {
      for (int v = 0; v < kFrameHeight; ++v) {
        for (int u = 0; u < kFrameWidth; ++u) {
          const int fromX = std::clamp(x - (u - kFrameWidth / 2), 0, kFrameWidth - 1);
          const int fromY = std::clamp(y - (v - kFrameHeight / 2), 0, kFrameHeight - 1);
          blurred[y * kFrameWidth + x] +=
              weights[v * kFrameWidth + u] / sum * plane[fromY * kFrameWidth + fromX];
        }
      }
    }
  }
  return blurred;
}

// The four planes of the source, blurred, as the picture that they make.
std::vector<double> Model(double g) {
  const Image source = Source();
  const auto* samples = Samples<std::uint16_t>(source);
  std::vector<std::vector<double>> planes(4);
  for (int i = 0; i < lx_test::kPixels; ++i, samples += 4) {
    const double r = samples[0] / 65535.0;
    const double green = samples[1] / 65535.0;
    const double b = samples[2] / 65535.0;
    const double luma = 0.299 * r + 0.587 * green + 0.114 * b;
    planes[0].push_back(g > 1.0 ? Emphasise(luma, g) : luma);
    planes[1].push_back(0.5 * r - 0.418688 * green - 0.081312 * b + 0.5);
    planes[2].push_back(-0.213267 * r - 0.418688 * green + 0.617689 * b + 0.5);
    planes[3].push_back(samples[3] / 65535.0);
  }
  for (auto& plane : planes) {
    plane = Blur(plane);
  }
  std::vector<double> picture;
  for (int i = 0; i < lx_test::kPixels; ++i) {
    const double luma = g > 1.0 ? Undo(planes[0][i], g) : planes[0][i];
    const double cr = planes[1][i] - 0.5;
    const double cb = planes[2][i] - 0.5;
    for (const double value : {luma + 1.402 * cr, 0.996036 * luma - 0.714136 * cr - 0.277836 * cb,
                               1.0204080 * luma + 1.430612 * cb, planes[3][i]}) {
      picture.push_back(std::clamp(value, 0.0, 1.0) * 65535.0);
    }
  }
  return picture;
}

TYPED_TEST(EveryBackend, TellsItsName) { EXPECT_EQ(TypeParam::kName, TypeParam::Make()->Name()); }

TYPED_TEST(EveryBackend, HoldsTheFrameAndItsMarginInItsGrid) {
  const std::unique_ptr<lx::Backend> backend = TypeParam::Make();
  for (const int margin : {-5, 0, 1, 7, 100}) {
    const lx::GridSides grid = backend->GridFor({90, 33}, margin);
    EXPECT_LE(90 + 2 * std::max(margin, 0), grid.width) << margin;
    EXPECT_LE(33 + 2 * std::max(margin, 0), grid.height) << margin;
    // A mask and three planes are the least that a run holds.
    EXPECT_LE(4 * static_cast<std::uint64_t>(grid.width * grid.height),
              backend->BytesAt({90, 33}, grid));
  }
}

TYPED_TEST(EveryBackend, RefusesAFrameThatNoGridHolds) {
  const auto engine = this->MakeEngine();
  constexpr int kWidth = TypeParam::kLargestSide - 1;
  std::vector<std::uint8_t> mask(kWidth * 2, 0);

  EXPECT_FALSE(lx_test::LoadMask(engine.get(), mask, kWidth, 2, 1));

  EXPECT_EQ(lx::kStatusSizeRange, engine->GetStatus());
}

// One step: the model is rounded nowhere, and half a step may fall to either side. Single precision
// keeps to it up to this emphasis.
TYPED_TEST(EveryBackend, BlursAsPlainSumsDo) {
  for (const float g : {0.0F, 20.0F}) {
    const Image dest = Render(this->MakeEngine().get(), g);

    const std::vector<double> expected = Model(g);
    for (std::size_t i = 0; i < expected.size(); ++i) {
      ASSERT_NEAR(expected[i], Samples<std::uint16_t>(dest)[i], 1.0)
          << "emphasis " << g << ", " << i;
    }
  }
}

TYPED_TEST(EveryBackend, BlursStoredChannelsAsPlainSumsDo) {
  const auto engine = this->MakeEngine();
  const Image source = Source();
  Image dest = Unwritten();
  ASSERT_TRUE(lx_test::LoadMask(engine.get(), Mask()));
  ASSERT_TRUE(engine->SetSourceImage(source.get()));

  ASSERT_TRUE(engine->ConvolveChannels(dest.get(), 0b0101));

  for (const int c : {0, 1, 2, 3}) {
    std::vector<double> plane;
    for (int i = 0; i < lx_test::kPixels; ++i) {
      plane.push_back(Samples<std::uint16_t>(source)[4 * i + c]);
    }
    const std::vector<double> blurred = Blur(plane);
    for (int i = 0; i < lx_test::kPixels; ++i) {
      const int got = Samples<std::uint16_t>(dest)[4 * i + c];
      if (c % 2 == 1) {
        ASSERT_EQ(0x5555, got) << c;
      } else {
        // Cut to a whole number; single precision errs by 0.02 before.
        ASSERT_LE(got, blurred[i] + 0.02) << c << ", " << i;
        ASSERT_GT(got, blurred[i] - 1.02) << c << ", " << i;
      }
    }
  }
}

TYPED_TEST(EveryBackend, GivesTheSameBitsHoweverRowsAreDivided) {
  const Image expected = Render(this->MakeEngine().get(), 20.0F);
  for (const int ways : {1, 2, 7, 33}) {
    for (const bool onThreads : {false, true}) {
      lx_test::DividedPasses passes(ways, onThreads);
      const auto engine = this->MakeEngine();
      passes.Attach(engine.get());

      EXPECT_TRUE(lx_test::SameSamples(expected, Render(engine.get(), 20.0F)))
          << ways << (onThreads ? " on threads" : "");
    }
  }
}

TYPED_TEST(EveryBackend, EndsWithoutAnErrorWhereverItIsCancelled) {
  const Image source = Source();
  const auto engine = this->MakeEngine();
  const Image expected = Render(engine.get());
  lx_test::PollCounter counter;
  counter.Attach(engine.get());
  ASSERT_TRUE(engine->SetSourceImage(source.get()));
  ASSERT_TRUE(engine->Convolve(Unwritten().get(), 15));
  const int polls = counter.polls;
  ASSERT_LE(5 * kFrameHeight, polls);

  for (int stopAt = 0; stopAt < polls; ++stopAt) {
    for (const bool once : {false, true}) {
      lx_test::PollCounter canceller(stopAt, once);
      canceller.Attach(engine.get());
      EXPECT_TRUE(engine->Convolve(Unwritten().get(), 15));
      ASSERT_EQ(lx::kStatusOk, engine->GetStatus()) << stopAt;
      ASSERT_LT(stopAt, canceller.polls);
    }
    // Nothing of it is left in the next frame.
    Image next = Unwritten();
    lx_test::PollCounter none;
    none.Attach(engine.get());
    ASSERT_TRUE(engine->Convolve(next.get(), 15));
    ASSERT_TRUE(lx_test::SameSamples(expected, next)) << stopAt;
  }
}

TYPED_TEST(EveryBackend, WritesTheRowsAheadOfACancelAndNoOthers) {
  const auto engine = this->MakeEngine();
  const Image expected = Render(engine.get());
  const Image source = Source();
  lx_test::PollCounter counter;
  counter.Attach(engine.get());
  ASSERT_TRUE(engine->SetSourceImage(source.get()));
  ASSERT_TRUE(engine->Convolve(Unwritten().get(), 15));
  constexpr int kWritten = 3;
  lx_test::PollCounter canceller(counter.polls - kFrameHeight + kWritten);
  canceller.Attach(engine.get());
  Image dest = Unwritten();

  ASSERT_TRUE(engine->Convolve(dest.get(), 15));

  for (int i = 0; i < 4 * lx_test::kPixels; ++i) {
    const bool isWritten = i < kWritten * kFrameWidth * 4;
    ASSERT_EQ(isWritten ? Samples<std::uint16_t>(expected)[i] : 0x5555,
              Samples<std::uint16_t>(dest)[i])
        << i;
  }
}

// Refuses the n-th block, of the tracked heap and of the transform library, each by itself.
struct Refusal {
  Refusal(int n, bool ofLibrary) {
    if (ofLibrary) {
      fft.RefuseAllocation(n);
    } else {
      heap.Refuse(n);
    }
  }

  lx_test::HeapFaults heap;
  lx_test::FftRecorder fft;
};

TYPED_TEST(EveryBackend, SaysSoWhereAnyBlockIsRefusedAndLeavesThePicture) {
  const Image expected = Render(this->MakeEngine().get());
  const Image source = Source();
  int refused = 0;
  for (const bool ofLibrary : {false, true}) {
    for (int n = 1;; ++n) {
      const std::vector<std::uint8_t> blank(64 * 64, 1);
      const auto engine = this->MakeEngine();
      Image dest = Unwritten();
      const Image mask = lx_test::MakeImage(kFrameWidth, kFrameHeight, 1, lx::kSampleU8);
      std::copy(Mask().begin(), Mask().end(), Samples<std::uint8_t>(mask));
      bool done = false;
      {
        const Refusal refusal(n, ofLibrary);
        done = engine->LoadPsf(mask.get(), lx_test::kFrameMargin) &&
               engine->SetSourceImage(source.get()) && engine->Convolve(dest.get(), 15);
      }
      if (done) {
        EXPECT_TRUE(lx_test::SameSamples(expected, dest));
        break;
      }
      ++refused;
      EXPECT_EQ(lx::kStatusNoMemory, engine->GetStatus()) << n;
      EXPECT_TRUE(lx_test::SameSamples(Unwritten(), dest)) << n;

      // Another grid between, and whatever a load has left half-way is gone.
      EXPECT_TRUE(lx_test::LoadMask(engine.get(), blank, 64, 64)) << n;
      EXPECT_TRUE(lx_test::SameSamples(expected, Render(engine.get()))) << n;
    }
  }
  EXPECT_LE(3, refused);
}

}  // namespace
