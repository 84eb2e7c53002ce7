// SPDX-License-Identifier: BSD-3-Clause
// Rows: how a pass over rows (or columns) is run, ended early, and how it fails.
//
// A pass is a value with the operator
//
//   void operator()(Rows& rows, std::int32_t first, std::int32_t last) const
//
// It holds pointers, widths and constants, and handles the rows first to last, both inclusive; a
// range with first above last is empty. Its owner cuts 0 to count - 1 into ranges and may run them
// on several threads at once, so a pass writes only its own rows. Any work on a range begins with
// the status cleared.
//
// One pass at a time: Run returns when all of its ranges are done.
#pragma once

#include <atomic>
#include <cstdint>

#include "fftlib/core/status.h"

namespace lx {

class Rows {
 public:
  // Runs RunRange over ranges that cover 0 to count - 1 exactly once.
  using Divide = void (*)(void* owner, std::int32_t count);
  // Non-zero ends the pass in work early, without an error.
  using CancelQuery = std::int32_t (*)(void* context);
  using Work = void (*)(const void* pass, Rows& rows, std::int32_t first, std::int32_t last);

  Rows(void* owner, Divide divide) : owner_(owner), divide_(divide) {}
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  template <class Pass>
  void Run(const Pass& pass, std::int32_t count) {
    pass_ = &pass;
    work_ = &WorkOf<Pass>;
    divide_(owner_, count);
  }

  // For the owner: the pass in work on a range, on any thread.
  void RunRange(std::int32_t first, std::int32_t last) {
    SetStatus(kStatusOk);
    work_(pass_, *this, first, last);
  }

  // For passes, on any thread: asked ahead of every row. The context is the owner's.
  bool Cancelled() const { return cancel_ != nullptr && cancel_(context_) != 0; }
  void SetCancelQuery(CancelQuery query) { cancel_ = query; }
  void SetContext(void* context) { context_ = context; }
  CancelQuery GetCancelQuery() const { return cancel_; }
  void* Context() const { return context_; }

  // The last error. A pass that fails sets it; where ranges run at once the last word stands.
  std::int32_t Status() const { return status_.load(std::memory_order_relaxed); }
  void SetStatus(std::int32_t code) { status_.store(code, std::memory_order_relaxed); }

  // Which kind of pass is in work, for owners that want to know.
  Work InWork() const { return work_; }
  template <class Pass>
  static void WorkOf(const void* pass, Rows& rows, std::int32_t first, std::int32_t last) {
    (*static_cast<const Pass*>(pass))(rows, first, last);
  }

 private:
  void* owner_;
  Divide divide_;
  void* context_ = nullptr;
  CancelQuery cancel_ = nullptr;
  const void* pass_ = nullptr;
  Work work_ = nullptr;
  std::atomic<std::int32_t> status_{kStatusOk};
};

// Calls row(y) for the rows first to last until the pass is cancelled; the first row not done.
template <class Row>
std::int32_t ForEachRow(const Rows& rows, std::int32_t first, std::int32_t last, Row row) {
  std::int32_t y = first;
  for (; y <= last && !rows.Cancelled(); ++y) {
    row(y);
  }
  return y;
}

}  // namespace lx
