// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/pass_runner.h"

#include <algorithm>

namespace lx {
namespace {

// Small enough that ways end together and cancelling is felt, large enough that dividing costs
// nothing. Row passes work on eight rows at once.
std::int32_t BlockRows(std::int32_t count, std::int32_t ways) {
  constexpr std::int32_t kBlocksOfAWay = 8;
  constexpr std::int32_t kAtOnce = 8;
  const std::int32_t rows = count / (ways * kBlocksOfAWay);
  return std::max(rows / kAtOnce * kAtOnce, kAtOnce);
}

}  // namespace

PassRunner::PassRunner(std::int32_t ways, glimmerblur_parallel_for parallelFor, void* parallelUser)
    : threads_(ways),
      ways_(ways),
      parallelFor_(parallelFor),
      parallelUser_(parallelUser),
      rows_(this, Divide) {
  rows_.SetContext(this);
  rows_.SetCancelQuery([](void* context) -> std::int32_t {
    return static_cast<PassRunner*>(context)->IsCancelled() ? 1 : 0;
  });
}

void PassRunner::Begin(std::int32_t jobs, std::int32_t passesOfAJob) {
  caller_ = std::this_thread::get_id();
  isCancelled_ = false;
  jobs_ = jobs;
  job_ = 0;
  passes_ = passesOfAJob;
  pass_ = 0;
  told_ = 0.0;
  isAsking_ = true;
}

void PassRunner::NextJob() {
  ++job_;
  pass_ = 0;
}

void PassRunner::Finish() {
  job_ = jobs_;
  pass_ = 0;
  Ask(0.0);
  isAsking_ = false;
}

void PassRunner::Ask(double ofPass) {
  if (progress_ == nullptr || !isAsking_ || IsCancelled()) {
    return;
  }
  // What was not foreseen goes on towards the end of its job, ever more slowly.
  const double ofJob = (pass_ + ofPass) / passes_;
  const double bent = ofJob <= 0.9 ? ofJob : 1.0 - 0.09 / ofJob;
  told_ = std::clamp((job_ + std::clamp(bent, 0.0, 1.0)) / jobs_, told_, 1.0);
  if (progress_(progressUser_, told_) != 0) {
    isCancelled_ = true;
  }
}

void PassRunner::Divide(void* owner, std::int32_t count) {
  auto* self = static_cast<PassRunner*>(owner);
  self->count_ = count;
  self->blockRows_ = BlockRows(count, self->ways_);
  self->blocks_ = (count + self->blockRows_ - 1) / self->blockRows_;
  self->blocksDone_ = 0;
  if (self->parallelFor_ != nullptr) {
    self->parallelFor_(self->parallelUser_, self->blocks_, DoBlock, owner);
  } else {
    self->threads_.Run(self->blocks_, DoBlock, owner);
  }
  // Others may have done every block.
  self->Ask(1.0);
  ++self->pass_;
}

void PassRunner::DoBlock(void* owner, std::int32_t block) {
  auto* self = static_cast<PassRunner*>(owner);
  if (self->IsCancelled()) {
    return;
  }
  const std::int32_t first = block * self->blockRows_;
  self->rows_.RunRange(first, std::min(first + self->blockRows_, self->count_) - 1);
  const std::int32_t done = self->blocksDone_.fetch_add(1, std::memory_order_relaxed) + 1;
  if (std::this_thread::get_id() == self->caller_) {
    self->Ask(static_cast<double>(done) / self->blocks_);
  }
}

}  // namespace lx
