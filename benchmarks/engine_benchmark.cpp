// SPDX-License-Identifier: BSD-3-Clause
// What a frame costs in one engine, against the eight transforms of mode 4.
//
//   build/release/bin/engine_benchmark --engine exact --size 1920x1080 --radius 20
//
// Each round runs one after the other, so that all see the same machine: a frame with a kept PSF,
// the eight bare transforms that a frame of four planes takes in mode 4 (the library's estimated
// plans, in arrays of that mode's size), and a PSF build at a kept grid. All use as many threads.
// Ratios are the medians of the rounds' own. Milliseconds move with the machine and its load, which
// is told; processor time, of all threads, moves less.
//
// The first frame is compared with mode 4's, and an engine that is not close to it is not timed.
// Above an emphasis of 75 mode 4 is no measure, and only the difference is told.
//
// The picture is noise, since zeros flatter everyone, and its alpha is noise unless --even-alpha
// says that it is 1 all over. Or it is a file of 16-bit samples, red, green, blue and alpha, rows
// from the top.
//
// With --live it does what it reads, a word a line, and answers each with a line: "frame",
// "transforms" or "psf" with the seconds that this took. So another program can alternate it with
// other things.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/threads/parallel_rows.h"
#include "fftlib/backends/backends.h"
#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/backends/footprint.h"
#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/images.h"
#include "tests/support/pooled_passes.h"

namespace {

using lx_test::Image;

struct Options {
  std::string engine = "exact";
  std::int32_t width = 1920;
  std::int32_t height = 1080;
  float radius = 20;
  float emphasis = 20;
  bool evenAlpha = false;
  std::int32_t ways = 0;  // 0: as many as processors
  int rounds = 9;
  bool smallPages = false;
  bool live = false;
  std::string picture;
  std::string result;
};

constexpr std::int32_t kChannels = 4;
constexpr std::uint16_t kWhite = 65535;

Image MakePicture(const Options& options) {
  Image picture = lx_test::MakeImage(options.width, options.height, kChannels, lx::kSampleU16);
  auto* samples = lx_test::Samples<std::uint16_t>(picture);
  const std::size_t count = lx_test::SampleCount(picture);
  if (options.picture.empty()) {
    lx_test::FillNoise(picture, 1);
  } else {
    const auto bytes = static_cast<std::streamsize>(count * sizeof *samples);
    std::ifstream in(options.picture, std::ios::binary);
    if (!in.read(reinterpret_cast<char*>(samples), bytes)) {
      throw std::runtime_error(options.picture + ": no picture of that size");
    }
  }
  for (std::size_t i = 3; options.evenAlpha && i < count; i += kChannels) {
    samples[i] = kWhite;
  }
  return picture;
}

// An engine with a picture and everything that its first frame makes.
class LoadedEngine {
 public:
  LoadedEngine(std::string_view name, const Options& options)
      : engine_(lx::MakeBackend(name)),
        source_(MakePicture(options)),
        dest_(lx_test::MakeImage(options.width, options.height, kChannels, lx::kSampleU16)),
        radius_(options.radius) {
    engine_.SetParallelFor(&passes_, lx_test::PooledPasses::ParallelFor);
    engine_.SetEmphasis(options.emphasis);
    BuildPsf();
    engine_.SetSourceImage(source_.get());
    if (!Convolve()) {
      throw std::runtime_error(std::string(name) + ": no frame, status " +
                               std::to_string(engine_.GetStatus()));
    }
  }

  bool Convolve() { return engine_.Convolve(dest_.get(), 15); }

  // Of another aperture each time, so that none is found ready, and at last of the one wanted. Both
  // need the same grid.
  void BuildPsf() {
    engine_.BuildShapePsf(source_->width, source_->height, 1, radius_, radius_, 0.0F, 6);
  }
  void BuildOtherPsf() {
    const float other = radius_ - 0.25F;
    engine_.BuildShapePsf(source_->width, source_->height, 1, other, other, 0.0F, 6);
  }

  const Image& Result() const { return dest_; }
  const lx::DefocusEngine& Engine() const { return engine_; }

 private:
  lx::DefocusEngine engine_;
  Image source_;
  Image dest_;
  lx_test::PooledPasses passes_;
  float radius_;
};

struct Difference {
  std::int64_t samples15 = 0;  // that differ
  std::int64_t samples16 = 0;
  int largest16 = 0;
  double mean16 = 0;
};

Difference Compare(const Image& one, const Image& other) {
  Difference found;
  const auto* a = lx_test::Samples<std::uint16_t>(one);
  const auto* b = lx_test::Samples<std::uint16_t>(other);
  const std::size_t count = lx_test::SampleCount(one);
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const int off = std::abs(a[i] - b[i]);
    found.samples15 += a[i] / 2 != b[i] / 2 ? 1 : 0;
    found.samples16 += off != 0 ? 1 : 0;
    found.largest16 = std::max(found.largest16, off);
    sum += off;
  }
  found.mean16 = sum / static_cast<double>(count);
  return found;
}

