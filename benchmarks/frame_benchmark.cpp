// What a frame costs against its own transforms.
//
//   build/release/benchmarks/frame_benchmark --benchmark_repetitions=5
//       --benchmark_report_aggregates_only=true
//
// Each line alternates, in one run: a whole Convolve with a kept PSF, the eight bare
// transforms of the same plans on the same arrays, and a PSF build at a kept padded size.
// Time is the frame's. The counter ratio, frame over transforms, is what to compare:
// milliseconds move with the machine, its load and the number of processors that the
// transforms were planned for. Frames hold noise, since zeros flatter everyone.
//
// pool 0 runs the row passes on the caller alone, pool 1 on every way; the transforms use
// every processor in both. BM_EmptyPass is the pool's own cost.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <random>

#include "baselib/threads/parallel_rows.h"
#include "fftlib/fftlib.h"
#include "fftlib/fftlib/fft_calls.h"
#include "imagelib/imagelib.h"

namespace {

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

// Hands the engine's passes to the pool, as the effect does.
class Passes {
 public:
  static void ParallelFor(void* context, lx::PassFunction pass, std::int32_t count,
                          lx::DefocusEngine* engine) {
    auto* self = static_cast<Passes*>(context);
    self->pass_ = pass;
    self->engine_ = engine;
    lx::mp_parallel_rows(*self, &Passes::Rows, count);
  }

 private:
  void Rows(std::int32_t first, std::int32_t last) { pass_(engine_, first, last); }

  lx::PassFunction pass_ = nullptr;
  lx::DefocusEngine* engine_ = nullptr;
};

void BM_Frame(benchmark::State& state) {
  const auto width = static_cast<std::int32_t>(state.range(0));
  const auto height = static_cast<std::int32_t>(state.range(1));
  const auto radius = static_cast<float>(state.range(2));
  const auto emphasis = static_cast<float>(state.range(3));
  const bool pooled = state.range(4) != 0;
  const Image source = MakeFrame(width, height);
  const Image dest(lx::ImageCreateLike(source.get()));
  lx::DefocusEngine engine;
  Passes passes;
  if (pooled) {
    engine.SetParallelFor(&passes, Passes::ParallelFor);
  }
  engine.SetEmphasis(emphasis);
  const auto build = [&] { engine.BuildShapePsf(width, height, 1, radius, radius, 0.0F, 6); };
  build();
  engine.SetSourceImage(source.get());
  if (!engine.Convolve(dest.get(), 15) || !LooksBlurred(*dest, emphasis)) {
    state.SkipWithError("the frame did not come out blurred");
    return;
  }
  double frame = 0.0;
  double transforms = 0.0;
  double psf = 0.0;
  for (auto _ : state) {
    const auto start = Clock::now();
    engine.Convolve(dest.get(), 15);
    const auto convolved = Clock::now();
    for (int plane = 0; plane < 4; ++plane) {
      lx::GetFftCalls().execute(engine.forwardPlan);
      lx::GetFftCalls().execute(engine.inversePlan);
    }
    const auto transformed = Clock::now();
    build();
    const auto built = Clock::now();
    state.SetIterationTime(Seconds(start, convolved));
    frame += Seconds(start, convolved);
    transforms += Seconds(convolved, transformed);
    psf += Seconds(transformed, built);
  }
  const auto count = static_cast<double>(state.iterations());
  state.counters["ways"] = pooled ? lx::mp_num_ways() : 1;
  state.counters["grid"] = engine.paddedWidth;
  state.counters["transforms_ms"] = transforms / count * 1e3;
  state.counters["ratio"] = frame / transforms;
  state.counters["psf_build_ms"] = psf / count * 1e3;
  state.counters["psf_in_transforms"] = psf / transforms * 8.0;
  state.SetItemsProcessed(state.iterations() * width * height);
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
