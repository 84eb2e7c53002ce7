// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/guards/exr_chunks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace {

// Little-endian.
std::string Number(std::uint64_t number, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) {
    bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFFU));
  }
  return bytes;
}

std::string Head(const std::string& value) {
  return std::string("a\0text\0", 7) + Number(value.size(), 4) + value + '\0';
}

// The places of chunks, from the beginning of the chunks on; -1 for one that is not there.
std::string Exr(int parts, const std::vector<int>& places) {
  std::string file = Number(20000630, 4) + Number(parts > 1 ? 0x1002 : 2, 4);
  for (int part = 0; part < parts; ++part) {
    // A value may look like the end of a head.
    file += Head(std::string(3 + part, '\0'));
  }
  file += parts > 1 ? std::string(1, '\0') : "";
  const std::uint64_t chunks = file.size() + places.size() * 8;
  for (const int place : places) {
    file += Number(place < 0 ? 0 : chunks + static_cast<std::uint64_t>(place), 8);
  }
  return file;
}

bool HasAll(const std::string& content) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "out.exr", std::ios::binary) << content;
  glimmerhost::FileBytes bytes(folder / "out.exr", glimmerhost::FileUse::kRead);
  return glimmerhost::HasAllExrChunks(&bytes);
}

TEST(ExrChunks, AreAllThereWhereEachHasAPlace) {
  EXPECT_TRUE(HasAll(Exr(1, {0}) + std::string(20, '\0')));
  EXPECT_TRUE(HasAll(Exr(1, {0, 8, 16}) + std::string(24, '\0')));
  EXPECT_TRUE(HasAll(Exr(2, {0, 16, 8}) + std::string(24, '\0')));
  // From the bottom up.
  EXPECT_TRUE(HasAll(Exr(1, {16, 8, 0}) + std::string(24, '\0')));
}

TEST(ExrChunks, AreMissingWhereOneHasNone) {
  EXPECT_FALSE(HasAll(Exr(1, {-1})));
  EXPECT_FALSE(HasAll(Exr(1, {0, -1, 8}) + std::string(16, '\0')));
  EXPECT_FALSE(HasAll(Exr(1, {0, 8, -1}) + std::string(16, '\0')));
  EXPECT_FALSE(HasAll(Exr(3, {0, 8, -1}) + std::string(16, '\0')));
  EXPECT_FALSE(HasAll(Exr(1, {16, -1, 0}) + std::string(24, '\0')));
}

TEST(ExrChunks, AreNotLookedForInAFileOfAnotherFormat) {
  EXPECT_TRUE(HasAll("SDPX" + std::string(40, '\0')));
  EXPECT_TRUE(HasAll(""));
}

}  // namespace
