// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/parallel_rows.h"

#include <algorithm>
#include <cstdint>

#include "baselib/threads/module_state.h"
#include "baselib/utils/convert.h"

namespace lx {

std::int32_t mp_slice_rows(PoolWord object, PoolWord rowFunction, PoolWord rows, PoolWord ways,
                           PoolWord /*unused1*/, PoolWord /*unused2*/) {
  // A pool whose start failed after the ways were counted has this one way for all rows.
  const std::int64_t w = pool_state().ways < 2 ? 1 : ways;
  const std::int64_t i = mp_worker_index();
  const std::int64_t chunk = TruncateToInt32(static_cast<double>(rows) / static_cast<double>(w));
  // Fewer rows than ways: the first way has all of them, the others none.
  std::int64_t first = i == 0 ? 0 : std::int64_t{rows};
  std::int64_t end = rows;
  if (chunk > 0) {
    first = i * chunk;
    // The last way takes what the division leaves.
    end = i == w - 1 ? std::int64_t{rows} : std::min(first + chunk, std::int64_t{rows});
  }
  const auto& function = *PointerOf<const RowFunction>(rowFunction);
  function.call(function, PointerOf<void>(object), static_cast<std::int32_t>(first),
                static_cast<std::int32_t>(end - 1));
  return 0;
}

}  // namespace lx
