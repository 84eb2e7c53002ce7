// SPDX-License-Identifier: BSD-3-Clause
// What an engine takes of memory, whichever heaps its kind takes it from.
#pragma once

#include <cstdint>
#include <string>

#include "tests/support/fft_recorder.h"
#include "tests/support/tracked_heap.h"

namespace lx_test {

// Counts from its beginning; one at a time.
class EngineHeap {
 public:
  // Of blocks that are still there: the transform library's, to the byte, and image-sized ones,
  // each with up to a page and a pointer more than was asked for.
  std::uint64_t Bytes() const {
    std::uint64_t bytes = TrackedHeap::Image().currentBytes;
    for (const std::string& entry : fft_.Log()) {
      if (entry.starts_with(kAllocate)) {
        bytes += std::stoull(entry.substr(kAllocate.size()));
      }
    }
    return bytes;
  }

  FftRecorder& Fft() { return fft_; }

 private:
  static constexpr std::string_view kAllocate = "allocate ";

  TrackedHeap heap_{1, 1, 0};
  FftRecorder fft_;
};

}  // namespace lx_test
