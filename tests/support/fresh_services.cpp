// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fresh_services.h"

#include "baselib/threads/module_state.h"
#include "baselib/utils/console.h"
#include "baselib/utils/log_sink.h"

namespace lx_test {

void ForgetServices() {
  lx::mp_end_workers();
  lx::PoolState& pool = lx::pool_state();
  pool.ways = 0;
  pool.defaultWays = 1;
  pool.threadCount = 0;
  // Rows that a failed spawn has lost are free again.
  for (lx::MPThreadSlot& row : pool.threads) {
    row.in_use = 0;
    row.thread_id = 0;
  }
  pool.floatControl = 0;
  pool.lastWorkerPriority = -1;
  lx::SystemState& system = lx::system_state();
  system.pageSize = -1;
  system.counterPeriod = -1.0;
  system.counterFrequency = -1.0;
  lx::LogSink& log = lx::log_sink();
  log.clockBase = 0.0;
  log.lastLevel = -1;
  log.threshold = 3;
  log.stream = nullptr;
  log.isFile = false;
  log.hasConsole = false;
  log.mirror = false;
  log.mirrorAlways = false;
  lx::console_state() = {};
}

FreshServices::FreshServices() { ForgetServices(); }
FreshServices::~FreshServices() { ForgetServices(); }

}  // namespace lx_test
