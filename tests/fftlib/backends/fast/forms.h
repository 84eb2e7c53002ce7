// SPDX-License-Identifier: BSD-3-Clause
// The forms of the line operations that this machine has.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "fftlib/backends/fast/line_operations.h"

namespace lx_test {

struct LineForm {
  std::string name;
  const lx::LineOperations* operations;
};

inline std::ostream& operator<<(std::ostream& out, const LineForm& form) {
  return out << form.name;
}

// Plain numbers first.
inline std::vector<LineForm> LineForms() {
  std::vector<LineForm> forms{{"plain", &lx::PlainLineOperations()},
                              {"128", &lx::Vector128LineOperations()}};
  const LineForm wide[] = {{"avx2", lx::Avx2LineOperations()},
                           {"avx512", lx::Avx512LineOperations()}};
  for (const LineForm& each : wide) {
    if (each.operations != nullptr) {
      forms.push_back(each);
    }
  }
  return forms;
}

}  // namespace lx_test
