// Row passes: one member function over all rows of a piece of work.
#pragma once

#include <cstdint>

namespace lx {

// Runs object.*rowFunction(first, last) over the rows 0 to rows - 1, both ends
// inclusive, and returns when all are done. A range with first above last is empty,
// and a row function takes it as nothing to do; 0 rows give (0, -1).
// A row function is noexcept in effect and never starts rows of its own.
// Passes run on the calling thread.
template <class Class>
void mp_parallel_rows(Class& object, void (Class::*rowFunction)(std::int32_t, std::int32_t),
                      std::int32_t rows) {
  (object.*rowFunction)(0, rows - 1);
}

}  // namespace lx
