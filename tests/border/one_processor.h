// SPDX-License-Identifier: BSD-3-Clause
// Lets the loaded module see one processor for the length of a scope.
#pragma once

#include <memory>

namespace lx_test {

// Begins when the module has been loaded and before it has made an instance, and ends before it is
// unloaded. One at a time.
class OneProcessor {
 public:
  OneProcessor();
  ~OneProcessor();
  OneProcessor(const OneProcessor&) = delete;
  OneProcessor& operator=(const OneProcessor&) = delete;

 private:
  struct Before;
  std::unique_ptr<Before> before_;
};

}  // namespace lx_test
