// SPDX-License-Identifier: BSD-3-Clause
// Small picture files of every kind that the program reads, whole, for tests that damage them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace lx_test {

struct WholeFile {
  std::string name;    // "TiffDeflate16"
  std::string ending;  // ".tif"
  std::string format;  // as the manual lists it: "TIFF, deflate"
  std::string bytes;
  // Where the samples stand. What stands before and behind them says what they are.
  std::size_t samplesFrom = 0;
  std::size_t samplesTo = 0;
  // As its reader has them: colours of four inks are three.
  int channels = 3;
  int bits = 8;
  bool floats = false;
};

// For a failed test's line.
inline void PrintTo(const WholeFile& file, std::ostream* out) { *out << file.name; }

// All of them, with several strips, tiles or chunks each.
//   folder  for files on their way
std::vector<WholeFile> WholeFiles(const std::filesystem::path& folder);

}  // namespace lx_test
