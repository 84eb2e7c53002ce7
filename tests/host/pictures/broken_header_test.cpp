// SPDX-License-Identifier: BSD-3-Clause
// Headers that claim what no file holds and no machine has.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "host/pictures/channels.h"
#include "host/pictures/guards/reader_guard.h"
#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using lx_test::Read;
using lx_test::Sample;
using lx_test::ScratchFolder;
using lx_test::Write;

void ExpectRefused(const fs::path& file, const std::string& says) {
  try {
    Read(file);
    ADD_FAILURE() << file << " was read";
  } catch (const glimmerhost::Failure& fault) {
    EXPECT_NE(std::string::npos, std::string(fault.what()).find(says)) << fault.what();
  }
}

void Patch(const fs::path& file, std::streamoff at, const std::string& bytes) {
  std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
  stream.seekp(at);
  stream << bytes;
}

// The library's reader would end the program.
TEST(BrokenHeader, OfDpxWithMoreUserDataThanTheFileHasIsRefused) {
  const ScratchFolder folder;
  Write(folder / "a.dpx", Sample(13, 7), 8);
  constexpr std::streamoff kUserSize = 32;
  Patch(folder / "a.dpx", kUserSize, std::string("\x01\x00\x00\x80", 4));
  ExpectRefused(folder / "a.dpx", "its header claims 2147483649 bytes of user data");

  Patch(folder / "a.dpx", kUserSize, std::string(4, '\xFF'));
  EXPECT_EQ(13, Read(folder / "a.dpx").width);
}

TEST(BrokenHeader, ThatClaimsMoreThanTheMachinesMemoryIsRefused) {
  const fs::path file("huge.exr");
  EXPECT_NO_THROW(glimmerhost::CheckMemoryFor(file, 8192, 8192, 1));
  EXPECT_THROW(glimmerhost::CheckMemoryFor(file, 65535, 65535, 1U << 20U), glimmerhost::Failure);
}

// A library may say it again for each of thousands of rows.
TEST(BrokenHeader, IsToldOfInALineOfBearableLength) {
  std::string why;
  for (int row = 0; row < 5000; ++row) {
    why += "row " + std::to_string(row) + " is lost\n";
  }
  try {
    glimmerhost::ReadFailure("a.tif", why);
  } catch (const glimmerhost::Failure& fault) {
    const std::string line = fault.what();
    EXPECT_TRUE(line.starts_with("a.tif: row 0 is lost row 1 is lost ")) << line;
    EXPECT_TRUE(line.ends_with("...")) << line;
    EXPECT_GT(400U, line.size());
  }
}

// The one holds nothing, the other writes onto the terminal.
TEST(OutputName, OfAFormatThatMakesNoFileIsRefused) {
  const ScratchFolder folder;
  EXPECT_THROW(Write(folder / "a.null", Sample(3, 2), 8), glimmerhost::UsageError);
  EXPECT_THROW(Write(folder / "a.term", Sample(3, 2), 8), glimmerhost::UsageError);
  EXPECT_EQ(0, folder.FileCount());
}

}  // namespace
