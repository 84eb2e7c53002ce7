// SPDX-License-Identifier: BSD-3-Clause
// An engine that computes nothing and records what it is asked.
#pragma once

#include <string>
#include <vector>

namespace lx_test {

struct EngineRecord {
  std::vector<std::string> calls;  // "Name" or "Name(arguments)"
  bool runDoesNothing = false;     // Convolve fails and leaves its destination
  int alive = 0;                   // engines
  const void* source = nullptr;    // the records that it was last handed
  const void* destination = nullptr;
  const void* psf = nullptr;
};

EngineRecord& Record();

}  // namespace lx_test
