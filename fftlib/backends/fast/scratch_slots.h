// SPDX-License-Identifier: BSD-3-Clause
// What ways work in: as many pieces of a block as may be in use at once.
#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

#include "fftlib/backends/fast/fast_layout.h"

namespace lx {

// The pieces are borrowed from their owner's block. Any thread may take one.
class ScratchSlots {
 public:
  void SetBlock(double* block, std::int64_t slot) {
    block_ = block;
    slot_ = slot;
  }

  // One piece for the length of a scope. Waits where all are taken.
  class Use {
   public:
    explicit Use(ScratchSlots* slots) : slots_(*slots), at_(slots_.Take()) {}
    ~Use() { slots_.GiveBack(at_); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    double* Data() const { return slots_.block_ + slots_.slot_ * static_cast<std::ptrdiff_t>(at_); }

   private:
    ScratchSlots& slots_;
    std::size_t at_;
  };

 private:
  std::size_t Take();
  void GiveBack(std::size_t at);

  double* block_ = nullptr;
  std::int64_t slot_ = 0;
  std::mutex mutex_;
  std::condition_variable free_;
  std::array<bool, FastLayout::kSlots> isTaken_{};
};

}  // namespace lx
