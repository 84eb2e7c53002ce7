// SPDX-License-Identifier: BSD-3-Clause
// Row passes: one member function over all rows of a piece of work, on every way of the pool.
#pragma once

#include <cstdint>

#include "baselib/threads/pool.h"

namespace lx {

// A row function without its class. The pool hands on addresses only.
struct RowFunction {
  void (*call)(const RowFunction& self, void* object, std::int32_t first, std::int32_t last);
};

// Run once on every way: calls the row function with this way's share of the rows, which
// is empty (first above last) on some ways where there are fewer rows than ways.
//   object       what the row function works on
//   rowFunction  the address of a RowFunction
//   rows, ways   counts
std::int32_t mp_slice_rows(PoolWord object, PoolWord rowFunction, PoolWord rows, PoolWord ways,
                           PoolWord unused1, PoolWord unused2);

// Runs object.*rowFunction(first, last), both ends inclusive, over the rows 0 to rows - 1,
// divided in equal parts, the last way taking what remains, and returns when all are done.
// A range with first above last is empty, and a row function takes it as nothing to do: 0
// rows give (0, -1) on every way.
// A row function does not throw and never starts rows of its own.
template <class Class>
void mp_parallel_rows(Class& object, void (Class::*rowFunction)(std::int32_t, std::int32_t),
                      std::int32_t rows) {
  const std::int32_t ways = mp_num_ways();
  if (ways < 2) {
    (object.*rowFunction)(0, rows - 1);
    return;
  }
  struct MemberFunction : RowFunction {
    void (Class::*member)(std::int32_t, std::int32_t);
  };
  MemberFunction function;
  function.member = rowFunction;
  function.call = [](const RowFunction& self, void* target, std::int32_t first, std::int32_t last) {
    (static_cast<Class*>(target)->*static_cast<const MemberFunction&>(self).member)(first, last);
  };
  const RowFunction& base = function;
  mp_run(mp_slice_rows, reinterpret_cast<PoolWord>(&object), reinterpret_cast<PoolWord>(&base),
         rows, ways, 0, 0);
}

}  // namespace lx
