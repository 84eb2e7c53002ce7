// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/command_line_run.h"

#include <gtest/gtest.h>

#include "host/glimmerhost/command_line.h"

namespace lx_test {
namespace {

std::string WithPlainEnds(std::string text) {
  for (std::size_t at = 0; (at = text.find("\r\n", at)) != std::string::npos;) {
    text.erase(at, 1);
  }
  return text;
}

}  // namespace

CommandLineRun RunCommandLineHere(const std::vector<std::string>& arguments) {
  std::vector<std::string> line{"glimmerhost"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  CommandLineRun run;
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  run.code = glimmerhost::RunCommandLine(line);
  run.err = WithPlainEnds(testing::internal::GetCapturedStderr());
  run.out = WithPlainEnds(testing::internal::GetCapturedStdout());
  return run;
}

}  // namespace lx_test
