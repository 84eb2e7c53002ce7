// SPDX-License-Identifier: BSD-3-Clause
// The allocator's switches for the length of a scope, with empty accounts on both sides.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "baselib/utils/heap_tracking.h"
#include "tests/support/fresh_services.h"
#include "tests/support/logged_lines.h"

namespace lx_test {

class TrackedHeap {
 public:
  TrackedHeap(std::int32_t enabled, std::int32_t debug, std::int32_t trace) {
    lx::hm_forget();
    lx::hm_set_switches(enabled, debug, trace);
  }
  ~TrackedHeap() {
    lx::hm_set_switches(0, 0, 0);
    lx::hm_set_hooks({}, {});
    lx::hm_forget();
  }
  TrackedHeap(const TrackedHeap&) = delete;
  TrackedHeap& operator=(const TrackedHeap&) = delete;

  static const lx::HeapInfo& Normal() { return lx::hm_info(lx::Heap::kNormal); }
  static const lx::HeapInfo& Image() { return lx::hm_info(lx::Heap::kImage); }

 private:
  FreshServices fresh_;
};

// Length of the pointer that a text begins with, in whichever form a system gives it: 0x12ab,
// (nil), or sixteen digits. 0 where there is none.
inline std::size_t PointerLength(std::string_view text) {
  constexpr std::string_view kNull = "(nil)";
  constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
  constexpr std::size_t kBareDigits = 16;
  if (text.substr(0, kNull.size()) == kNull) {
    return kNull.size();
  }
  const std::size_t prefix = text.substr(0, 2) == "0x" ? 2 : 0;
  const std::size_t end = std::min(text.find_first_not_of(kDigits, prefix), text.size());
  return prefix == 2 || end == kBareDigits ? end : 0;
}

// Logged lines with "P" in the place of pointers.
inline std::string LinesWithoutPointers() {
  const std::string lines = LoggedLines();
  std::string without;
  for (std::size_t at = 0; at < lines.size();) {
    const std::size_t length = PointerLength(std::string_view(lines).substr(at));
    without += length > 0 ? 'P' : lines[at];
    at += std::max<std::size_t>(length, 1);
  }
  return without;
}

}  // namespace lx_test
