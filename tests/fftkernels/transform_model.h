// SPDX-License-Identifier: BSD-3-Clause
// What the transforms must give: the plain sum over all samples in long double, and how far from
// it they may be. Nothing here is taken from the kernels.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <numbers>
#include <numeric>
#include <random>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace lx_test {

using Number = std::complex<long double>;

// That of std::complex looks for infinities, at several times the cost.
inline Number Times(const Number& a, const Number& b) {
  return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// The frequencies that the places of a complex spectrum hold: the even ones, those that are 1 mod
// 4, those that are 3 mod 4, each block in the order of its own size.
inline std::vector<std::uint32_t> FrequencyOrder(std::uint32_t n) {
  if (n == 1) {
    return {0};
  }
  if (n == 2) {
    return {0, 1};
  }
  std::vector<std::uint32_t> order;
  order.reserve(n);
  for (const std::uint32_t f : FrequencyOrder(n / 2)) {
    order.push_back(2 * f);
  }
  const std::vector<std::uint32_t> quarter = FrequencyOrder(n / 4);
  for (const std::uint32_t f : quarter) {
    order.push_back(4 * f + 1);
  }
  for (const std::uint32_t f : quarter) {
    order.push_back((4 * f + n - 1) % n);
  }
  return order;
}

// The frequencies of the pairs of a real spectrum. Pair 0 stands for 0 and n/2, both real.
inline std::vector<std::uint32_t> PairOrder(std::uint32_t n) {
  if (n == 2) {
    return {0};
  }
  std::vector<std::uint32_t> order;
  order.reserve(n / 2);
  for (const std::uint32_t f : PairOrder(n / 2)) {
    order.push_back(2 * f);
  }
  for (const std::uint32_t f : FrequencyOrder(n / 4)) {
    order.push_back(4 * f + 1);
  }
  return order;
}

// The sample of the sequence that position i of a real array holds.
inline std::size_t SampleAt(std::size_t i, std::size_t n) { return i / 2 + (i % 2) * (n / 2); }

// exp(2 pi i j / n) for j from 0 to n - 1. Made once for each size, by one thread.
inline const std::vector<Number>& Roots(std::size_t n) {
  static std::map<std::size_t, std::vector<Number>> known;
  std::vector<Number>& roots = known[n];
  if (roots.empty()) {
    roots.resize(n);
    for (std::size_t j = 0; j < n; ++j) {
      // Of the nearest axis, so that the axes themselves come out exact.
      const std::size_t quarters = (4 * j + n / 2) / n;
      const long double turns =
          (static_cast<long double>(j) - static_cast<long double>(quarters * n) / 4) /
          static_cast<long double>(n);
      Number root(std::cos(2 * std::numbers::pi_v<long double> * turns),
                  std::sin(2 * std::numbers::pi_v<long double> * turns));
      for (std::size_t q = 0; q < quarters; ++q) {
        root = Number(-root.imag(), root.real());
      }
      roots[j] = root;
    }
  }
  return roots;
}

// The sum over j of x[j] exp(2 pi i j f / n).
inline Number SumAt(const std::vector<Number>& x, std::size_t f) {
  const std::size_t n = x.size();
  const std::vector<Number>& roots = Roots(n);
  Number sum = 0;
  std::size_t angle = 0;
  for (std::size_t j = 0; j < n; ++j) {
    sum += Times(x[j], roots[angle]);
    angle = (angle + f) % n;
  }
  return sum;
}

// Numbers that are uniform in -1 to 1, the same on every machine.
template <class T>
std::vector<T> UniformValues(std::size_t count, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::vector<T> values(count);
  for (T& v : values) {
    v = static_cast<T>(static_cast<double>(random() >> 11) * 0x1p-52 - 1.0);
  }
  return values;
}

// Whole numbers of -100 to 100: their products and the sums of two of them are exact in either
// width, however a processor rounds on the way.
template <class T>
std::vector<T> WholeValues(std::size_t count, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::vector<T> values(count);
  for (T& v : values) {
    v = static_cast<T>(static_cast<int>(random() % 201) - 100);
  }
  return values;
}

// Which of count outputs the plain sum is made for: all of them up to 1024; above, where all take
// seconds under a sanitizer, as many again, drawn by lot, with the ends of the blocks.
inline std::vector<std::size_t> PlacesToSum(std::size_t count) {
  constexpr std::size_t kMost = 1024;
  std::vector<std::size_t> places(count);
  std::iota(places.begin(), places.end(), std::size_t{0});
  if (count > kMost) {
    std::mt19937_64 random(count);
    for (std::size_t i = 0; i < kMost; ++i) {
      std::swap(places[i], places[i + random() % (count - i)]);
    }
    places.resize(kMost);
    for (const std::size_t end : {count / 2, count * 3 / 4, count}) {
      places.push_back(end - 1);
      places.push_back(end % count);
    }
  }
  return places;
}

template <class T>
std::vector<Number> ComplexNumbers(const std::vector<T>& data) {
  std::vector<Number> numbers(data.size() / 2);
  for (std::size_t j = 0; j < numbers.size(); ++j) {
    numbers[j] = Number(data[2 * j], data[2 * j + 1]);
  }
  return numbers;
}

enum class Kind { kForwardComplex, kInverseComplex, kForwardReal, kInverseReal };

inline bool IsReal(Kind kind) { return kind == Kind::kForwardReal || kind == Kind::kInverseReal; }

// The array elements that n takes.
inline std::size_t ElementsOf(Kind kind, int n) {
  return static_cast<std::size_t>(n) * (IsReal(kind) ? 1 : 2);
}

// One input, and what some elements of the output must be.
template <class T>
struct TransformCase {
  struct Element {
    std::size_t index;
    long double value;
  };

  std::vector<T> input;
  std::vector<Element> expected;

  long double LargestExpected() const {
    long double largest = 0;
    for (const Element& element : expected) {
      largest = std::max(largest, std::abs(element.value));
    }
    return largest;
  }
};

template <class T>
TransformCase<T> MakeTransformCase(Kind kind, std::vector<T> input) {
  TransformCase<T> made;
  const auto expect = [&made](std::size_t index, long double value) {
    made.expected.push_back({index, value});
  };
  const std::size_t n = IsReal(kind) ? input.size() : input.size() / 2;
  const auto size = static_cast<std::uint32_t>(n);
  switch (kind) {
    case Kind::kForwardComplex: {
      const std::vector<Number> x = ComplexNumbers(input);
      const std::vector<std::uint32_t> order = FrequencyOrder(size);
      for (const std::size_t p : PlacesToSum(n)) {
        const Number y = SumAt(x, order[p]);
        expect(2 * p, y.real());
        expect(2 * p + 1, y.imag());
      }
      break;
    }
    case Kind::kInverseComplex: {
      const std::vector<Number> inOrder = ComplexNumbers(input);
      const std::vector<std::uint32_t> order = FrequencyOrder(size);
      std::vector<Number> spectrum(n);
      for (std::size_t p = 0; p < n; ++p) {
        spectrum[order[p]] = inOrder[p];
      }
      for (const std::size_t j : PlacesToSum(n)) {
        const Number y = SumAt(spectrum, (n - j) % n);
        expect(2 * j, y.real());
        expect(2 * j + 1, y.imag());
      }
      break;
    }
    case Kind::kForwardReal: {
      std::vector<Number> sequence(n);
      for (std::size_t i = 0; i < n; ++i) {
        sequence[SampleAt(i, n)] = input[i];
      }
      const std::vector<std::uint32_t> order = PairOrder(size);
      for (const std::size_t pair : PlacesToSum(n / 2)) {
        const Number y = SumAt(sequence, order[pair]);
        expect(2 * pair, y.real());
        expect(2 * pair + 1, pair == 0 ? SumAt(sequence, n / 2).real() : y.imag());
      }
      break;
    }
    case Kind::kInverseReal: {
      // A scaled pair holds twice its frequency's share and stands for its conjugate too: the two
      // together are the real part of what the pair alone gives.
      const std::vector<std::uint32_t> order = PairOrder(size);
      std::vector<Number> spectrum(n);
      spectrum[0] = input[0];
      spectrum[n / 2] = input[1];
      for (std::size_t pair = 1; pair < n / 2; ++pair) {
        spectrum[order[pair]] = Number(input[2 * pair], input[2 * pair + 1]);
      }
      for (const std::size_t i : PlacesToSum(n)) {
        expect(i, SumAt(spectrum, (n - SampleAt(i, n)) % n).real());
      }
      break;
    }
  }
  made.input = std::move(input);
  return made;
}

// The case of uniform values for a kind and a size; run tells apart as many as wanted. Made once,
// by one thread.
template <class T>
const TransformCase<T>& UniformCase(Kind kind, int n, int run = 0) {
  static std::map<std::tuple<Kind, int, int>, TransformCase<T>> known;
  TransformCase<T>& found = known[{kind, n, run}];
  if (found.input.empty()) {
    const auto seed = static_cast<std::uint64_t>(n) * 16384 + static_cast<std::uint64_t>(run);
    found = MakeTransformCase(kind, UniformValues<T>(ElementsOf(kind, n), seed));
  }
  return found;
}

// The largest error that a transform of components of -1 to 1 may show: in proportion to the size,
// but where that is less than the width can hold, two units of the largest value.
template <class T>
long double LargestError(int n, long double largestValue) {
  const long double atLargestSize = std::is_same_v<T, float> ? 5e-5L : 1e-13L;
  const long double units = 2 * std::numeric_limits<T>::epsilon() * largestValue;
  return std::min(atLargestSize, std::max(atLargestSize * n / 8192, units));
}

// The same for a transform that is compared with another transform, not with the plain sum.
template <class T>
long double LargestErrorOf(int n, const std::vector<T>& values) {
  long double largest = 0;
  for (const T v : values) {
    largest = std::max(largest, std::abs(static_cast<long double>(v)));
  }
  return LargestError<T>(n, largest);
}

// transforms: how many stand one behind another in what was got.
template <class T>
void ExpectMatches(const TransformCase<T>& wanted, const T* got, int n, int transforms = 1) {
  const long double allowed = transforms * LargestError<T>(n, wanted.LargestExpected());
  for (const auto& element : wanted.expected) {
    const long double error = std::abs(got[element.index] - element.value);
    // Not error > allowed, which a NaN passes.
    ASSERT_TRUE(error <= allowed) << "size " << n << ", element " << element.index << ": got "
                                  << got[element.index] << ", expected " << element.value
                                  << ", allowed error " << allowed;
  }
}

template <class T>
void ExpectPlainSum(Kind kind, int n, void (*transform)(T*)) {
  const TransformCase<T>& wanted = UniformCase<T>(kind, n);
  std::vector<T> data = wanted.input;

  transform(data.data());

  ExpectMatches(wanted, data.data(), n);
}

// Every element within allowed of what is expected. Expected is anything with an index operator.
template <class T, class Expected>
void ExpectAllNear(const Expected& expected, const std::vector<T>& got, long double allowed) {
  for (std::size_t i = 0; i < got.size(); ++i) {
    const long double error = std::abs(static_cast<long double>(got[i]) - expected[i]);
    ASSERT_TRUE(error <= allowed) << "array of " << got.size() << ", element " << i << ": got "
                                  << got[i] << ", expected " << expected[i] << ", allowed error "
                                  << allowed;
  }
}

// The numbers as the elements of an array.
inline std::vector<long double> Elements(const std::vector<Number>& numbers) {
  std::vector<long double> elements;
  elements.reserve(2 * numbers.size());
  for (const Number& number : numbers) {
    elements.push_back(number.real());
    elements.push_back(number.imag());
  }
  return elements;
}

// The n-th sample of the cyclic convolution of a and b.
inline Number ConvolvedAt(const std::vector<Number>& a, const std::vector<Number>& b,
                          std::size_t n) {
  Number sum = 0;
  for (std::size_t j = 0; j < a.size(); ++j) {
    sum += Times(a[j], b[(n + b.size() - j) % b.size()]);
  }
  return sum;
}

}  // namespace lx_test
