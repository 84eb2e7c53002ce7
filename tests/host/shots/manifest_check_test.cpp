// SPDX-License-Identifier: BSD-3-Clause
// What a check says of frames whose arithmetic is not the same.
#include "host/shots/manifest_check.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using glimmerhost::ManifestCheck;

struct Told {
  int code;
  std::string out;
  std::string error;
};

Told Tell(const ManifestCheck& check) {
  std::ostringstream out;
  testing::internal::CaptureStderr();
  const int code = TellOf(check, out);
  return {code, out.str(), testing::internal::GetCapturedStderr()};
}

ManifestCheck CheckOf(std::map<std::string, std::vector<int>> arithmetics) {
  ManifestCheck check;
  for (const auto& [arithmetic, frames] : arithmetics) {
    check.frames += frames.size();
  }
  check.arithmetics = std::move(arithmetics);
  return check;
}

TEST(ManifestCheck, SaysNothingOfOneArithmetic) {
  EXPECT_EQ("", Tell(CheckOf({{"fast 1", {1, 2}}})).error);
  EXPECT_EQ("", Tell(CheckOf({{"", {1, 2}}})).error);
}

TEST(ManifestCheck, CountsTheFramesOfEachArithmeticAndFindsThemAllRight) {
  const Told told = Tell(CheckOf({{"", {7}}, {"double 1, a", {1, 3, 4}}, {"double 1, b", {2, 5}}}));

  EXPECT_EQ(0, told.code);
  EXPECT_EQ("6 frames are as they were written\n", told.out);
  EXPECT_EQ(
      "glimmerhost: frames of 3 arithmetics, whose samples may differ in their last bits:\n"
      "glimmerhost:   1 frame, 7: not told\n"
      "glimmerhost:   3 frames, 1,3-4: double 1, a\n"
      "glimmerhost:   2 frames, 2,5: double 1, b\n",
      told.error);
}

TEST(ManifestCheck, TellsArithmeticsBehindFaults) {
  ManifestCheck check = CheckOf({{"a", {1}}, {"b", {2}}});
  check.lacking = {3};

  const Told told = Tell(check);

  EXPECT_EQ(1, told.code);
  EXPECT_EQ("", told.out);
  EXPECT_EQ(0U, told.error.find("glimmerhost: no line for frames 3\nglimmerhost: frames of 2 "));
}

}  // namespace
