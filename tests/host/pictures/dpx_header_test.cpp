// SPDX-License-Identifier: BSD-3-Clause
// DPX files that are shorter than their headers say.
#include "host/pictures/guards/dpx_header.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/support/failure.h"
#include "tests/host/pictures/made_dpx.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::CheckDpxLength;
using lx_test::DpxBytes;
using lx_test::DpxPacking;
using lx_test::MadeDpx;
using lx_test::ScratchFolder;

constexpr int kWidth = 20;
constexpr int kHeight = 11;

struct Kind {
  int bits;
  DpxPacking packing;
  std::size_t line;  // bytes, counted by hand
};

// 60 samples: 20 words of three; 600 and 720 bits are 19 and 23 words.
constexpr Kind kKinds[] = {{8, DpxPacking::kPacked, 60},      {10, DpxPacking::kPacked, 76},
                           {10, DpxPacking::kFilledHigh, 80}, {10, DpxPacking::kFilledLow, 80},
                           {12, DpxPacking::kPacked, 92},     {12, DpxPacking::kFilledHigh, 120},
                           {12, DpxPacking::kFilledLow, 120}, {16, DpxPacking::kPacked, 120}};

MadeDpx Made(const Kind& kind, bool highFirst) {
  MadeDpx dpx;
  dpx.width = kWidth;
  dpx.height = kHeight;
  dpx.bits = kind.bits;
  dpx.packing = kind.packing;
  dpx.highFirst = highFirst;
  return dpx;
}

std::filesystem::path Put(const ScratchFolder& folder, const std::string& bytes) {
  const std::filesystem::path file = folder / "a.dpx";
  std::ofstream(file, std::ios::binary) << bytes;
  return file;
}

std::string What(const Kind& kind) {
  return std::to_string(kind.bits) + " bits, packing " +
         std::to_string(static_cast<int>(kind.packing));
}

// The samples too, so that the lengths are those of files that are read as they were meant.
TEST(DpxLength, OfAWholeFileOfAnyDepthIsEnough) {
  const ScratchFolder folder;
  for (const Kind& kind : kKinds) {
    for (const bool highFirst : {false, true}) {
      const MadeDpx made = Made(kind, highFirst);
      const std::string bytes = DpxBytes(made);
      ASSERT_EQ(2048 + kind.line * kHeight, bytes.size()) << What(kind);

      const glimmerhost::Picture picture = lx_test::Read(Put(folder, bytes));

      const auto sample = lx_test::Scattered(kind.bits);
      for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
          const std::size_t at = static_cast<std::size_t>(y * kWidth + x) * 4 + 1;
          ASSERT_EQ(sample(x, y, 1), picture.samples[at] >> (16 - kind.bits))
              << What(kind) << ", " << x << ',' << y;
        }
      }
    }
  }
}

TEST(DpxLength, ThatIsAByteShortIsRefusedWithBothNumbers) {
  const ScratchFolder folder;
  for (const Kind& kind : kKinds) {
    std::string bytes = DpxBytes(Made(kind, true));
    const std::size_t whole = bytes.size();
    bytes.pop_back();
    const std::filesystem::path file = Put(folder, bytes);
    try {
      lx_test::Read(file);
      ADD_FAILURE() << What(kind) << " was read";
    } catch (const glimmerhost::Failure& fault) {
      EXPECT_EQ(file.string() + ": cut short or broken: its header promises " +
                    std::to_string(whole) + " bytes, and the file has " + std::to_string(whole - 1),
                fault.what());
    }
  }
}

TEST(DpxLength, CountsThePaddingBetweenLinesAndNotBehindTheLast) {
  const ScratchFolder folder;
  MadeDpx made = Made({10, DpxPacking::kFilledHigh, 80}, true);
  made.linePadding = 12;
  std::string bytes = DpxBytes(made);
  ASSERT_EQ(2048U + 80 * kHeight + 12 * (kHeight - 1), bytes.size());
  EXPECT_NO_THROW(CheckDpxLength(Put(folder, bytes)));

  bytes.pop_back();
  EXPECT_THROW(CheckDpxLength(Put(folder, bytes)), glimmerhost::Failure);
}

TEST(DpxLength, BeginsWhereThePictureDoes) {
  const ScratchFolder folder;
  MadeDpx made = Made({12, DpxPacking::kPacked, 92}, false);
  made.pictureAt = 8192;
  std::string bytes = DpxBytes(made);
  EXPECT_NO_THROW(CheckDpxLength(Put(folder, bytes)));

  bytes.pop_back();
  EXPECT_THROW(CheckDpxLength(Put(folder, bytes)), glimmerhost::Failure);
}

TEST(DpxLength, OfRunsIsNotForetold) {
  const ScratchFolder folder;
  MadeDpx made = Made({10, DpxPacking::kFilledHigh, 80}, true);
  made.encoding = 1;
  EXPECT_NO_THROW(CheckDpxLength(Put(folder, DpxBytes(made).substr(0, 2100))));
}

TEST(DpxLength, ThatDoesNotHoldTheHeaderIsRefused) {
  const ScratchFolder folder;
  const std::string bytes = DpxBytes(Made({10, DpxPacking::kPacked, 76}, true));
  for (const std::size_t size : {5U, 768U, 1355U}) {
    EXPECT_THROW(CheckDpxLength(Put(folder, bytes.substr(0, size))), glimmerhost::Failure) << size;
  }
}

TEST(DpxLength, IsNoMatterOfOtherFiles) {
  const ScratchFolder folder;
  EXPECT_NO_THROW(CheckDpxLength(Put(folder, "P7\n")));
  EXPECT_NO_THROW(CheckDpxLength(folder / "none.dpx"));
}

}  // namespace
