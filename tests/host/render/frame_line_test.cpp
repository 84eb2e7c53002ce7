// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/frame_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace glimmerhost {
namespace {

TEST(FrameLine, IsReadWithAllThatItTells) {
  const auto line = ParseFrameLine(
      R"({"frame":-7,"state":"failed","output":"a \"b\".png","seconds":1.5,"index":2,"count":9,)"
      R"("elapsed":3,"fault":"broken","remarks":["one","two"]})");
  ASSERT_TRUE(line);
  EXPECT_EQ(-7, line->report.frame);
  EXPECT_EQ(FrameState::kFailed, line->report.state);
  EXPECT_EQ("a \"b\".png", line->report.output);
  EXPECT_EQ(1.5, line->report.seconds);
  EXPECT_EQ("broken", line->report.fault);
  EXPECT_EQ((std::vector<std::string>{"one", "two"}), line->report.remarks);
  EXPECT_EQ(9U, line->count);
  EXPECT_EQ(3.0, line->elapsed);
}

TEST(FrameLine, MayTellOfMoreThanIsKnownHere) {
  const auto line = ParseFrameLine(
      R"({"new":{"frame":2,"deep":[[1]]},"frame":3,"state":"skipped","also":[{"state":"done"}],)"
      R"("output":"a","seconds":0,"count":null})");
  ASSERT_TRUE(line);
  EXPECT_EQ(3, line->report.frame);
  EXPECT_EQ(FrameState::kSkipped, line->report.state);
  EXPECT_FALSE(line->count);
  EXPECT_FALSE(line->elapsed);
}

TEST(FrameLine, IsNoneWhereSomethingIsMissingOrOfAnotherKind) {
  for (const char* text :
       {"",
        "frame 1 is done",
        "[]",
        "7",
        "{}",
        R"({"done":2,"elapsed":3})",
        R"([{"frame":1,"state":"done","output":"a","seconds":1}])",
        R"({"state":"done","output":"a","seconds":1})",
        R"({"frame":1,"output":"a","seconds":1})",
        R"({"frame":1,"state":"done","seconds":1})",
        R"({"frame":1,"state":"done","output":"a"})",
        R"({"frame":"1","state":"done","output":"a","seconds":1})",
        R"({"frame":1.5,"state":"done","output":"a","seconds":1})",
        R"({"frame":null,"state":"done","output":"a","seconds":1})",
        R"({"frame":99999999999,"state":"done","output":"a","seconds":1})",
        R"({"frame":18446744073709551615,"state":"done","output":"a","seconds":1})",
        R"({"frame":1,"state":"finished","output":"a","seconds":1})",
        R"({"frame":1,"state":"done","output":"a","seconds":"1"})",
        R"({"frame":1,"state":"done","output":"a","seconds":1)",
        R"({"frame":1,"state":"done","output":"a","seconds":1} {})"}) {
    EXPECT_FALSE(ParseFrameLine(text)) << text;
  }
}

}  // namespace
}  // namespace glimmerhost
