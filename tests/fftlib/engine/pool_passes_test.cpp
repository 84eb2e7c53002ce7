// SPDX-License-Identifier: BSD-3-Clause
// The engine's passes on the pool, as the effect hands them over.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "baselib/threads/parallel_rows.h"
#include "fftlib/fftlib.h"
#include "tests/support/images.h"
#include "tests/support/platform_recorder.h"
#include "tests/support/pooled_passes.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::MakeImage;
using lx_test::PooledPasses;

Image Noise(int width, int height) {
  Image image = MakeImage(width, height, 4, 1);
  lx_test::FillNoise(image, 21);
  return image;
}

// One frame of each kind of PSF and both runs; all bytes that come out.
std::vector<std::uint8_t> Everything(DefocusEngine* engine, float emphasis) {
  const Image source = Noise(90, 61);
  const Image dest = MakeImage(90, 61, 4, 1);
  std::vector<std::uint8_t> bytes;
  const auto keep = [&] {
    const auto* data = static_cast<const std::uint8_t*>(dest->data);
    bytes.insert(bytes.end(), data, data + lx_test::SampleCount(dest) * 2);
  };
  engine->SetEmphasis(emphasis);
  engine->SetEmphasisAlpha(true);
  engine->BuildShapePsf(90, 61, 2, 9, 7, 10, 5);
  EXPECT_TRUE(engine->SetSourceImage(source.get()));
  EXPECT_TRUE(engine->Convolve(dest.get(), 15));
  keep();
  engine->BuildImagePsf(source.get(), 40, 30, 4, 6);
  EXPECT_TRUE(engine->Convolve(dest.get(), 7));
  keep();
  EXPECT_TRUE(engine->ConvolveChannels(dest.get(), 15));
  keep();
  return bytes;
}

TEST(PassesOnThePool, GiveTheSameBitsOnAnyNumberOfWays) {
  for (const float emphasis : {0.F, 20.F, 200.F}) {
    lx_test::PlatformRecorder platform;
    // The transforms' threads are another matter: their plan may differ with their number.
    platform.SetProcessors(1);
    DefocusEngine alone;
    const std::vector<std::uint8_t> expected = Everything(&alone, emphasis);
    for (const std::int32_t ways : {1, 2, 3, 7, 33}) {
      lx_test::ForgetServices();
      platform.SetProcessors(1);
      DefocusEngine engine;
      PooledPasses passes;
      engine.SetParallelFor(&passes, PooledPasses::ParallelFor);
      platform.SetProcessors(ways);
      EXPECT_EQ(expected, Everything(&engine, emphasis)) << ways << " ways at " << emphasis;
      EXPECT_EQ(ways, lx::mp_num_ways());
    }
  }
}

TEST(PassesOnThePool, OfSeveralEnginesAtOnceAreKeptApart) {
  lx_test::PlatformRecorder platform;
  platform.SetProcessors(3);
  DefocusEngine alone;
  const std::vector<std::uint8_t> expected = Everything(&alone, 120);
  std::vector<std::vector<std::uint8_t>> results(4);
  std::vector<std::thread> threads;
  for (auto& result : results) {
    threads.emplace_back([&result] {
      for (int round = 0; round < 3; ++round) {
        DefocusEngine engine;
        PooledPasses passes;
        engine.SetParallelFor(&passes, PooledPasses::ParallelFor);
        result = Everything(&engine, 120);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const auto& result : results) {
    EXPECT_EQ(expected, result);
  }
}

}  // namespace
