// SPDX-License-Identifier: BSD-3-Clause
// The processors that this process may run on, as the system tells them.
#pragma once

#include <memory>

namespace lx_test {

int ProcessorCount();

// Puts back at the end what was allowed at the start, where the system lets it.
class ProcessorsAsBefore {
 public:
  ProcessorsAsBefore();
  ~ProcessorsAsBefore();
  ProcessorsAsBefore(const ProcessorsAsBefore&) = delete;
  ProcessorsAsBefore& operator=(const ProcessorsAsBefore&) = delete;

 private:
  struct Mask;
  std::unique_ptr<Mask> mask_;
};

}  // namespace lx_test
