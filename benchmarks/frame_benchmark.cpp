// SPDX-License-Identifier: BSD-3-Clause
// What a frame costs against its own transforms.
//
//   build/release/bin/frame_benchmark --benchmark_repetitions=5
//       --benchmark_report_aggregates_only=true
//
// BM_Frame alternates, in one run, a whole Convolve with a kept PSF and the eight bare
// transforms of the same plans on the same arrays; BM_PsfBuild a PSF build at a kept padded
// size and one bare transform. Time is the frame's, or the build's. The counter ratio, of it
// to its transforms, is what to compare:
// milliseconds move with the machine, its load and the number of processors that the
// transforms were planned for. Frames hold noise, since zeros flatter everyone.
//
// pool 0 runs the row passes on the caller alone, pool 1 on every way; the transforms use
// every processor in both. BM_Mode alternates a frame of a kernel mode with the same frame through
// FFTW. BM_EmptyPass is the pool's own cost.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <random>

#include "baselib/threads/parallel_rows.h"
#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/fftlib.h"
#include "imagelib/imagelib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/pooled_passes.h"

namespace {

using lx_test::Inside;

using Clock = std::chrono::steady_clock;

struct FreeImage {
  void operator()(lx::ImageRec* image) const { lx::ImageFree(image); }
};
using Image = std::unique_ptr<lx::ImageRec, FreeImage>;

Image MakeFrame(std::int32_t width, std::int32_t height) {
  Image image(lx::ImageCreate(width, height, 4, lx::kSampleU16, 1));
  std::mt19937 random(1);
  auto* samples = static_cast<std::uint16_t*>(image->data);
  for (std::int64_t i = 0; i < std::int64_t{width} * height * 4; ++i) {
    samples[i] = static_cast<std::uint16_t>(random());
  }
  return image;
}

double Seconds(Clock::time_point from, Clock::time_point to) {
  return std::chrono::duration<double>(to - from).count();
}

// A blurred frame of noise is nearly even, and lighter with emphasis: a run that did
// nothing, or lost the scale, is not worth timing.
bool LooksBlurred(const lx::ImageRec& image, float emphasis) {
  const auto* samples = static_cast<const std::uint16_t*>(image.data);
  const std::int64_t middle =
      (std::int64_t{image.height / 2} * image.width + image.width / 2) * image.channels;
  return samples[middle] > 28000 && samples[middle] < (emphasis > 1.0F ? 65000 : 37000);
}

// An engine with a source, a PSF and everything that its first frame makes.
class LoadedEngine {
 public:
  LoadedEngine(std::int32_t width, std::int32_t height, float radius, float emphasis, bool pooled,
               std::int32_t mode = lx::kModeFftw)
      : engine(mode),
        source_(MakeFrame(width, height)),
        dest_(lx::ImageCreateLike(source_.get())),
        radius_(radius) {
    if (pooled) {
      engine.SetParallelFor(&passes_, lx_test::PooledPasses::ParallelFor);
    }
    engine.SetEmphasis(emphasis);
    BuildPsf();
    engine.SetSourceImage(source_.get());
    usable_ = Convolve() && LooksBlurred(*dest_, emphasis);
  }

  // Marks the run as failed if the first frame did not come out blurred.
  bool IsUsable(benchmark::State* state) const {
    if (!usable_) {
      state->SkipWithError("the frame did not come out blurred");
    }
    return usable_;
  }

  void BuildPsf() {
    engine.BuildShapePsf(source_->width, source_->height, 1, radius_, radius_, 0.0F, 6);
  }
  bool Convolve() { return engine.Convolve(dest_.get(), 15); }

  lx::DefocusEngine engine;

