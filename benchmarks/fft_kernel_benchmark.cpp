// SPDX-License-Identifier: BSD-3-Clause
// The fixed-size transforms against FFTW's own best, size by size.
//
//   build/release/bin/fft_kernel_benchmark [FORM]
//
// Both work in place, on one thread, row after row of a block in the first-level cache, FFTW by
// plans of FFTW_PATIENT for the same kind of transform and precision. Batches of both take turns; a
// figure is the median of 41 batches, in nanoseconds a transform. FORM is plain, 128, avx2 or
// avx512; without it the library chooses, as its users have it. The form does not matter below 32,
// where transforms are taken in by their callers. Prints a table in Markdown.
#include <fftw3.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "fftkernels/fftkernels.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBatches = 41;

// Rows of a batch, which together fill half of a small first-level cache. One row alone would be
// waited for by its own next transform.
constexpr int RowsOf(int n) { return std::max(1, 1024 / n); }

template <class Call>
double TimeBatch(int rounds, int rows, Call call) {
  const Clock::time_point start = Clock::now();
  for (int i = 0; i < rounds; ++i) {
    for (int row = 0; row < rows; ++row) {
      call(row);
    }
    asm volatile("" ::: "memory");
  }
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / (rounds * rows);
}

double Median(std::vector<double> times) {
  std::nth_element(times.begin(), times.begin() + kBatches / 2, times.end());
  return times[kBatches / 2];
}

struct Figures {
  double own;
  double reference;
};

template <class Own, class Reference>
Figures Compare(int n, Own own, Reference reference) {
  const int rows = RowsOf(n);
  const int rounds = std::max(8, 200000 / (n * rows));
  std::vector<double> ownTimes;
  std::vector<double> referenceTimes;
  for (int i = 0; i < kBatches; ++i) {
    ownTimes.push_back(TimeBatch(rounds, rows, own));
    referenceTimes.push_back(TimeBatch(rounds, rows, reference));
  }
  return {Median(ownTimes), Median(referenceTimes)};
}

// Zeros do not grow from transform to transform, and take as long as other numbers.
template <class T>
struct Array {
  explicit Array(int numbers) : data(static_cast<T*>(fftw_malloc(sizeof(T) * (numbers + 2)))) {
    bytes = sizeof(T) * static_cast<std::size_t>(numbers + 2);
  }
  ~Array() { fftw_free(data); }
  Array(const Array&) = delete;
  Array& operator=(const Array&) = delete;

  void Clear() const { std::memset(data, 0, bytes); }

  T* data;
  std::size_t bytes;
};

const lx::TransformTable* form = nullptr;

template <int n, class T>
void Transform(const lx::TransformTable::Transform<T>& table, T* data) {
  table[lx::TableIndex(n)](data);
}

enum class Family { kForward32, kInverse32, kForward64, kInverse64, kReal32 };

