// SPDX-License-Identifier: BSD-3-Clause
// Streams of pictures that something has happened to.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/pam_stream.h"
#include "host/pictures/picture_file.h"
#include "tests/mutations/mutator.h"
#include "tests/mutations/program_run.h"
#include "tests/mutations/run_checks.h"
#include "tests/mutations/seed_files.h"

namespace {

const std::vector<std::string> kPieces = {
    "P7\n",        "WIDTH", "HEIGHT 1\n", "DEPTH 4\n", "DEPTH 5", "MAXVAL 1\n", "MAXVAL 65536",
    "ENDHDR\n",    "#",     "TUPLTYPE X", "-1",        "0",       "65536",      "99999999999",
    "WIDTH 20\n",  "\r\n",  " ",          "\t",        "P6\n",    "P7",         "TUPLTYPE RGB\n",
    "WIDTH 1e1\n", "\xff",  "HEIGHT +3\n"};

std::string Mutated(mutations::Mutator* mutator) {
  std::string pam = mutations::SmallPam();
  if (mutator->OneIn(2)) {
    return mutator->Bytes(pam);
  }
  // Headers rather than samples.
  const std::size_t second = pam.rfind("P7\n");
  const std::size_t at = mutator->OneIn(2) ? 0 : second;
  const std::size_t end = pam.find("ENDHDR\n", at) + 7;
  return pam.substr(0, at) + mutator->Text(pam.substr(at, end - at), kPieces) + pam.substr(end);
}

std::size_t PicturesIn(const std::string& pam) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      fmemopen(const_cast<char*>(pam.data()), pam.size(), "rb"), std::fclose);
  glimmerhost::PamReader reader(file.get(), "what was written");
  std::size_t count = 0;
  while (reader.Next()) {
    ++count;
  }
  return count;
}

TEST(MutatedPipe, BecomesFilesUpToWhatIsBroken) {
  mutations::RunFolder folder;
  folder.Keep();
  mutations::ForSeeds(700, [&](unsigned seed) {
    mutations::Mutator mutator(seed);
    folder.Put("in.pam", Mutated(&mutator));
    const std::vector<std::string> line{"render", "-", "-o", "out.#.png", "--radius", "5%"};
    const mutations::RunResult run = folder.Do(line, "in.pam");
    const std::string what = "seed " + std::to_string(seed);
    mutations::ExpectCleanEnd(folder, line, run, what);
    for (std::size_t i = 0; i < run.made.size(); ++i) {
      EXPECT_EQ("out.000" + std::to_string(i + 1) + ".png", run.made[i]) << what;
    }
    EXPECT_TRUE(run.code != 0 || !run.made.empty()) << what;
    folder.Restore();
  });
}

TEST(MutatedPipe, GoesOnAsAPipeOfWholePictures) {
  mutations::RunFolder folder;
  folder.Keep();
  mutations::ForSeeds(400, [&](unsigned seed) {
    mutations::Mutator mutator(seed);
    folder.Put("in.pam", Mutated(&mutator));
    const std::vector<std::string> line{"render", "-", "-o", "-", "--radius", "5%", "--quiet"};
    const mutations::RunResult run = folder.Do(line, "in.pam");
    const std::string what = "seed " + std::to_string(seed);
    mutations::ExpectCleanEnd(folder, line, run, what);
    EXPECT_TRUE(run.made.empty()) << what;
    if (!run.out.empty()) {
      EXPECT_NO_THROW(EXPECT_LT(0U, PicturesIn(run.out)) << what) << what;
    }
    EXPECT_TRUE(run.code != 0 || !run.out.empty()) << what;
    folder.Restore();
  });
}

}  // namespace
