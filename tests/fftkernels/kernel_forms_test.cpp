// SPDX-License-Identifier: BSD-3-Clause
// Each form that the machine has, called by name: the kernels themselves run only the fastest.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "fftkernels/fftkernels.h"
#include "tests/fftkernels/fftw_reference.h"
#include "tests/fftkernels/placed_array.h"
#include "tests/fftkernels/transform_model.h"

namespace {

using lx::TransformTable;
using lx_test::Kind;
using lx_test::PlacedArray;
using lx_test::UniformValues;
using lx_test::WholeValues;

struct Form {
  const char* name;
  const TransformTable* (*table)();
};

std::ostream& operator<<(std::ostream& out, const Form& form) { return out << form.name; }

const Form kForms[] = {
    {"Plain", [] { return &lx::PlainTransforms(); }},
    {"Vector128", lx::Vector128Transforms},
    {"Avx2", lx::Avx2Transforms},
    {"Avx512", lx::Avx512Transforms},
};

struct Transform {
  const char* name;
  Kind kind;
  bool isDouble;
};

std::ostream& operator<<(std::ostream& out, const Transform& transform) {
  return out << transform.name;
}

constexpr Transform kTransforms[] = {
    {"ForwardComplexF32", Kind::kForwardComplex, false},
    {"InverseComplexF32", Kind::kInverseComplex, false},
    {"ForwardComplexF64", Kind::kForwardComplex, true},
    {"InverseComplexF64", Kind::kInverseComplex, true},
    {"ForwardRealF32", Kind::kForwardReal, false},
    {"InverseRealF32", Kind::kInverseReal, false},
};

template <class T>
const TransformTable::Transform<T>& OfKind(const TransformTable& table, Kind kind) {
  if constexpr (std::is_same_v<T, double>) {
    return kind == Kind::kForwardComplex ? table.forwardComplexF64 : table.inverseComplexF64;
  } else {
    switch (kind) {
      case Kind::kForwardComplex:
        return table.forwardComplexF32;
      case Kind::kInverseComplex:
        return table.inverseComplexF32;
      case Kind::kForwardReal:
        return table.forwardRealF32;
      case Kind::kInverseReal:
        break;
    }
    return table.inverseRealF32;
  }
}

class TransformForm : public testing::TestWithParam<std::tuple<Form, Transform>> {
 protected:
  void SetUp() override {
    table = std::get<Form>(GetParam()).table();
    if (table == nullptr) {
      GTEST_SKIP() << "not on this machine";
    }
  }

  Kind TransformKind() const { return std::get<Transform>(GetParam()).kind; }

  // check(n, transform) with each size's function of the form.
  template <class Check>
  void ForEachSize(const Check& check) {
    for (int n = lx::kFirstTableSize; n <= lx::kLargestTransform; n *= 2) {
      const auto index = static_cast<std::size_t>(lx::TableIndex(n));
      if (std::get<Transform>(GetParam()).isDouble) {
        check(n, OfKind<double>(*table, TransformKind())[index]);
      } else {
        check(n, OfKind<float>(*table, TransformKind())[index]);
      }
    }
  }

  const TransformTable* table = nullptr;
};

TEST_P(TransformForm, GivesThePlainSum) {
  ForEachSize([this]<class T>(int n, void (*transform)(T*)) {
    lx_test::ExpectPlainSum(TransformKind(), n, transform);
  });
}

TEST_P(TransformForm, ErrsOnAverageLittleMoreThanFftw) {
  ForEachSize([this]<class T>(int n, void (*transform)(T*)) {
    lx_test::ExpectMeanErrorNearFftw(TransformKind(), n, transform);
  });
}

// Every element, where the plain sum is only drawn by lot.
TEST_P(TransformForm, GivesWhatThePlainFormGives) {
  ForEachSize([this]<class T>(int n, void (*transform)(T*)) {
    std::vector<T> data = UniformValues<T>(lx_test::ElementsOf(TransformKind(), n), 1);
    std::vector<T> expected = data;

    transform(data.data());

    const auto index = static_cast<std::size_t>(lx::TableIndex(n));
    OfKind<T>(lx::PlainTransforms(), TransformKind())[index](expected.data());
    // Either may err.
    lx_test::ExpectAllNear(expected, data, 2 * lx_test::LargestErrorOf(n, expected));
  });
}

TEST_P(TransformForm, TakesAnArrayOffAnyAlignment) {
  ForEachSize([this]<class T>(int n, void (*transform)(T*)) {
    const lx_test::TransformCase<T>& wanted = lx_test::UniformCase<T>(TransformKind(), n);
    PlacedArray<T> data(wanted.input, 1);

    transform(data.data());

    lx_test::ExpectMatches(wanted, data.data(), n);
  });
}

TEST_P(TransformForm, WritesNothingBesideItsArray) {
  ForEachSize([this]<class T>(int n, void (*transform)(T*)) {
    PlacedArray<T> data(UniformValues<T>(lx_test::ElementsOf(TransformKind(), n), 2), 1);

    transform(data.data());

    EXPECT_TRUE(data.GuardsAreUntouched()) << "size " << n;
  });
}

INSTANTIATE_TEST_SUITE_P(Kernels, TransformForm,
                         testing::Combine(testing::ValuesIn(kForms),
                                          testing::ValuesIn(kTransforms)),
                         [](const auto& test) {
                           return std::string(std::get<Form>(test.param).name) +
                                  std::get<Transform>(test.param).name;
                         });

class MultiplyForm : public testing::TestWithParam<Form> {
 protected:
  void SetUp() override {
    table = GetParam().table();
    if (table == nullptr) {
      GTEST_SKIP() << "not on this machine";
    }
  }

