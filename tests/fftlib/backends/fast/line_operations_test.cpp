// SPDX-License-Identifier: BSD-3-Clause
// The line operations: against the definition of what they do, and one form against the other.
#include "fftlib/backends/fast/line_operations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "fftkernels/mixed_radix/quick_sizes.h"
#include "fftlib/backends/fast/fast_grids.h"
#include "fftlib/core/status.h"
#include "tests/fftkernels/mixed_radix/exact_roots.h"
#include "tests/fftlib/backends/fast/forms.h"
#include "tests/fftlib/backends/fast/hash.h"

namespace {

using lx::kLines;
using lx::kStride;
using lx_test::LineForm;
using Numbers = std::vector<double>;

constexpr double kGuard = 4711.0;

Numbers Noise(std::size_t count, std::uint32_t seed) {
  std::mt19937 random(seed);
  Numbers numbers(count);
  for (double& each : numbers) {
    each = random() / 2147483648.0 - 1.0;
  }
  return numbers;
}

// The plans of a grid, whose tables the grid's buffers hold.
std::unique_ptr<lx::FastGrids> MakeGrids(std::int32_t width, std::int32_t height) {
  auto grids = std::make_unique<lx::FastGrids>();
  EXPECT_EQ(lx::kStatusOk, grids->Prepare(lx::FastLayout({1, 1}, {width, height})));
  return grids;
}

// Rows of the grid, in numbers of a buffer with room for the highest frequency, and a guard.
std::size_t BufferSize(std::int32_t width) {
  return static_cast<std::size_t>(width / 2 + 1) * kStride + 1;
}
std::size_t BlockSize(std::int32_t height) { return static_cast<std::size_t>(height) * kStride; }

// Sizes that a grid may have, up to the largest: all small ones, and some of the larger.
std::vector<std::int32_t> Lengths(std::int32_t largest) {
  std::vector<std::int32_t> lengths;
  std::int32_t kept = 0;
  for (std::int32_t n = 2; n <= largest; ++n) {
    if (lx::IsSmooth(n) && (n <= 130 || n > kept + kept / 12 || n == 343 || n == 2401)) {
      lengths.push_back(n);
      kept = n;
    }
  }
  return lengths;
}

std::vector<lx_test::ExactRoot> Circle(std::int32_t n) {
  std::vector<lx_test::ExactRoot> roots;
  for (std::int32_t k = 0; k < n; ++k) {
    roots.push_back(lx_test::ExactRootOf(k, n));
  }
  return roots;
}

// Of a sum of that many numbers up to 1, of which each stage rounds some bits.
double BoundOf(std::int32_t length) {
  return 4e-16 * std::sqrt(length) * std::log2(length + 2) * 2;
}

class LineOperations : public testing::TestWithParam<LineForm> {
 protected:
  const lx::LineOperations& Operations() const { return *GetParam().operations; }
};

TEST_P(LineOperations, TransformRowsToTwiceTheirSpectraInThePlansOrder) {
  for (std::int32_t half : Lengths(360)) {
    const std::int32_t width = 2 * half;
    const auto grids = MakeGrids(width, 2);
    const lx::RowPlan& plan = grids->Rows();
    ASSERT_EQ(half + 1, plan.Columns());
    const Numbers rows = Noise(static_cast<std::size_t>(width) * kLines, 1);
    Numbers buffer(BufferSize(width), kGuard);
    std::copy(rows.begin(), rows.end(), buffer.begin());

    Operations().forwardRows(plan, buffer.data());

    const auto circle = Circle(width);
    for (std::int32_t p = 0; p <= half; ++p) {
      const std::int32_t k = p == half ? half : plan.half.FrequencyAt(p);
      for (std::int32_t lane = 0; lane < kLines; ++lane) {
        long double re = 0.0L;
        long double im = 0.0L;
        for (std::int32_t x = 0; x < width; ++x) {
          const auto& root = circle[static_cast<std::size_t>(std::int64_t{x} * k % width)];
          const long double value = rows[static_cast<std::size_t>(x) * kLines + lane];
          re += 2.0L * value * root.cosine;
          im -= 2.0L * value * root.sine;
        }
        const double* got = &buffer[static_cast<std::size_t>(p) * kStride + lane];
        ASSERT_NEAR(static_cast<double>(re), got[0], BoundOf(width)) << width << ", " << k;
        ASSERT_NEAR(static_cast<double>(im), got[kLines], BoundOf(width)) << width << ", " << k;
      }
    }
    ASSERT_EQ(kGuard, buffer.back()) << width;
  }
}

TEST_P(LineOperations, TransformSpectraBackToRowsTimesTwiceTheirLength) {
  for (std::int32_t half : Lengths(2500)) {
    const std::int32_t width = 2 * half;
    const auto grids = MakeGrids(width, 2);
    const Numbers rows = Noise(static_cast<std::size_t>(width) * kLines, 2);
    Numbers buffer(BufferSize(width), kGuard);
    std::copy(rows.begin(), rows.end(), buffer.begin());

    Operations().forwardRows(grids->Rows(), buffer.data());
    Operations().inverseRows(grids->Rows(), buffer.data());

    for (std::size_t i = 0; i < rows.size(); ++i) {
      ASSERT_NEAR(rows[i], buffer[i] / (2.0 * width), 1e-14) << width << ", " << i;
    }
    ASSERT_EQ(kGuard, buffer.back()) << width;
  }
}

// What a column is made of: rows of the block in an order of its own, or zero.
struct Column {
  explicit Column(std::int32_t height, std::int32_t blockRows) {
    std::mt19937 random(static_cast<std::uint32_t>(height));
    for (std::int32_t y = 0; y < height; ++y) {
      source.push_back(static_cast<std::int32_t>(random() % (blockRows + 1)) - 1);
    }
  }
  std::vector<std::int32_t> source;
};

TEST_P(LineOperations, TransformColumnsOfTheRowsThatTheyAreReadFrom) {
  constexpr std::int32_t kRows = 11;
  const Numbers block = Noise(BlockSize(kRows), 3);
  for (const std::int32_t height : Lengths(360)) {
    const auto grids = MakeGrids(2, height);
    const Column column(height, kRows);
    Numbers spectrum(BlockSize(height) + 1, kGuard);

    Operations().forwardColumns(grids->Columns(), {column.source.data(), 0}, block.data(),
                                spectrum.data());

    const auto circle = Circle(height);
    for (std::int32_t p = 0; p < height; ++p) {
      const std::int32_t k = grids->Columns().FrequencyAt(p);
      for (std::int32_t lane = 0; lane < kLines; ++lane) {
        long double re = 0.0L;
        long double im = 0.0L;
        for (std::int32_t y = 0; y < height; ++y) {
          const std::int32_t row = column.source[static_cast<std::size_t>(y)];
          if (row < 0) {
            continue;
          }
          const double* from = &block[static_cast<std::size_t>(row) * kStride + lane];
          const auto& root = circle[static_cast<std::size_t>(std::int64_t{y} * k % height)];
          re += from[0] * root.cosine + from[kLines] * root.sine;
          im += from[kLines] * root.cosine - from[0] * root.sine;
        }
        const double* got = &spectrum[static_cast<std::size_t>(p) * kStride + lane];
        ASSERT_NEAR(static_cast<double>(re), got[0], BoundOf(height)) << height << ", " << k;
        ASSERT_NEAR(static_cast<double>(im), got[kLines], BoundOf(height)) << height << ", " << k;
      }
    }
    ASSERT_EQ(kGuard, spectrum.back()) << height;
  }
}

// A spectrum that turns frequency k by a whole number of places moves a column down by as many.
TEST_P(LineOperations, ConvolveColumnsAndStoreTheRowsThatAreWantedAlone) {
  for (const std::int32_t height : Lengths(2500)) {
    const auto grids = MakeGrids(2, height);
    const std::int32_t moved = height / 3;
    const std::int32_t stored = std::max(height - 5, 1);
    Numbers spectrum(BlockSize(height));
    for (std::int32_t p = 0; p < height; ++p) {
      const std::int64_t k = grids->Columns().FrequencyAt(p);
      const lx_test::ExactRoot root = lx_test::ExactRootOf(k * moved, height);
      std::fill_n(&spectrum[static_cast<std::size_t>(p) * kStride], kLines,
                  static_cast<double>(root.cosine));
      std::fill_n(&spectrum[static_cast<std::size_t>(p) * kStride + kLines], kLines,
                  static_cast<double>(-root.sine));
    }
    std::vector<std::int32_t> source(static_cast<std::size_t>(height));
    for (std::int32_t y = 0; y < height; ++y) {
      source[static_cast<std::size_t>(y)] = y;
    }
    const Numbers before = Noise(BlockSize(height), 4);
    Numbers block = before;
    Numbers scratch(BlockSize(height) + 1, kGuard);

    Operations().convolveColumns(grids->Columns(), {source.data(), stored}, spectrum.data(),
                                 block.data(), scratch.data());

    for (std::int32_t y = 0; y < height; ++y) {
      const std::int32_t from = (y - moved + height) % height;
      for (std::int32_t i = 0; i < kStride; ++i) {
        const double got = block[static_cast<std::size_t>(y) * kStride + i];
        if (y < stored) {
          ASSERT_NEAR(before[static_cast<std::size_t>(from) * kStride + i], got / height, 1e-14)
              << height << ", " << y;
        } else {
          ASSERT_EQ(before[static_cast<std::size_t>(y) * kStride + i], got) << height << ", " << y;
        }
      }
    }
    ASSERT_EQ(kGuard, scratch.back()) << height;
  }
}

TEST_P(LineOperations, SpreadRowsOverBlocksAndNothingBesideThem) {
  for (const std::int32_t columns : {1, 2, 7, 8, 9, 16, 23}) {
    const std::int32_t blocks = (columns + kLines - 1) / kLines;
    const Numbers buffer = Noise(static_cast<std::size_t>(blocks) * kLines * kStride, 5);
    for (std::int32_t count = 1; count <= kLines; ++count) {
      constexpr std::int32_t kBefore = 2;
      constexpr std::int32_t kRows = kBefore + kLines + 1;
      const std::ptrdiff_t blockStride = kRows * kStride;
      Numbers plane(static_cast<std::size_t>(blocks * blockStride), kGuard);

      Operations().spread(buffer.data(), columns, count, blockStride,
                          plane.data() + kBefore * kStride);

      for (std::int32_t b = 0; b < blocks; ++b) {
        for (std::int32_t y = 0; y < kRows; ++y) {
          for (std::int32_t i = 0; i < kStride; ++i) {
            const double got = plane[static_cast<std::size_t>(b * blockStride + y * kStride + i)];
            const std::int32_t row = y - kBefore;
            const std::int32_t column = b * kLines + i % kLines;
            if (row < 0 || row >= count) {
              ASSERT_EQ(kGuard, got) << columns << ", " << count << ", row " << row;
            } else if (column < columns) {
              const std::int32_t part = i / kLines * kLines;
              ASSERT_EQ(buffer[static_cast<std::size_t>(column) * kStride + part + row], got)
                  << columns << ", " << count << ", row " << row << ", column " << column;
            }
          }
        }
      }
    }
  }
}

TEST_P(LineOperations, GatherTheRowsThatWereSpread) {
  for (const std::int32_t columns : {1, 2, 7, 8, 9, 16, 23}) {
    const std::int32_t blocks = (columns + kLines - 1) / kLines;
    const std::size_t size = static_cast<std::size_t>(blocks) * kLines * kStride;
    const Numbers buffer = Noise(size, 6);
    for (std::int32_t count = 1; count <= kLines; ++count) {
      const std::ptrdiff_t blockStride = (kLines + 1) * kStride;
      Numbers plane(static_cast<std::size_t>(blocks * blockStride), std::nan(""));
      Operations().spread(buffer.data(), columns, count, blockStride, plane.data());
      Numbers gathered(size + 1, kGuard);

      Operations().gather(plane.data(), columns, count, blockStride, gathered.data());

      for (std::size_t i = 0; i < static_cast<std::size_t>(columns) * kStride; ++i) {
        if (static_cast<std::int32_t>(i) % kLines < count) {
          ASSERT_EQ(buffer[i], gathered[i]) << columns << ", " << count << ", " << i;
        } else {
          // Other lanes are numbers too: what lies behind the rows is not read.
          ASSERT_TRUE(std::isfinite(gathered[i])) << columns << ", " << count << ", " << i;
        }
      }
      ASSERT_EQ(kGuard, gathered.back());
    }
  }
}

TEST_P(LineOperations, PackRowsAndUnpackThemAndNothingBesideThem) {
  constexpr std::int32_t kLongest = 24;
  const Numbers rows = Noise(static_cast<std::size_t>(kLines) * kLongest, 7);
  for (std::int32_t count = 0; count <= kLongest; ++count) {
    Numbers buffer(static_cast<std::size_t>(kLongest) * kLines, kGuard);
    Numbers back(rows.size(), kGuard);

    Operations().pack(rows.data(), kLongest, count, buffer.data());
    Operations().unpack(buffer.data(), kLongest, count, back.data());

    for (std::int32_t x = 0; x < kLongest; ++x) {
      for (std::int32_t y = 0; y < kLines; ++y) {
        const auto inRows = static_cast<std::size_t>(y * kLongest + x);
        const auto inBuffer = static_cast<std::size_t>(x * kLines + y);
        ASSERT_EQ(x < count ? rows[inRows] : kGuard, buffer[inBuffer]) << count << ", " << x;
        ASSERT_EQ(x < count ? rows[inRows] : kGuard, back[inRows]) << count << ", " << x;
      }
    }
  }
}

// What a form makes of noise: rows there and back, columns, and columns through a spectrum.
struct Made {
  Numbers spectra;
  Numbers rows;
  Numbers columnSpectra;
  Numbers columns;