// Mode 4 at the same picture: what its frame looks like, and its transforms.
class Reference {
 public:
  explicit Reference(const Options& options) : loaded_("exact", options) {}

  void Transform() const {
    const lx_test::Inside inside(loaded_.Engine());
    for (int plane = 0; plane < kChannels; ++plane) {
      lx::GetFftCalls().execute(inside.forwardPlan());
      lx::GetFftCalls().execute(inside.inversePlan());
    }
  }

  const Image& Result() const { return loaded_.Result(); }

 private:
  LoadedEngine loaded_;
};

struct Time {
  double seconds;
  double processor;  // seconds of all threads
};

template <class Work>
Time Measure(Work work) {
  const std::clock_t processor = std::clock();
  const auto start = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
  return {passed.count(), static_cast<double>(std::clock() - processor) / CLOCKS_PER_SEC};
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

struct Row {
  const char* name;
  std::vector<double> seconds;
  std::vector<double> processor;

  void Add(const Time& time) {
    seconds.push_back(time.seconds);
    processor.push_back(time.processor);
  }
};

void Print(const Row& row) {
  const auto [least, most] = std::minmax_element(row.seconds.begin(), row.seconds.end());
  std::printf("%-14s %10.2f %10.2f %10.2f %15.2f\n", row.name, Median(row.seconds) * 1e3,
              *least * 1e3, *most * 1e3, Median(row.processor) * 1e3);
}

double MedianRatio(const std::vector<double>& of, const std::vector<double>& to) {
  std::vector<double> ratios(of.size());
  std::transform(of.begin(), of.end(), to.begin(), ratios.begin(), std::divides<>());
  return Median(ratios);
}

void PrintRatio(const char* name, const Row& of, const Row& to) {
  std::printf("%-28s %.3f, of processor time %.3f\n", name, MedianRatio(of.seconds, to.seconds),
              MedianRatio(of.processor, to.processor));
}

double Load() {
  double load = 0;
  return getloadavg(&load, 1) == 1 ? load : -1;
}

void RunRounds(const Options& options, LoadedEngine* loaded, const Reference* reference) {
  Row frame{"frame", {}, {}};
  Row transforms{"8 transforms", {}, {}};
  Row psf{"PSF build", {}, {}};
  const double load = Load();
  for (int round = 0; round < options.rounds; ++round) {
    frame.Add(Measure([&] { loaded->Convolve(); }));
    if (reference != nullptr) {
      transforms.Add(Measure([&] { reference->Transform(); }));
    }
    psf.Add(Measure([&] { loaded->BuildOtherPsf(); }));
    loaded->BuildPsf();
  }
  std::printf("%-14s %10s %10s %10s %15s\n", "milliseconds", "median", "least", "most",
              "processor time");
  Print(frame);
  if (reference != nullptr) {
    Print(transforms);
  }
  Print(psf);
  if (reference != nullptr) {
    PrintRatio("frame / 8 transforms", frame, transforms);
  }
  PrintRatio("PSF build / frame", psf, frame);
  std::printf("load %.2f before, %.2f after\n", load, Load());
}

int Serve(LoadedEngine* loaded, const Reference* reference) {
  for (std::string word; std::getline(std::cin, word);) {
    double seconds = -1;
    if (word == "frame") {
      seconds = Measure([&] { loaded->Convolve(); }).seconds;
    } else if (word == "transforms" && reference != nullptr) {
      seconds = Measure([&] { reference->Transform(); }).seconds;
    } else if (word == "psf") {
      seconds = Measure([&] { loaded->BuildOtherPsf(); }).seconds;
      loaded->BuildPsf();
    } else {
      std::fprintf(stderr, "engine_benchmark: %s: there is nothing of that name\n", word.c_str());
      return 1;
    }
    std::printf("%.9f\n", seconds);
    std::fflush(stdout);
  }
  return 0;
}

// A kernel in single precision is off by some steps; what is not blurred, by thousands.
constexpr double kLargestMean16 = 64;
constexpr float kLargestExactEmphasis = 75;

void Check(const Options& options, const LoadedEngine& loaded, const Reference& reference) {
  const Difference off = Compare(loaded.Result(), reference.Result());
  std::fprintf(options.live ? stderr : stdout,
               "differs from mode 4: %lld samples of 15 bits; %lld of 16, by at most %d, on "
               "average by %.4f\n",
               static_cast<long long>(off.samples15), static_cast<long long>(off.samples16),
               off.largest16, off.mean16);
  if (off.mean16 > kLargestMean16 && options.emphasis <= kLargestExactEmphasis) {
    throw std::runtime_error(options.engine + ": its frame is another one than mode 4's");
  }
}

void WriteResult(const Options& options, const LoadedEngine& loaded) {
  if (!options.result.empty()) {
    const auto bytes =
        static_cast<std::streamsize>(lx_test::SampleCount(loaded.Result()) * sizeof(std::uint16_t));
    std::ofstream(options.result, std::ios::binary)
        .write(static_cast<const char*>(loaded.Result()->data), bytes);
  }
}

int Run(const Options& options) {
  const lx::Footprint* footprint = lx::FindFootprint(options.engine);
  if (footprint == nullptr) {
    throw std::runtime_error(options.engine + ": there is no engine of that name");
  }
  const std::int32_t margin = lx::OutlineMargin(options.radius);
  const lx::GridSides grid = footprint->gridFor(options.width, options.height, margin);
  const int ways = lx::mp_num_ways();
  std::fprintf(
      options.live ? stderr : stdout,
      "%s, %dx%d, radius %g, emphasis %g, %d ways, grid %lldx%lld, %.1f MiB\n",
      options.engine.c_str(), options.width, options.height, static_cast<double>(options.radius),
      static_cast<double>(options.emphasis), ways, static_cast<long long>(grid.width),
      static_cast<long long>(grid.height),
      static_cast<double>(footprint->bytesAt({options.width, options.height}, grid)) / (1 << 20));
  // Larger frames than mode 4 takes have nothing to be compared with.
  std::unique_ptr<Reference> reference;
  if (lx::IsAllowedGrid(lx::FftwFootprint::GridFor(options.width, options.height, margin),
                        lx::FftwFootprint::kLargestSide)) {
    reference = std::make_unique<Reference>(options);
  }
  LoadedEngine loaded(options.engine, options);
  if (reference != nullptr) {
    Check(options, loaded, *reference);
  }
  WriteResult(options, loaded);
  if (options.live) {
    return Serve(&loaded, reference.get());
  }
  RunRounds(options, &loaded, reference.get());
  return 0;
}

std::int32_t wantedWays;

}  // namespace

