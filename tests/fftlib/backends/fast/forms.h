// The forms of the line kernels that this machine has.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "fftlib/backends/fast/line_kernels.h"

namespace lx_test {

struct LineForm {
  std::string name;
  const lx::LineKernels* kernels;
};

inline std::ostream& operator<<(std::ostream& out, const LineForm& form) {
  return out << form.name;
}

// Plain numbers first.
inline std::vector<LineForm> LineForms() {
  std::vector<LineForm> forms{{"plain", &lx::PlainLineKernels()},
                              {"128", &lx::Vector128LineKernels()}};
  const LineForm wide[] = {{"avx2", lx::Avx2LineKernels()}, {"avx512", lx::Avx512LineKernels()}};
  for (const LineForm& each : wide) {
    if (each.kernels != nullptr) {
      forms.push_back(each);
    }
  }
  return forms;
}

}  // namespace lx_test
