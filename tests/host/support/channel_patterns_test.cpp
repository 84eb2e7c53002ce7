// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/channel_patterns.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/support/failure.h"

namespace {

using glimmerhost::MatchesPattern;

TEST(ChannelPatterns, StarIsAnyLettersAndQuestionMarkOne) {
  const struct {
    const char* pattern;
    const char* name;
    bool matches;
  } cases[] = {
      {"Z", "Z", true},
      {"Z", "z", false},
      {"Z", "ZZ", false},
      {"*", "", true},
      {"*", "a.b", true},
      {"diffuse.*", "diffuse.R", true},
      {"diffuse.*", "diffuse", false},
      {"*.R", "a.b.R", true},
      {"*.R", "a.R.G", false},
      {"?", "Z", true},
      {"?", "", false},
      {"a?c", "abc", true},
      {"a*b*c", "aXbXbYc", true},
      {"a*b*c", "aXbXbY", false},
      {"**x", "yx", true},
      {"[R]", "R", false},
      {"*a*a*a*a*b", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", false},
  };
  for (const auto& [pattern, name, matches] : cases) {
    EXPECT_EQ(matches, MatchesPattern(pattern, name)) << pattern << " and " << name;
  }
}

TEST(ChannelPatterns, StandBetweenCommas) {
  EXPECT_EQ((std::vector<std::string>{"diffuse.*", "Z"}),
            glimmerhost::ParseChannelPatterns("diffuse.*,Z"));
  for (const char* text : {"", ",", "Z,", "a,,b"}) {
    EXPECT_THROW(glimmerhost::ParseChannelPatterns(text), glimmerhost::UsageError) << text;
  }
}

}  // namespace
