// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::MakeImage;

std::vector<std::uint16_t> Render(DefocusEngine* engine, int side, float radius) {
  const Image frame = MakeImage(side, side, 4, 1);
  lx_test::FillNoise(frame, 9);
  engine->BuildShapePsf(side, side, 1, radius, radius, 0, 6);
  engine->SetSourceImage(frame.get());
  EXPECT_TRUE(engine->Convolve(frame.get(), 15));
  const auto* samples = lx_test::Samples<std::uint16_t>(frame);
  return {samples, samples + lx_test::SampleCount(frame)};
}

TEST(EnginesTogether, OneRunsOnAfterTheOtherIsGone) {
  auto gone = std::make_unique<DefocusEngine>();
  DefocusEngine stays;
  const auto before = Render(&stays, 40, 3);
  Render(gone.get(), 40, 3);

  gone.reset();

  const Image frame = MakeImage(40, 40, 4, 1);
  lx_test::FillNoise(frame, 9);
  stays.SetSourceImage(frame.get());
  EXPECT_TRUE(stays.Convolve(frame.get(), 15));
  EXPECT_EQ(0, std::memcmp(before.data(), frame->data, before.size() * 2));
}

TEST(EnginesTogether, RunOnThreadsOfTheirOwn) {
  const auto alone = [] {
    DefocusEngine engine;
    return Render(&engine, 48, 4);
  }();
  std::vector<std::vector<std::uint16_t>> results(4);
  std::vector<std::thread> threads;
  for (auto& result : results) {
    threads.emplace_back([&result] {
      for (int i = 0; i < 5; ++i) {
        DefocusEngine engine;
        result = Render(&engine, 48, 4);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  for (const auto& result : results) {
    EXPECT_EQ(alone, result);
  }
}

}  // namespace
