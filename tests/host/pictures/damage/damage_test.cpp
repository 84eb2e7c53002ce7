// SPDX-License-Identifier: BSD-3-Clause
// Picture files that were cut, or of which a part was overwritten.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/pictures/pam_stream.h"
#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/host/pictures/damage/watchdog.h"
#include "tests/host/pictures/damage/whole_files.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using lx_test::ScratchFolder;
using lx_test::WholeFile;

constexpr int kPlaces = 20;

struct Filler {
  bool zeroes;
  unsigned seed;
};
constexpr Filler kFillers[] = {{true, 1}, {false, 2}};

// Without check sums of their samples: a changed one may still be a sample. The manual lists the
// same.
const std::set<std::string> kMayPass = {
    "DPX", "EXR, b44",  "EXR, dwaa",      "EXR, not compressed", "EXR, piz", "EXR, rle", "JPEG",
    "PAM", "TIFF, LZW", "TIFF, PackBits", "TIFF, not compressed"};

std::vector<std::uint16_t> PamSamples(const fs::path& file) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> from(
      std::fopen(file.string().c_str(), "rb"), std::fclose);
  const auto picture = glimmerhost::PamReader(from.get(), file.string()).Next();
  if (!picture) {
    throw glimmerhost::MissingInput(file.string() + ": no picture");
  }
  return picture->samples;
}

class Damage : public testing::TestWithParam<WholeFile> {
 public:
  Damage() : file_(folder_ / ("a" + GetParam().ending)), whole_(SamplesOf(GetParam().bytes)) {}

  std::vector<std::uint16_t> SamplesOf(const std::string& bytes) {
    std::ofstream(file_, std::ios::binary | std::ios::trunc) << bytes;
    const lx_test::Watchdog watchdog(GetParam().name);
    std::string warning;
    return GetParam().ending == ".pam"
               ? PamSamples(file_)
               : glimmerhost::ReadPicture(file_, glimmerhost::kAnyFormat, &warning).samples;
  }

  // Expects an error that names the file, or any samples where others may pass, and otherwise the
  // undamaged file's.
  void ExpectEnd(const std::string& bytes, bool othersMayPass, const std::string& what) {
    try {
      const bool same = SamplesOf(bytes) == whole_;
      EXPECT_TRUE(same || othersMayPass) << what << " passes";
    } catch (const glimmerhost::Failure& fault) {
      const std::string line = fault.what();
      EXPECT_TRUE(line.starts_with(file_.string() + ": ")) << line;
      EXPECT_EQ(std::string::npos, line.find('\n')) << line;
    }
  }

  // Overwrites a block of a changing length at each of some places in a part of the file.
  void ExpectEnds(std::size_t from, std::size_t to, const Filler& filler, bool othersMayPass) {
    std::mt19937 random(filler.seed);
    for (int place = 0; place < kPlaces && from < to; ++place) {
      std::string bytes = GetParam().bytes;
      const std::size_t length = std::min<std::size_t>(std::size_t{1} << (place % 9), to - from);
      const std::size_t at = from + random() % (to - from - length + 1);
      for (std::size_t i = at; i < at + length; ++i) {
        bytes[i] = filler.zeroes ? '\0' : static_cast<char>(random());
      }
      ExpectEnd(bytes, othersMayPass,
                std::to_string(length) + (filler.zeroes ? " zeroes" : " other bytes") + " at " +
                    std::to_string(at) + " of " + std::to_string(bytes.size()));
    }
  }

  ScratchFolder folder_;
  fs::path file_;
  std::vector<std::uint16_t> whole_;
};

TEST_P(Damage, ThatCutsAFileIsNoticed) {
  const std::string& whole = GetParam().bytes;
  for (int place = 1; place < kPlaces; ++place) {
    const std::size_t size = whole.size() * static_cast<std::size_t>(place) / kPlaces;
    ExpectEnd(whole.substr(0, size), false, "a cut to " + std::to_string(size));
  }
  ExpectEnd(whole.substr(0, whole.size() - 1), false, "a cut of the last byte");
}

TEST_P(Damage, ThatOverwritesSamplesIsNoticedWhereThereAreCheckSums) {
  const WholeFile& file = GetParam();
  for (const Filler& filler : kFillers) {
    ExpectEnds(file.samplesFrom, file.samplesTo, filler, kMayPass.contains(file.format));
  }
}

// What says how a picture is stored has no check sum but in PNG, and may say something else now.
TEST_P(Damage, ThatOverwritesWhatIsNoSampleHasACleanEnd) {
  const WholeFile& file = GetParam();
  for (const Filler& filler : kFillers) {
    ExpectEnds(0, file.samplesFrom, filler, true);
    ExpectEnds(file.samplesTo, file.bytes.size(), filler, true);
  }
}

TEST_P(Damage, OfAllSamplesLeavesTheHeadReadable) {
  std::string bytes = GetParam().bytes;
  // Of a PNG the first chunk's head is needed to know that the file's own has ended.
  const std::size_t from =
      GetParam().format == "PNG" ? bytes.find("IDAT") + 4 : GetParam().samplesFrom;
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(GetParam().samplesTo), '\0');
  if (GetParam().ending == ".pam") {
    return;  // read from pipes, as it comes
  }
  std::ofstream(file_, std::ios::binary | std::ios::trunc) << bytes;

  const glimmerhost::PictureHead head = glimmerhost::ReadPictureHead(file_);

  EXPECT_EQ(64, head.width);
  EXPECT_EQ(48, head.height);
  EXPECT_EQ(GetParam().channels, head.channels);
  EXPECT_EQ(GetParam().bits, head.bits);
  EXPECT_EQ(GetParam().floats, head.floats);
}

std::vector<WholeFile> AllFiles() {
  const ScratchFolder folder;
  return lx_test::WholeFiles(folder.Path());
}

INSTANTIATE_TEST_SUITE_P(Of, Damage, testing::ValuesIn(AllFiles()),
                         [](const auto& file) { return file.param.name; });

// The rows of the manual's table: formats, and what is said of them.
std::map<std::string, std::string> ManualRows() {
  std::ifstream manual(MANUAL);
  std::map<std::string, std::string> rows;
  bool inside = false;
  for (std::string line; std::getline(manual, line);) {
    inside = line.starts_with("## ") ? line == "## Damaged files" : inside;
    const std::size_t middle = line.find(" | ");
    if (inside && line.starts_with("| ") && line.ends_with(" |") && middle != std::string::npos) {
      rows[line.substr(2, middle - 2)] = line.substr(middle + 3, line.size() - middle - 5);
    }
  }
  rows.erase("format");
  return rows;
}

TEST(DamagedFiles, AreListedInTheManualAsTheyAreHere) {
  std::map<std::string, std::string> expected;
  for (const WholeFile& file : AllFiles()) {
    expected[file.format] = kMayPass.contains(file.format) ? "may pass" : "is noticed";
  }
  EXPECT_EQ(expected, ManualRows());
}

}  // namespace