int main(int argc, char** argv) {
  Options options;
  std::string size;
  CLI::App app("What a frame costs in one engine, against the eight transforms of mode 4.");
  app.add_option("--engine", options.engine, "its name; default: exact");
  app.add_option("--size", size, "of the picture; default: 1920x1080");
  app.add_option("--radius", options.radius, "of a disc, in pixels; default: 20");
  app.add_option("--emphasis", options.emphasis, "0 to 500; default: 20");
  app.add_flag("--even-alpha", options.evenAlpha, "alpha is 1 all over");
  app.add_option("--ways", options.ways, "threads; default: as many as processors");
  app.add_option("--rounds", options.rounds, "default: 9")->check(CLI::PositiveNumber);
  app.add_flag("--small-pages", options.smallPages, "as where a system has no huge pages");
  app.add_flag("--live", options.live, "do what is read");
  app.add_option("--picture", options.picture, "a file of samples");
  app.add_option("--result", options.result, "where the first frame's samples go");
  CLI11_PARSE(app, argc, argv);
  if (!size.empty() && std::sscanf(size.c_str(), "%dx%d", &options.width, &options.height) != 2) {
    std::fprintf(stderr, "engine_benchmark: --size: must be like 1920x1080, not %s\n",
                 size.c_str());
    return 1;
  }

  lx::Platform table = lx::SystemPlatform();
  if (options.ways > 0) {
    wantedWays = options.ways;
    table.processorCount = [] { return wantedWays; };
  }
  if (options.smallPages) {
    table.adviseHugePages = [](void*, std::size_t) {};
  }
  // Only where something is replaced: a table in force costs every allocation a little.
  std::optional<lx::ScopedPlatform> scope;
  if (options.ways > 0 || options.smallPages) {
    scope.emplace(&table);
  }
  try {
    return Run(options);
  } catch (const std::runtime_error& fault) {
    std::fprintf(stderr, "engine_benchmark: %s\n", fault.what());
    return 1;
  }
}
