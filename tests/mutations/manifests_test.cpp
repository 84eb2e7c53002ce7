// SPDX-License-Identifier: BSD-3-Clause
// Manifests that something has happened to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/mutations/mutator.h"
#include "tests/mutations/program_run.h"
#include "tests/mutations/run_checks.h"
#include "tests/mutations/seed_files.h"

namespace {

const std::vector<std::string> kPieces = {
    "{",          "}",     "[",        "]",          "\"",
    ":",          ",",     "\n",       "\r\n",       "\\",
    "\\ud83",     "null",  "1e99",     "-1",         "\xff",
    "\"frame\":", "{}",    "[[[[[[[[", "2147483648", "\"output\": \"in.png\",",
    "xxh128:",    "frame", "0.0",      "\\u0000"};

TEST(MutatedManifest, IsCheckedOrRefusedInPlainLines) {
  mutations::RunFolder folder;
  mutations::WriteSmall("in.1.png", 12, 8, 8);
  mutations::WriteSmall("in.2.png", 12, 8, 8);
  folder.Keep();
  const std::vector<std::string> render{"render", "in.#.png", "-o",  "out.#.png",  "--frames",
                                        "1-2",    "--radius", "2px", "--manifest", "shot.jsonl"};
  std::vector<std::string> numbered = render;
  numbered[1] = "in.@.png";
  ASSERT_EQ(0, folder.Do(numbered).code);
  folder.Keep();
  const std::string whole = mutations::ReadBytes("shot.jsonl");
  int sound = 0;
  mutations::ForSeeds(1000, [&](unsigned seed) {
    mutations::Mutator mutator(seed);
    folder.Put("shot.jsonl",
               mutator.OneIn(4) ? mutator.Bytes(whole) : mutator.Text(whole, kPieces));
    const std::vector<std::string> line{"check", "shot.jsonl", "--frames", "1-2"};
    const mutations::RunResult run = folder.Do(line);
    const std::string what = "seed " + std::to_string(seed);
    mutations::ExpectCleanEnd(folder, line, run, what);
    EXPECT_TRUE(run.made.empty() && run.changed.empty()) << what;
    // Frames that are as they were written may have been made by several arithmetics, changed as it
    // is.
    const bool warns = run.err.find(" arithmetics, whose samples may differ") != std::string::npos;
    EXPECT_TRUE(run.code == 0 ? run.err.empty() || warns : !run.err.empty()) << what << "\n"
                                                                             << run.err;
    sound += run.code == 0 ? 1 : 0;
    folder.Restore();
  });
  // What is changed in seconds or versions is nothing that a check could find.
  EXPECT_LT(0, sound);
}

}  // namespace
