// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/steady_file.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::ReadSteadily;

TEST(SteadyFile, IsReadOnceAndLeftAlone) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "a.dpx") << "picture";
  int reads = 0;
  EXPECT_NO_THROW(ReadSteadily(folder / "a.dpx", [&] { ++reads; }));
  EXPECT_EQ(1, reads);
}

TEST(SteadyFile, IsRefusedWhereItGrowsOrIsWrittenAnewMeanwhile) {
  const lx_test::ScratchFolder folder;
  const fs::path file = folder / "a.dpx";
  std::ofstream(file) << "pict";
  EXPECT_THROW(ReadSteadily(file, [&] { std::ofstream(file, std::ios::app) << "ure"; }),
               glimmerhost::Failure);
  EXPECT_THROW(
      ReadSteadily(
          file,
          [&] { fs::last_write_time(file, fs::last_write_time(file) + std::chrono::seconds(2)); }),
      glimmerhost::Failure);
  EXPECT_THROW(ReadSteadily(file, [&] { fs::remove(file); }), glimmerhost::Failure);
}

// What reading itself has to say of a file comes first.
TEST(SteadyFile, LeavesToItsReaderWhatIsWrongWithIt) {
  EXPECT_THROW(ReadSteadily("none.dpx", [] { throw glimmerhost::MissingInput("none"); }),
               glimmerhost::MissingInput);
}

}  // namespace
