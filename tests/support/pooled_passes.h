// SPDX-License-Identifier: BSD-3-Clause
// Hands an engine's passes to the pool, as the effect does.
#pragma once

#include <cstdint>

#include "baselib/threads/parallel_rows.h"
#include "fftlib/fftlib.h"

namespace lx_test {

class PooledPasses {
 public:
  // For SetParallelFor; the context is a PooledPasses.
  static void ParallelFor(void* context, lx::PassFunction pass, std::int32_t count,
                          lx::DefocusEngine* engine) {
    auto* self = static_cast<PooledPasses*>(context);
    self->pass_ = pass;
    self->engine_ = engine;
    lx::mp_parallel_rows(*self, &PooledPasses::Rows, count);
  }

 private:
  void Rows(std::int32_t first, std::int32_t last) { pass_(engine_, first, last); }

  lx::PassFunction pass_ = nullptr;
  lx::DefocusEngine* engine_ = nullptr;
};

}  // namespace lx_test
