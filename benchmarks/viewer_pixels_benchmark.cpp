// SPDX-License-Identifier: BSD-3-Clause
// What it costs to show a picture in a viewport of 1400 x 800, on one thread.
//
//   build/release/bin/viewer_pixels_benchmark --benchmark_repetitions=5
//       --benchmark_report_aggregates_only=true
//
// Zooms are in percent; 36 and 73 make pictures of 3840 x 2160 and 1920 x 1080 fit. Pictures hold
// noise, half of each is before and half after, and the middle of the picture is in the middle of
// the viewport. The samples of a picture are far more than a cache holds, so that memory's own
// speed shows at small zooms.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "host/viewer/pixels/compose_view.h"

namespace {

using glimmerhost::Picture;
using glimmerhost::ViewPixels;
using glimmerhost::ViewPlace;
using glimmerhost::ViewSettings;

constexpr int kWidth = 1400;
constexpr int kHeight = 800;

Picture Noise(int width, int height, bool floats) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  std::mt19937 random(1);
  const std::size_t count = picture.PixelCount() * 4;
  for (std::size_t i = 0; i < count; ++i) {
    const auto sample = static_cast<std::uint16_t>(random());
    if (floats) {
      picture.floats.push_back(static_cast<float>(sample) / 40000.0F);
    } else {
      picture.samples.push_back(sample);
    }
  }
  return picture;
}

void BM_ComposeView(benchmark::State& state) {
  const bool floats = state.range(2) != 0;
  const auto width = static_cast<int>(state.range(0));
  const auto height = width * 9 / 16;
  const Picture before = Noise(width, height, floats);
  const Picture after = Noise(width / static_cast<int>(state.range(3)),
                              height / static_cast<int>(state.range(3)), floats);
  const double zoom = static_cast<double>(state.range(1)) / 100.0;
  const ViewPlace place{zoom, std::floor((kWidth - width * zoom) / 2),
                        std::floor((kHeight - height * zoom) / 2), kWidth, kHeight};
  ViewSettings settings;
  settings.wipes = true;
  settings.gamma = 2.2;
  for (auto _ : state) {
    const ViewPixels view = glimmerhost::ComposeView(before, &after, settings, place);
    benchmark::DoNotOptimize(view.pixels.data());
  }
  state.SetItemsProcessed(state.iterations() * kWidth * kHeight);
}

BENCHMARK(BM_ComposeView)
    ->ArgNames({"width", "percent", "floats", "proxy"})
    ->ArgsProduct({{1920}, {20, 50, 73, 99, 100, 137, 400}, {0, 1}, {1}})
    ->ArgsProduct({{3840}, {10, 20, 36, 50, 73, 99, 100, 400}, {0, 1}, {1}})
    ->ArgsProduct({{1920}, {73, 100, 400}, {0, 1}, {2}})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
