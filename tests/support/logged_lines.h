// What the log wrote while the standard error stream was captured.
#pragma once

#include <gtest/gtest.h>

#include <regex>
#include <string>

namespace lx_test {

// The captured lines without the times that stand in them.
inline std::string LoggedLines() {
  static const std::regex time(R"(\(LX LIB\) \d\d:\d\d:\d\d\.\d\d )");
  return std::regex_replace(testing::internal::GetCapturedStderr(), time, "(LX LIB) ");
}

}  // namespace lx_test
