// SPDX-License-Identifier: BSD-3-Clause
// A grid of complex samples, and the passes that take its rows and columns through the fixed-size
// transforms. A length that no transform has is left alone.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fftlib/core/complex_sample.h"
#include "fftlib/core/grid.h"
#include "fftlib/core/rows.h"
#include "fftlib/lines/line_transforms.h"

namespace lx {

// Rows one after another, without padding. T is float or double. Borrows its samples.
template <class T>
struct ComplexGrid {
  ComplexSample<T>* samples = nullptr;
  Size size;

  ComplexSample<T>* Row(std::int32_t y) const { return samples + std::ptrdiff_t{y} * size.width; }
};

// What is done with each line, in place.
template <class T>
using LineOperation = void (*LineTransforms<T>::*)(T* line);

// One operation on every row. As many rows as the grid has.
template <class T>
struct RowLines {
  ComplexGrid<T> grid;
  LineOperation<T> operation;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// One operation on every column. Needs a few lines of memory and fails with kStatusNoMemory.
template <class T>
struct ColumnLines {
  ComplexGrid<T> grid;
  LineOperation<T> operation;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// Rows of the grid times those of another one of its size.
template <class T>
struct MultiplyRows {
  ComplexGrid<T> grid;
  const ComplexSample<T>* by;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// One operation on all rows, then on all columns.
template <class T>
void RunLines(const ComplexGrid<T>& grid, LineOperation<T> operation, Rows* rows) {
  rows->Run(RowLines<T>{grid, operation}, grid.size.height);
  rows->Run(ColumnLines<T>{grid, operation}, grid.size.width);
}

}  // namespace lx
