// SPDX-License-Identifier: BSD-3-Clause
// The program in the test's own process, for what starts no thread that outlives it and narrows
// nothing: a start of its own costs more than most of what is asked.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/glimmerhost/command_line.h"
#include "tests/support/child_program.h"

namespace host_test {

// Page, presets and modules are found from the test's folder as from the program's.
//   arguments  parted as a shell would
inline lx_test::Outcome RunHere(const std::string& arguments) {
  std::vector<std::string> all = lx_test::SplitArguments(arguments);
  all.insert(all.begin(), "glimmerhost");
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  lx_test::Outcome outcome;
  outcome.code = glimmerhost::RunCommandLine(all);
  outcome.text = testing::internal::GetCapturedStdout() + testing::internal::GetCapturedStderr();
  return outcome;
}

}  // namespace host_test
