// SPDX-License-Identifier: BSD-3-Clause
// The count that a cPtr shares with the object it points at.
#pragma once

#include <atomic>
#include <cstdint>

#include "hostframe/interfaces/visibility.h"

namespace quantel {

// Base of every counted object. It has no virtual operations and holds one
// 32-bit count and nothing else. An object starts at 0: its first cPtr makes it 1,
// and the end of its last one deletes it. So never make a cPtr to an object on the stack,
// or to one that is still in its constructor.
// Any thread may count.
class QTL_BORDER cRefCount {
 public:
  cRefCount() = default;
  cRefCount(const cRefCount&) = delete;
  cRefCount& operator=(const cRefCount&) = delete;

  void Add() { count_.fetch_add(1, std::memory_order_relaxed); }

  // The value before the subtraction; 1 means that the caller held the last one.
  std::int32_t Subtract() { return count_.fetch_sub(1, std::memory_order_acq_rel); }

  std::int32_t Count() const { return count_.load(std::memory_order_relaxed); }

 protected:
  ~cRefCount() = default;

 private:
  std::atomic<std::int32_t> count_{0};
};

static_assert(sizeof(cRefCount) == 4, "the count crosses the border as one 32-bit word");

}  // namespace quantel
