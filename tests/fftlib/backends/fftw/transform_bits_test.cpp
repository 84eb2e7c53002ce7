// SPDX-License-Identifier: BSD-3-Clause
// One set of bits on every system: what FFTW makes of numbers on Linux, it makes on Windows, too.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <ostream>
#include <random>
#include <string_view>

#include "baselib/platform/platform.h"
#include "fftlib/backends/fftw/fft_calls.h"
#include "tests/fftlib/backends/fast/hash.h"

namespace {

using lx_test::HashOf;

struct TransformBits {
  int rows;
  int columns;
  std::uint64_t forward;
  std::uint64_t inverse;
};

// As it stands in the table below.
std::ostream& operator<<(std::ostream& out, const TransformBits& bits) {
  return out << "    {" << bits.rows << ", " << bits.columns << ", 0x" << std::hex << bits.forward
             << ", 0x" << bits.inverse << std::dec << "},";
}

// What Debian's library gave, which is not ours. These are here for sameness alone: whether
// transforms are right is seen elsewhere. Sides of 1024 and 8192 have factors that C libraries
// round differently.
//   rows, columns, hash of the spectrum, hash of what comes back
constexpr TransformBits kBits[] = {
    {512, 512, 0xc655c05542b3ef09, 0xd4441eeff5f461d3},
    {1024, 1024, 0x9d2d0695a47c7d25, 0x883c0bd8e8a59e4a},
    {8, 2048, 0x74394a2e8befd3f2, 0x826d6dd3b9f9732c},
    {8, 4096, 0xb9d017c29c984ff1, 0x9092e41a69eac4cf},
    {8, 8192, 0xdbdb9a6b3e6f057b, 0x7a6b507ec7795dd2},
};

TransformBits BitsOf(int rows, int columns) {
  const lx::FftCalls& calls = lx::LibraryFftCalls();
  const std::scoped_lock hold(lx::FftPlannerLock());
  const std::size_t count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
  const std::size_t spectrumCount =
      static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns / 2 + 1);
  auto* const numbers = static_cast<double*>(calls.allocate(count * sizeof(double)));
  auto* const spectrum =
      static_cast<double(*)[2]>(calls.allocate(spectrumCount * 2 * sizeof(double)));
  fftw_plan_s* const forward =
      calls.planForward(rows, columns, numbers, spectrum, lx::kPlanEstimate);
  fftw_plan_s* const inverse =
      calls.planInverse(rows, columns, spectrum, numbers, lx::kPlanEstimate);
  std::mt19937 random(1);
  for (std::size_t i = 0; i < count; ++i) {
    numbers[i] = random() / 4294967296.0;
  }

  calls.execute(forward);
  TransformBits bits{rows, columns, HashOf(spectrum, spectrumCount * 2 * sizeof(double)), 0};
  calls.execute(inverse);
  bits.inverse = HashOf(numbers, count * sizeof(double));

  calls.destroyPlan(forward);
  calls.destroyPlan(inverse);
  calls.release(numbers);
  calls.release(spectrum);
  return bits;
}

TEST(TransformBits, AreThoseOfDebiansLibraryOnEverySystem) {
  const std::string_view version = lx::kFftVersion;
  const std::string_view processor = lx::GetPlatform().processorForm();
  if (version != "fftw-3.3.10-sse2-avx" || processor != "x86-64 with AVX and FMA") {
    GTEST_SKIP() << version << " on " << processor << " rounds by itself";
  }
  if (lx::AcquireFftThreads() != 0) {
    // Others in this process may have asked for more, by which plans differ.
    const std::scoped_lock hold(lx::FftPlannerLock());
    lx::LibraryFftCalls().planWithThreads(1);
  }
  for (const TransformBits& expected : kBits) {
    const TransformBits got = BitsOf(expected.rows, expected.columns);
    EXPECT_TRUE(expected.forward == got.forward && expected.inverse == got.inverse) << got;
  }
  lx::ReleaseFftThreads();
}

}  // namespace