  // check(count, multiply) in both widths, with counts that fill registers and that leave a rest.
  template <class Check>
  void ForEachCount(const Check& check) {
    for (int count = 1; count <= 70; ++count) {
      check(count, table->multiplyF32);
      check(count, table->multiplyF64);
    }
    // What the complex and the real product of the largest size ask for.
    for (const int count : {lx::kLargestTransform, (lx::kLargestTransform - 4) / 2}) {
      check(count, table->multiplyF32);
      check(count, table->multiplyF64);
    }
  }

  const TransformTable* table = nullptr;
};

template <class T>
using Multiply = void (*)(T* a, const T* b, int count);

template <class T>
std::vector<T> Products(const std::vector<T>& a, const std::vector<T>& b) {
  std::vector<T> products;
  for (std::size_t i = 0; i < a.size(); i += 2) {
    products.push_back(a[i] * b[i] - a[i + 1] * b[i + 1]);
    products.push_back(a[i] * b[i + 1] + a[i + 1] * b[i]);
  }
  return products;
}

TEST_P(MultiplyForm, GivesTheProductsOfAnyCount) {
  ForEachCount([]<class T>(int count, Multiply<T> multiply) {
    const std::vector<T> a = WholeValues<T>(2 * static_cast<std::size_t>(count), 3);
    const std::vector<T> b = WholeValues<T>(a.size(), 4);
    std::vector<T> data = a;

    multiply(data.data(), b.data(), count);

    EXPECT_TRUE(data == Products(a, b)) << "count " << count << ", bytes " << sizeof(T);
  });
}

TEST_P(MultiplyForm, SquaresAnArrayThatIsBoth) {
  ForEachCount([]<class T>(int count, Multiply<T> multiply) {
    const std::vector<T> a = WholeValues<T>(2 * static_cast<std::size_t>(count), 5);
    std::vector<T> data = a;

    multiply(data.data(), data.data(), count);

    EXPECT_TRUE(data == Products(a, a)) << "count " << count << ", bytes " << sizeof(T);
  });
}

TEST_P(MultiplyForm, WritesTheFirstArrayAlone) {
  ForEachCount([]<class T>(int count, Multiply<T> multiply) {
    const std::vector<T> before = UniformValues<T>(2 * static_cast<std::size_t>(count), 6);
    PlacedArray<T> a(before, 1);
    PlacedArray<T> b(before, 3);

    multiply(a.data(), b.data(), count);

    EXPECT_TRUE(a.GuardsAreUntouched()) << "count " << count << ", bytes " << sizeof(T);
    EXPECT_TRUE(b.GuardsAreUntouched()) << "count " << count << ", bytes " << sizeof(T);
    EXPECT_TRUE(b.Values() == before) << "count " << count << ", bytes " << sizeof(T);
  });
}

// A fused product rounds once, another twice: which it is must not hang on addresses.
TEST_P(MultiplyForm, GivesTheSameBitsWhereverTheArraysLie) {
  ForEachCount([]<class T>(int count, Multiply<T> multiply) {
    const std::size_t size = 2 * static_cast<std::size_t>(count);
    const std::vector<T> a = UniformValues<T>(size, 7);
    const std::vector<T> b = UniformValues<T>(size, 8);
    std::vector<T> apart = a;
    multiply(apart.data(), b.data(), count);

    for (std::size_t gap = 0; gap < 20; ++gap) {
      std::vector<T> both(2 * size + gap);
      std::copy(b.begin(), b.end(), both.begin());
      T* data = both.data() + size + gap;
      std::copy(a.begin(), a.end(), data);

      multiply(data, both.data(), count);

      EXPECT_TRUE(std::equal(apart.begin(), apart.end(), data))
          << "count " << count << ", bytes " << sizeof(T) << ", gap " << gap;
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Kernels, MultiplyForm, testing::ValuesIn(kForms),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(FormChoice, TakesAFormThatTheMachineHas) {
  bool found = false;
  for (const Form& form : kForms) {
    found = found || form.table() == &lx::GetTransforms();
  }
  EXPECT_TRUE(found);
}

#if defined(__x86_64__)

// Else the tests above skip a form that the machine has, and nobody sees it.
TEST(FormChoice, OffersWhatTheProcessorHas) {
  const bool avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
  const bool avx512 = avx2 && __builtin_cpu_supports("avx512f") &&
                      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");

  EXPECT_NE(lx::Vector128Transforms(), nullptr);
  EXPECT_EQ(lx::Avx2Transforms() != nullptr, avx2);
  EXPECT_EQ(lx::Avx512Transforms() != nullptr, avx512);
}

#endif

}  // namespace