  bool operator==(const Made&) const = default;
};

// Lines of black stand between the others: a zero must have the same sign everywhere.
Numbers NoiseBesideBlack(std::size_t count, std::uint32_t seed) {
  Numbers numbers = Noise(count, seed);
  for (std::size_t i = 0; i < count; ++i) {
    numbers[i] = i % kLines == 2 ? 0.0 : numbers[i];
  }
  return numbers;
}

Made Make(const lx::LineOperations& operations, std::int32_t length) {
  const auto grids = MakeGrids(2 * length, length);
  Made made;
  made.spectra = NoiseBesideBlack(BufferSize(2 * length), 8);
  operations.forwardRows(grids->Rows(), made.spectra.data());
  made.rows = made.spectra;
  operations.inverseRows(grids->Rows(), made.rows.data());
  const Column column(length, length);
  const Numbers block = NoiseBesideBlack(BlockSize(length), 9);
  made.columnSpectra.resize(BlockSize(length));
  operations.forwardColumns(grids->Columns(), {column.source.data(), 0}, block.data(),
                            made.columnSpectra.data());
  made.columns = block;
  Numbers scratch(BlockSize(length));
  operations.convolveColumns(grids->Columns(), {column.source.data(), length - 1},
                             made.columnSpectra.data(), made.columns.data(), scratch.data());
  return made;
}

std::uint64_t HashOf(const Numbers& numbers) {
  return lx_test::HashOf(numbers.data(), numbers.size() * sizeof(double));
}

// -0 and 0 are not the same bits either.
TEST_P(LineOperations, GiveTheBitsOfThePlainOnesForEveryLength) {
  for (const std::int32_t length : Lengths(4100)) {
    const Made plain = Make(lx::PlainLineOperations(), length);
    const Made made = Make(Operations(), length);
    ASSERT_EQ(HashOf(plain.spectra), HashOf(made.spectra)) << length;
    ASSERT_EQ(HashOf(plain.rows), HashOf(made.rows)) << length;
    ASSERT_EQ(HashOf(plain.columnSpectra), HashOf(made.columnSpectra)) << length;
    ASSERT_EQ(HashOf(plain.columns), HashOf(made.columns)) << length;
  }
}

// The same on every processor and system. Where quick_sizes.h takes a length apart in another way
// all of a line changes: each failure prints the one that takes its place.
struct HashedLength {
  std::int32_t length;
  std::uint64_t rows;
  std::uint64_t columns;
};

std::ostream& operator<<(std::ostream& out, const HashedLength& each) {
  const auto hash = [&](std::uint64_t value) -> std::ostream& {
    return out << ", 0x" << std::hex << std::setw(16) << std::setfill('0') << value << std::dec;
  };
  out << '{' << each.length;
  hash(each.rows);
  hash(each.columns);
  return out << "},";
}

// clang-format off
constexpr HashedLength kHashes[] = {
    {2, 0x1be0360a5ade2aa4, 0xbae51c186b28020f},
    {3, 0xaaa0242f4e689d5a, 0x6b3f91198bfa263a},
    {7, 0x940dc0c6de698e30, 0xf988f475407c2e6d},
    {14, 0x918ba5cd839c53a7, 0x0f9c0e0be3f62eee},
    {45, 0x17fa182eef29f195, 0x2c79434a812139a0},
    {64, 0x9d1a527f9dc5d93c, 0x833967d4a2bb65d0},
    {100, 0xe8b8afb6b1d907c0, 0x469ea0470d82dd0f},
    {343, 0x0d7e800d9636856d, 0x47e50160bcaa459e},
    {1080, 0x42ceaefea4ba2cff, 0x19964b8d296c5888},
    {1152, 0x96c7c4a3ec48862e, 0x17b74c5e56f36c27},
    {2187, 0xa8e074c03d7a07e0, 0xa37463d38b4486d2},
};
// clang-format on

TEST_P(LineOperations, GiveTheBitsThatAreWrittenDown) {
  for (const HashedLength& expected : kHashes) {
    const Made made = Make(Operations(), expected.length);
    const HashedLength got{expected.length, HashOf(made.rows), HashOf(made.columns)};
    EXPECT_EQ(expected.rows, got.rows) << "    " << got;
    EXPECT_EQ(expected.columns, got.columns) << "    " << got;
  }
}

std::string NameOf(const testing::TestParamInfo<LineForm>& form) { return form.param.name; }

INSTANTIATE_TEST_SUITE_P(Forms, LineOperations, testing::ValuesIn(lx_test::LineForms()), NameOf);

}  // namespace
