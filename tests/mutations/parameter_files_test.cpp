// SPDX-License-Identifier: BSD-3-Clause
// Parameter files that anything has happened to.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "host/looks/page_file.h"
#include "host/looks/parameter_file.h"
#include "host/support/failure.h"
#include "tests/mutations/mutator.h"
#include "tests/mutations/program_run.h"
#include "tests/mutations/run_checks.h"
#include "tests/mutations/seed_files.h"

namespace {

using mutations::Mutator;

const char* const kToml =
    "# A film\nversion = 1\nshape = \"polygon\"\nsides = 5\nradius = '40px'\nmatch = true\n"
    "rotation = -12.5e-1\nshot = \"1-99\"\nemphasis = \"\"\"\nfirst=50; 24~=60; "
    "last=220\"\"\"\nspread = "
    "\"h\\u00f6.png\"\n"
    "center = \"25%,50%\" # to the left\nalpha = \"as-is\"\npixel-aspect = \"16:15\"\n"
    "PRM_Precision = false\n";

const char* const kJson =
    "{\"version\": 1, \"shape\": \"polygon\",\n\"sides\": 5, \"radius\": \"40px\",\r\n"
    "\"match\": true, \"rotation\": -12.5e-1, \"emphasis\": \"first=50; 24~=60; last=220\", "
    "\"shot\": \"1-99\",\n"
    "\"spread\": \"h\\u00f6.png\", \"alpha\": \"as-is\", \"pixel-aspect\": \"16:15\",\n"
    "\"PRM_Precision\": false}\n";

// What means something in one of the formats, or is wrong in both.
const std::vector<std::string> kPieces = {
    "[",     "]",      "[[",  "{",       "}",     "\"",          "\"\"\"", "'",
    "'''",   "=",      ":",   ",",       ".",     "a.b",         "#",      "\n",
    "\r\n",  "\t",     "\\",  "\\u0000", "\xff",  "\xc3",        "\x7f",   "\x01",
    "1e999", "-nan",   "inf", "0x7f",    "1e308", "99999999999", "null",   "false",
    "1979",  "\\ud83", "\\n", "{}",      "sides", "\"a\":",      "\"a\"=", "\xef\xbb\xbf"};

struct Tally {
  int read = 0;
  int refused = 0;
};

Tally ReadMutations(const std::string& file, const std::string& text) {
  const glimmerhost::Page page = glimmerhost::LoadPage();
  Tally tally;
  for (unsigned seed = 0; seed < 4000; ++seed) {
    std::string says;
    try {
      glimmerhost::ParseParameters(page, file, Mutator(seed).Text(text, kPieces));
      ++tally.read;
      continue;
    } catch (const glimmerhost::Failure& fault) {
      says = fault.what();
    } catch (const glimmerhost::UsageError& fault) {
      says = fault.what();
    }
    ++tally.refused;
    EXPECT_TRUE(says.starts_with(file + ":")) << seed << ": " << says;
    EXPECT_TRUE(std::none_of(says.begin(), says.end(),
                             [](unsigned char c) { return c < 0x20 || c == 0x7F; }))
        << seed << ": " << says;
    EXPECT_LT(says.size(), file.size() + 800) << seed << ": " << says;
  }
  return tally;
}

// Some of each kind, or the mutations would be too weak or too strong to say anything.
TEST(MutatedParameterFile, IsReadOrRefusedInOneLine) {
  const Tally toml = ReadMutations("film.toml", kToml);
  EXPECT_GT(toml.read, 200);
  EXPECT_GT(toml.refused, 2000);
  const Tally json = ReadMutations("film.json", kJson);
  EXPECT_GT(json.read, 100);
  EXPECT_GT(json.refused, 2000);
}

TEST(MutatedParameterFile, RendersOrRefusesWithNothingElseSaid) {
  mutations::RunFolder folder;
  mutations::WriteSmall("in.png", 24, 16, 8);
  mutations::WriteSmall("h\u00f6.png", 12, 12, 8);
  folder.Keep();
  mutations::ForSeeds(800, [&](unsigned seed) {
    const bool json = seed % 2 == 1;
    const std::string name = json ? "film.json" : "film.toml";
    folder.Put(name, Mutator(seed).Text(json ? kJson : kToml, kPieces));
    const std::vector<std::string> line{"render",
                                        "in.png",
                                        "-o",
                                        "out.png",
                                        "--params",
                                        name,
                                        "--save-params",
                                        json ? "out.json" : "out.toml"};
    const mutations::RunResult run = folder.Do(line);
    const std::string what = name + ", seed " + std::to_string(seed);
    mutations::ExpectCleanEnd(folder, line, run, what);
    // The look is saved before a picture that is missing is found to be.
    EXPECT_TRUE(run.code == 0 ? run.made.size() == 2 : !std::filesystem::exists("out.png")) << what;
    folder.Restore();
  });
}

}  // namespace