template <int n, Family family>
Figures Measure() {
  if constexpr (family == Family::kForward64 || family == Family::kInverse64) {
    constexpr bool kIsForward = family == Family::kForward64;
    const Array<double> own(2 * n * RowsOf(n));
    const Array<double> reference(2 * n * RowsOf(n));
    auto* pairs = reinterpret_cast<fftw_complex*>(reference.data);
    fftw_plan plan =
        fftw_plan_dft_1d(n, pairs, pairs, kIsForward ? FFTW_BACKWARD : FFTW_FORWARD, FFTW_PATIENT);
    own.Clear();
    reference.Clear();
    double* data = own.data;
    const Figures figures = Compare(
        n,
        [=](int row) {
          auto* line = data + row * 2 * n;
          if (n >= lx::kFirstTableSize && form != nullptr) {
            Transform<n>(kIsForward ? form->forwardComplexF64 : form->inverseComplexF64, line);
          } else if constexpr (kIsForward) {
            lx::ForwardComplexF64<n>(line);
          } else {
            lx::InverseComplexF64<n>(line);
          }
        },
        [=](int row) { fftw_execute_dft(plan, pairs + row * n, pairs + row * n); });
    fftw_destroy_plan(plan);
    return figures;
  } else {
    const Array<float> own(2 * n * RowsOf(n));
    const Array<float> reference(2 * n * RowsOf(n));
    auto* pairs = reinterpret_cast<fftwf_complex*>(reference.data);
    fftwf_plan plan =
        family == Family::kReal32
            ? fftwf_plan_dft_r2c_1d(n, reference.data, pairs, FFTW_PATIENT)
            : fftwf_plan_dft_1d(n, pairs, pairs,
                                family == Family::kForward32 ? FFTW_BACKWARD : FFTW_FORWARD,
                                FFTW_PATIENT);
    own.Clear();
    reference.Clear();
    float* data = own.data;
    float* numbers = reference.data;
    const Figures figures = Compare(
        n,
        [=](int row) {
          auto* line = data + row * 2 * n;
          if (n >= lx::kFirstTableSize && form != nullptr) {
            Transform<n>(family == Family::kReal32      ? form->forwardRealF32
                         : family == Family::kForward32 ? form->forwardComplexF32
                                                        : form->inverseComplexF32,
                         line);
          } else if constexpr (family == Family::kReal32) {
            lx::ForwardRealF32<n>(line);
          } else if constexpr (family == Family::kForward32) {
            lx::ForwardComplexF32<n>(line);
          } else {
            lx::InverseComplexF32<n>(line);
          }
        },
        [=](int row) {
          if constexpr (family == Family::kReal32) {
            float* line = numbers + row * 2 * n;
            fftwf_execute_dft_r2c(plan, line, pairs + row * n);
          } else {
            fftwf_execute_dft(plan, pairs + row * n, pairs + row * n);
          }
        });
    fftwf_destroy_plan(plan);
    return figures;
  }
}

// Geometric means of the ratios, of the sizes below 32 and of the others.
struct Summary {
  double logs[2] = {0.0, 0.0};
  int count[2] = {0, 0};
  double worst = 0.0;
};

template <int n, Family family>
void PrintFigures(Summary* summary) {
  const Figures figures = Measure<n, family>();
  const double ratio = figures.own / figures.reference;
  const int large = n >= 32 ? 1 : 0;
  summary->logs[large] += std::log(ratio);
  ++summary->count[large];
  if (large == 1) {
    summary->worst = std::max(summary->worst, ratio);
  }
  std::printf(" %.1f / %.1f = %.2f |", figures.own, figures.reference, ratio);
  std::fflush(stdout);
}

Summary summaries[5];

template <int n>
void PrintSizes() {
  std::printf("| %d |", n);
  PrintFigures<n, Family::kForward32>(&summaries[0]);
  PrintFigures<n, Family::kInverse32>(&summaries[1]);
  PrintFigures<n, Family::kForward64>(&summaries[2]);
  PrintFigures<n, Family::kInverse64>(&summaries[3]);
  PrintFigures<n, Family::kReal32>(&summaries[4]);
  std::printf("\n");
  if constexpr (n < lx::kLargestTransform) {
    PrintSizes<2 * n>();
  }
}

bool ChooseForm(const std::string& name) {
  form = name == "plain"    ? &lx::PlainTransforms()
         : name == "128"    ? lx::Vector128Transforms()
         : name == "avx2"   ? lx::Avx2Transforms()
         : name == "avx512" ? lx::Avx512Transforms()
                            : nullptr;
  return form != nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1 && !ChooseForm(argv[1])) {
    std::fprintf(stderr, "%s: this processor has no such form\n", argv[1]);
    return 2;
  }
  std::printf(
      "| n | ForwardComplexF32 | InverseComplexF32 | ForwardComplexF64 | InverseComplexF64 | "
      "ForwardRealF32 |\n|---|---|---|---|---|---|\n");
  PrintSizes<2>();
  const char* names[] = {"geometric mean below 32", "geometric mean of 32 and above"};
  for (const int large : {0, 1}) {
    std::printf("| %s |", names[large]);
    for (const Summary& summary : summaries) {
      std::printf(" %.2f |", std::exp(summary.logs[large] / summary.count[large]));
    }
    std::printf("\n");
  }
  std::printf("| worst of 32 and above |");
  for (const Summary& summary : summaries) {
    std::printf(" %.2f |", summary.worst);
  }
  std::printf("\n");
  return 0;
}
