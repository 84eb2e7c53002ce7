// SPDX-License-Identifier: BSD-3-Clause
// The same transforms by FFTW, in the kernels' orders: the measure of how little a transform of a
// width can err on average.
#pragma once

#include <fftw3.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "tests/fftkernels/transform_model.h"

namespace lx_test {

// FFTW's names in each width. Plans are estimated, so that every run makes the same ones.
template <class T>
struct Fftw;

template <>
struct Fftw<float> {
  static void Complex(int n, std::complex<float>* data, int sign) {
    auto* numbers = reinterpret_cast<fftwf_complex*>(data);
    fftwf_plan plan = fftwf_plan_dft_1d(n, numbers, numbers, sign, FFTW_ESTIMATE);
    fftwf_execute(plan);
    fftwf_destroy_plan(plan);
  }

  static void FromReal(int n, float* samples, std::complex<float>* spectrum) {
    fftwf_plan plan = fftwf_plan_dft_r2c_1d(n, samples, reinterpret_cast<fftwf_complex*>(spectrum),
                                            FFTW_ESTIMATE);
    fftwf_execute(plan);
    fftwf_destroy_plan(plan);
  }

  static void ToReal(int n, std::complex<float>* spectrum, float* samples) {
    fftwf_plan plan = fftwf_plan_dft_c2r_1d(n, reinterpret_cast<fftwf_complex*>(spectrum), samples,
                                            FFTW_ESTIMATE);
    fftwf_execute(plan);
    fftwf_destroy_plan(plan);
  }
};

template <>
struct Fftw<double> {
  static void Complex(int n, std::complex<double>* data, int sign) {
    auto* numbers = reinterpret_cast<fftw_complex*>(data);
    fftw_plan plan = fftw_plan_dft_1d(n, numbers, numbers, sign, FFTW_ESTIMATE);
    fftw_execute(plan);
    fftw_destroy_plan(plan);
  }
};

template <class T>
std::vector<T> FftwComplex(Kind kind, const std::vector<T>& input) {
  const std::size_t n = input.size() / 2;
  const bool forward = kind == Kind::kForwardComplex;
  const std::vector<std::uint32_t> order = FrequencyOrder(static_cast<std::uint32_t>(n));
  std::vector<std::complex<T>> numbers(n);
  for (std::size_t p = 0; p < n; ++p) {
    numbers[forward ? p : order[p]] = {input[2 * p], input[2 * p + 1]};
  }
  // The other way round: FFTW's forward direction has the negative sign.
  Fftw<T>::Complex(static_cast<int>(n), numbers.data(), forward ? FFTW_BACKWARD : FFTW_FORWARD);
  std::vector<T> output(2 * n);
  for (std::size_t p = 0; p < n; ++p) {
    output[2 * p] = numbers[forward ? order[p] : p].real();
    output[2 * p + 1] = numbers[forward ? order[p] : p].imag();
  }
  return output;
}

inline std::vector<float> FftwForwardReal(const std::vector<float>& input) {
  const std::size_t n = input.size();
  std::vector<float> samples(n);
  for (std::size_t i = 0; i < n; ++i) {
    samples[SampleAt(i, n)] = input[i];
  }
  std::vector<std::complex<float>> spectrum(n / 2 + 1);
  Fftw<float>::FromReal(static_cast<int>(n), samples.data(), spectrum.data());
  const std::vector<std::uint32_t> order = PairOrder(static_cast<std::uint32_t>(n));
  std::vector<float> output = {spectrum[0].real(), spectrum[n / 2].real()};
  for (std::size_t pair = 1; pair < n / 2; ++pair) {
    // The conjugate, for the sign; of a frequency above n/2 FFTW holds just that.
    const std::size_t f = order[pair];
    output.push_back(spectrum[std::min(f, n - f)].real());
    output.push_back(f > n / 2 ? spectrum[n - f].imag() : -spectrum[f].imag());
  }
  return output;
}

inline std::vector<float> FftwInverseReal(const std::vector<float>& input) {
  const std::size_t n = input.size();
  const std::vector<std::uint32_t> order = PairOrder(static_cast<std::uint32_t>(n));
  std::vector<std::complex<float>> spectrum(n / 2 + 1);
  spectrum[0] = input[0];
  spectrum[n / 2] = input[1];
  for (std::size_t pair = 1; pair < n / 2; ++pair) {
    // Halves, which are exact: FFTW adds the conjugate as a number of its own.
    const std::size_t f = order[pair];
    const float imaginary = input[2 * pair + 1] / 2;
    spectrum[std::min(f, n - f)] = {input[2 * pair] / 2, f > n / 2 ? imaginary : -imaginary};
  }
  std::vector<float> samples(n);
  Fftw<float>::ToReal(static_cast<int>(n), spectrum.data(), samples.data());
  std::vector<float> output(n);
  for (std::size_t i = 0; i < n; ++i) {
    output[i] = samples[SampleAt(i, n)];
  }
  return output;
}

template <class T>
std::vector<T> FftwTransform(Kind kind, const std::vector<T>& input) {
  if constexpr (std::is_same_v<T, float>) {
    if (kind == Kind::kForwardReal) {
      return FftwForwardReal(input);
    }
    if (kind == Kind::kInverseReal) {
      return FftwInverseReal(input);
    }
  }
  return FftwComplex(kind, input);
}

// The mean error is at most one and a half times FFTW's of the same input.
template <class T>
void ExpectMeanErrorNearFftw(Kind kind, int n, void (*transform)(T*)) {
  // Enough inputs of a small size that the ratio is no matter of luck.
  const int runs = std::max(1, 4096 / n);
  long double squares = 0;
  long double fftwSquares = 0;
  long double count = 0;
  for (int run = 0; run < runs; ++run) {
    const TransformCase<T>& wanted = UniformCase<T>(kind, n, run);
    std::vector<T> data = wanted.input;
    transform(data.data());
    const std::vector<T> fftw = FftwTransform(kind, wanted.input);
    for (const auto& element : wanted.expected) {
      const long double error = data[element.index] - element.value;
      const long double fftwError = fftw[element.index] - element.value;
      squares += error * error;
      fftwSquares += fftwError * fftwError;
      ++count;
    }
  }
  // Not their ratio: two uniform numbers of 64 bits may add without any error.
  const long double mean = std::sqrt(squares / count);
  const long double fftwMean = std::sqrt(fftwSquares / count);
  EXPECT_TRUE(mean <= 1.5L * fftwMean)
      << "size " << n << ": mean error " << mean << ", FFTW's " << fftwMean;
}

}  // namespace lx_test
