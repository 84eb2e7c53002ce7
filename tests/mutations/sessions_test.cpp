// SPDX-License-Identifier: BSD-3-Clause
// Scripts of sessions that something has happened to.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/mutations/mutator.h"
#include "tests/mutations/program_run.h"
#include "tests/mutations/run_checks.h"
#include "tests/mutations/seed_files.h"

namespace {

const char* const kScript =
    "# A drag\nload in.png\nset PRM_Shape image\nset PRM_Emphasis 12\ndraw\nrender\n"
    "save before.png\nshow source\npress 12 8\nmove 14 6\nrelease 14 6\n"
    "expect PRM_Center_X 0.583333 within 0.01\nexpect row Emphasis shown\nspread spread.png\n"
    "notify PRM_Shape\ncolour\nsnapshot handles.png\nrender\nsave after.tif\n"
    "expect different before.png\nprint page\n";

const std::vector<std::string> kPieces = {"load in.png\n",
                                          "load none.png\n",
                                          "\nrender\n",
                                          "save x.png\n",
                                          "snapshot x.tif\n",
                                          "expect ",
                                          "row ",
                                          "same ",
                                          "within",
                                          "\"",
                                          "#",
                                          "\n",
                                          " ",
                                          "\r\n",
                                          "PRM_Sides",
                                          "set PRM_Shape 2\n",
                                          "press",
                                          "-1e6 1e6",
                                          "nan",
                                          "1e999",
                                          "\xff",
                                          "release 0 0\n",
                                          "show result",
                                          "colour\ncolour",
                                          "notify \n",
                                          "spread in.png\n",
                                          "text.txt",
                                          "move 3 3\n",
                                          "99999999999",
                                          "set PRM_RadiusX 1\n"};

// Outputs go into the script's folder: none of what a mutation makes of a name may lead elsewhere.
std::string WithoutFolders(std::string text) {
  for (char& c : text) {
    c = c == '/' ? '|' : c;
  }
  return text;
}

TEST(MutatedSession, PlaysOrEndsInOneLine) {
  mutations::RunFolder folder;
  mutations::WriteSmall("in.png", 24, 16, 8);
  mutations::WriteSmall("spread.png", 12, 12, 8);
  mutations::WriteBytes("text.txt", "no picture");
  folder.Keep();
  mutations::ForSeeds(1200, [&](unsigned seed) {
    mutations::Mutator mutator(seed);
    folder.Put("page.session", WithoutFolders(mutator.Text(kScript, kPieces)));
    std::vector<std::string> line{"session", "page.session", "--radius", "10%"};
    if (mutator.OneIn(3)) {
      line.emplace_back("--trace");
    }
    const mutations::RunResult run = folder.Do(line);
    const std::string what = "seed " + std::to_string(seed);
    mutations::ExpectCleanEnd(folder, line, run, what);
    EXPECT_TRUE(run.changed.empty()) << what;
    folder.Restore();
  });
}

}  // namespace
