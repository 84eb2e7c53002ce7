// SPDX-License-Identifier: BSD-3-Clause
// What a call may not do or need: every operation of every size.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <latch>
#include <new>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "tests/fftkernels/counted_heap.h"
#include "tests/fftkernels/kernels_by_size.h"
#include "tests/fftkernels/placed_array.h"
#include "tests/fftkernels/transform_model.h"

namespace {

using lx_test::PlacedArray;
using lx_test::UniformValues;

// Either of one array or of two.
template <class T>
struct Operation {
  const char* name;
  int n;
  std::size_t elements;
  void (*ofOne)(T* data);
  void (*ofTwo)(T* a, const T* b);

  void Run(T* a, const T* b) const {
    if (ofOne != nullptr) {
      ofOne(a);
    } else {
      ofTwo(a, b);
    }
  }

  std::string Name() const { return std::string(name) + " of size " + std::to_string(n); }
};

template <class T, class Kernels>
void AddOperations(const Kernels& kernels, std::size_t elements,
                   std::vector<Operation<T>>* operations) {
  operations->push_back({"forward", kernels.n, elements, kernels.forward, nullptr});
  operations->push_back({"inverse", kernels.n, elements, kernels.inverse, nullptr});
  operations->push_back({"scale", kernels.n, elements, kernels.scale, nullptr});
  operations->push_back({"multiply", kernels.n, elements, nullptr, kernels.multiply});
}

template <class T>
std::vector<Operation<T>> EveryOperation() {
  std::vector<Operation<T>> operations;
  for (const auto& kernels : lx_test::EveryComplexSize<T>()) {
    AddOperations(kernels, 2 * static_cast<std::size_t>(kernels.n), &operations);
  }
  if constexpr (std::is_same_v<T, float>) {
    for (const auto& kernels : lx_test::EveryRealSize()) {
      AddOperations(kernels, static_cast<std::size_t>(kernels.n), &operations);
    }
  }
  return operations;
}

template <class T>
class KernelCall : public testing::Test {};

struct WidthNames {
  template <class T>
  static std::string GetName(int /*index*/) {
    return std::is_same_v<T, float> ? "F32" : "F64";
  }
};

using Widths = testing::Types<float, double>;
TYPED_TEST_SUITE(KernelCall, Widths, WidthNames);

TYPED_TEST(KernelCall, WritesNothingBesideItsArray) {
  for (const auto& operation : EveryOperation<TypeParam>()) {
    PlacedArray<TypeParam> a(UniformValues<TypeParam>(operation.elements, 1), 0);
    PlacedArray<TypeParam> b(UniformValues<TypeParam>(operation.elements, 2), 0);

    operation.Run(a.data(), b.data());

    EXPECT_TRUE(a.GuardsAreUntouched()) << operation.Name();
    EXPECT_TRUE(b.GuardsAreUntouched()) << operation.Name() << ", second array";
  }
}

// Two arrays off by one element and by three: neither suits any register, nor the other.
TYPED_TEST(KernelCall, TakesArraysOffAnyAlignment) {
  for (const auto& operation : EveryOperation<TypeParam>()) {
    const std::vector<TypeParam> a = UniformValues<TypeParam>(operation.elements, 3);
    const std::vector<TypeParam> b = UniformValues<TypeParam>(operation.elements, 4);
    PlacedArray<TypeParam> offA(a, 1);
    PlacedArray<TypeParam> offB(b, 3);

    operation.Run(offA.data(), offB.data());

    SCOPED_TRACE(operation.Name());
    EXPECT_TRUE(offA.GuardsAreUntouched());
    PlacedArray<TypeParam> alignedA(a, 0);
    PlacedArray<TypeParam> alignedB(b, 0);
    operation.Run(alignedA.data(), alignedB.data());
    const std::vector<TypeParam> expected = alignedA.Values();
    lx_test::ExpectAllNear(expected, offA.Values(), lx_test::LargestErrorOf(operation.n, expected));
  }
}

TYPED_TEST(KernelCall, AllocatesNothingOnceTheTablesStand) {
  const std::vector<Operation<TypeParam>> operations = EveryOperation<TypeParam>();
  std::vector<TypeParam> a(2 * 8192);
  const std::vector<TypeParam> b(2 * 8192);
  for (const auto& operation : operations) {
    operation.Run(a.data(), b.data());
  }

  for (const auto& operation : operations) {
    const int before = lx_test::allocations;
    operation.Run(a.data(), b.data());
    const int after = lx_test::allocations;

    EXPECT_EQ(after, before) << operation.Name();
  }
}

// A program that makes this its first call makes the tables here, on all threads at once.
TYPED_TEST(KernelCall, OnEightThreadsAtOnceGivesWhatItGivesAlone) {
  constexpr std::size_t kThreads = 8;
  const std::vector<Operation<TypeParam>> operations = EveryOperation<TypeParam>();
  const auto run = [&operations](std::size_t thread) {
    std::vector<std::vector<TypeParam>> results;
    for (const auto& operation : operations) {
      // Both arrays in one.
      const std::vector<TypeParam> input =
          UniformValues<TypeParam>(2 * operation.elements, 10 + thread);
      std::vector<TypeParam> result;
      // The small ones are over before another thread is there.
      const std::size_t repeats = 1 + 4096 / operation.elements;
      for (std::size_t i = 0; i < repeats; ++i) {
        PlacedArray<TypeParam> both(input, 0);
        operation.Run(both.data(), both.data() + operation.elements);
        if (i > 0 && both.Values() != result) {
          result.clear();  // which is nobody's result
          break;
        }
        result = both.Values();
      }
      results.push_back(result);
    }
    return results;
  };
  std::vector<std::vector<std::vector<TypeParam>>> results(kThreads);
  std::latch start(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      start.arrive_and_wait();
      results[t] = run(t);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }

  for (std::size_t t = 0; t < kThreads; ++t) {
    const std::vector<std::vector<TypeParam>> alone = run(t);
    for (std::size_t i = 0; i < operations.size(); ++i) {
      EXPECT_TRUE(results[t][i] == alone[i]) << operations[i].Name() << " on thread " << t;
    }
  }
}

// Of the counter above, without which no call could be seen to allocate.
TEST(AllocationCounter, SeesEachWayToAllocate) {
  static void* volatile kept;
  const int before = lx_test::allocations;

  kept = std::malloc(1);
  std::free(kept);
  kept = std::calloc(1, 1);
  kept = std::realloc(kept, 2);
  std::free(kept);
  lx_test::AllocateAligned();
  kept = ::operator new(1);
  ::operator delete(kept);
  kept = ::operator new (64, std::align_val_t{64});
  ::operator delete (kept, std::align_val_t{64});

  EXPECT_EQ(lx_test::allocations, before + 6);
}

}  // namespace
