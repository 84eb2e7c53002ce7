// SPDX-License-Identifier: BSD-3-Clause
// Pictures that something has happened to, as the input of a render.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/mutations/mutator.h"
#include "tests/mutations/program_run.h"
#include "tests/mutations/run_checks.h"
#include "tests/mutations/seed_files.h"

namespace {

using glimmerhost::Alpha;
using mutations::RunFolder;
using mutations::RunResult;

std::optional<std::pair<int, int>> SizeOf(const std::string& file) {
  try {
    std::string warning;
    const glimmerhost::Picture picture = glimmerhost::ReadPicture(file, &warning);
    return std::pair{picture.width, picture.height};
  } catch (const glimmerhost::Failure&) {
    return std::nullopt;
  }
}

struct Format {
  const char* ending;
  int bits;
  Alpha alpha;
};

class MutatedPicture : public testing::TestWithParam<Format> {};

TEST_P(MutatedPicture, IsRenderedInItsSizeOrRefusedInOneLine) {
  const Format& format = GetParam();
  RunFolder folder;
  const std::string name = std::string("in") + format.ending;
  mutations::WriteSmall(name, 23, 15, format.bits, format.alpha);
  const std::string whole = mutations::ReadBytes(name);
  folder.Keep();
  const std::vector<std::string> line{"render", name, "-o", "out.png", "--radius", "3px"};
  int done = 0;
  int refused = 0;
  mutations::ForSeeds(500, [&](unsigned seed) {
    folder.Put(name, mutations::Mutator(seed).Bytes(whole));
    const RunResult run = folder.Do(line);
    const std::string what = name + ", seed " + std::to_string(seed);
    mutations::ExpectCleanEnd(folder, line, run, what);
    EXPECT_EQ(run.code == 0 ? std::vector<std::string>{"out.png"} : std::vector<std::string>{},
              run.made)
        << what;
    if (run.code == 0) {
      EXPECT_EQ(SizeOf(name), SizeOf("out.png")) << what;
    }
    ++(run.code == 0 ? done : refused);
    folder.Restore();
  });
  RecordProperty("done", done);
  RecordProperty("refused", refused);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, MutatedPicture,
    testing::Values(Format{".png", 8, Alpha::kNone}, Format{".png", 16, Alpha::kStraight},
                    Format{".tif", 8, Alpha::kNone}, Format{".tif", 16, Alpha::kPremultiplied},
                    Format{".exr", 16, Alpha::kNone}, Format{".exr", 16, Alpha::kPremultiplied},
                    Format{".dpx", 8, Alpha::kNone}, Format{".dpx", 16, Alpha::kNone},
                    Format{".jpg", 8, Alpha::kNone}),
    [](const auto& format) {
      return std::string(format.param.ending + 1) + std::to_string(format.param.bits) +
             (format.param.alpha == Alpha::kNone ? "" : "alpha");
    });

}  // namespace