 private:
  Image source_;
  Image dest_;
  lx_test::PooledPasses passes_;
  float radius_;
  bool usable_;
};

// Alternates the work with what it is measured by, and counts both.
template <class Work, class Reference>
void Compare(benchmark::State* state, const lx::DefocusEngine& engine, bool pooled, Work work,
             Reference reference) {
  double workTime = 0.0;
  double referenceTime = 0.0;
  for (auto _ : *state) {
    const auto start = Clock::now();
    work();
    const auto worked = Clock::now();
    reference();
    const auto done = Clock::now();
    state->SetIterationTime(Seconds(start, worked));
    workTime += Seconds(start, worked);
    referenceTime += Seconds(worked, done);
  }
  const auto count = static_cast<double>(state->iterations());
  state->counters["ways"] = pooled ? lx::mp_num_ways() : 1;
  state->counters["grid"] = Inside(engine).paddedWidth();
  state->counters["grid_height"] = Inside(engine).paddedHeight();
  state->counters["reference_ms"] = referenceTime / count * 1e3;
  state->counters["ratio"] = workTime / referenceTime;
}

void BM_Frame(benchmark::State& state) {
  const bool pooled = state.range(4) != 0;
  LoadedEngine loaded(static_cast<std::int32_t>(state.range(0)),
                      static_cast<std::int32_t>(state.range(1)), static_cast<float>(state.range(2)),
                      static_cast<float>(state.range(3)), pooled);
  if (!loaded.IsUsable(&state)) {
    return;
  }
  Compare(
      &state, loaded.engine, pooled, [&] { loaded.Convolve(); },
      [&] {
        for (int plane = 0; plane < 4; ++plane) {
          lx::GetFftCalls().execute(Inside(loaded.engine).forwardPlan());
          lx::GetFftCalls().execute(Inside(loaded.engine).inversePlan());
        }
      });
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

BENCHMARK(BM_Frame)
    ->ArgNames({"width", "height", "radius", "emphasis", "pool"})
    ->ArgsProduct({{720}, {576}, {20, 100}, {0}, {0, 1}})
    ->ArgsProduct({{720}, {576}, {20}, {20, 200}, {0, 1}})
    ->ArgsProduct({{1920}, {1080}, {20, 100}, {0}, {0, 1}})
    ->ArgsProduct({{1920}, {1080}, {20}, {20, 200}, {0, 1}})
    ->ArgsProduct({{3840}, {2160}, {20, 100}, {0}, {0, 1}})
    ->ArgsProduct({{3840}, {2160}, {20}, {20, 200}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

void BM_PsfBuild(benchmark::State& state) {
  LoadedEngine loaded(static_cast<std::int32_t>(state.range(0)),
                      static_cast<std::int32_t>(state.range(1)), static_cast<float>(state.range(2)),
                      0.0F, true);
  if (!loaded.IsUsable(&state)) {
    return;
  }
  Compare(
      &state, loaded.engine, true, [&] { loaded.BuildPsf(); },
      [&] { lx::GetFftCalls().execute(Inside(loaded.engine).forwardPlan()); });
}

BENCHMARK(BM_PsfBuild)
    ->ArgNames({"width", "height", "radius"})
    ->ArgsProduct({{720}, {576}, {20, 100}})
    ->ArgsProduct({{1920}, {1080}, {20, 100}})
    ->ArgsProduct({{3840}, {2160}, {20, 100}})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

// A frame of a kernel mode against the same frame through FFTW.
void BM_Mode(benchmark::State& state) {
  const auto load = [&](std::int32_t mode) {
    return std::make_unique<LoadedEngine>(static_cast<std::int32_t>(state.range(1)),
                                          static_cast<std::int32_t>(state.range(2)),
                                          static_cast<float>(state.range(3)), 0.0F, true, mode);
  };
  const auto loaded = load(static_cast<std::int32_t>(state.range(0)));
  const auto reference = load(lx::kModeFftw);
  if (!loaded->IsUsable(&state) || !reference->IsUsable(&state)) {
    return;
  }
  Compare(
      &state, loaded->engine, true, [&] { loaded->Convolve(); }, [&] { reference->Convolve(); });
}

BENCHMARK(BM_Mode)
    ->ArgNames({"mode", "width", "height", "radius"})
    ->ArgsProduct({{1, 2}, {720}, {576}, {20}})
    ->ArgsProduct({{1, 2}, {1920}, {1080}, {20, 100}})
    ->ArgsProduct({{1, 2}, {3840}, {2160}, {20}})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

struct Nothing {
  void Rows(std::int32_t /*first*/, std::int32_t /*last*/) {}
};

void BM_EmptyPass(benchmark::State& state) {
  Nothing nothing;
  for (auto _ : state) {
    lx::mp_parallel_rows(nothing, &Nothing::Rows, 0);
  }
  state.counters["ways"] = lx::mp_num_ways();
}
BENCHMARK(BM_EmptyPass)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
