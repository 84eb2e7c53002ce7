// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/child_program.h"

namespace lx_test {

std::vector<std::string> SplitArguments(const std::string& line) {
  std::vector<std::string> arguments;
  bool quoted = false;
  bool inside = false;
  for (const char c : line) {
    if (c == '\'') {
      quoted = !quoted;
    }
    const bool part = quoted || (c != ' ' && c != '\t');
    if (part && !inside) {
      arguments.emplace_back();
    }
    if (part && c != '\'') {
      arguments.back() += c;
    }
    inside = part;
  }
  return arguments;
}

}  // namespace lx_test
