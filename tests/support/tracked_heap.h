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

// Logged lines with "P" in the place of pointers.
inline std::string LinesWithoutPointers() {
  constexpr std::string_view kNull = "(nil)";
  std::string lines = LoggedLines();
  for (std::size_t at = lines.find("0x"); at != std::string::npos; at = lines.find("0x", at)) {
    const std::size_t end = lines.find_first_not_of("0123456789abcdef", at + 2);
    lines.replace(at, std::min(end, lines.size()) - at, "P");
  }
  for (std::size_t at = lines.find(kNull); at != std::string::npos; at = lines.find(kNull, at)) {
    lines.replace(at, kNull.size(), "P");
  }
  return lines;
}

}  // namespace lx_test
