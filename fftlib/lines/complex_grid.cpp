// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/lines/complex_grid.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "baselib/utils/heap.h"

namespace lx {
namespace {

// Several columns at a time, so that whatever the memory hands over with a sample is used: four
// cache lines of each row.
template <class T>
constexpr std::int32_t kColumnsAtATime = 256 / sizeof(ComplexSample<T>);

// Lines beside one another in memory lie this much further apart than they are long. At a
// distance of a power of two all of them would share a few places of the cache.
template <class T>
constexpr std::ptrdiff_t kLineGap = 64 / sizeof(ComplexSample<T>);

// Some columns of a grid as lines, for one range.
template <class T>
class GatheredColumns {
 public:
  explicit GatheredColumns(const ComplexGrid<T>& grid)
      : grid_(grid),
        stride_(grid.size.height + kLineGap<T>),
        lines_(static_cast<ComplexSample<T>*>(lx_aligned_malloc(
            static_cast<std::uint32_t>(kColumnsAtATime<T> * stride_ * sizeof(ComplexSample<T>)), -1,
            false))) {}
  ~GatheredColumns() { lx_aligned_free(lines_, false); }
  GatheredColumns(const GatheredColumns&) = delete;
  GatheredColumns& operator=(const GatheredColumns&) = delete;

  bool IsAllocated() const { return lines_ != nullptr; }
  T* Line(std::int32_t column) const { return &lines_[column * stride_].re; }

  void Load(std::int32_t x, std::int32_t count) const {
    for (std::int32_t y = 0; y < grid_.size.height; ++y) {
      const ComplexSample<T>* row = grid_.Row(y) + x;
      ComplexSample<T>* to = lines_ + y;
      for (std::int32_t column = 0; column < count; ++column) {
        to[column * stride_] = row[column];
      }
    }
  }

  void Store(std::int32_t x, std::int32_t count) const {
    for (std::int32_t y = 0; y < grid_.size.height; ++y) {
      ComplexSample<T>* row = grid_.Row(y) + x;
      const ComplexSample<T>* from = lines_ + y;
      for (std::int32_t column = 0; column < count; ++column) {
        row[column] = from[column * stride_];
      }
    }
  }

 private:
  ComplexGrid<T> grid_;
  std::ptrdiff_t stride_;
  ComplexSample<T>* lines_;
};

// How many of the wanted columns may still be begun: each is asked for.
std::int32_t CountUncancelled(const Rows& rows, std::int32_t wanted) {
  std::int32_t count = 0;
  while (count < wanted && !rows.Cancelled()) {
    ++count;
  }
  return count;
}

}  // namespace

template <class T>
void RowLines<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const LineTransforms<T>* transforms = FindLineTransforms<T>(grid.size.width);
  ForEachRow(rows, first, last, [&](std::int32_t y) {
    if (transforms != nullptr) {
      (transforms->*operation)(&grid.Row(y)->re);
    }
  });
}

template <class T>
void ColumnLines<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const GatheredColumns<T> columns(grid);
  if (!columns.IsAllocated()) {
    rows.SetStatus(kStatusNoMemory);
    return;
  }
  const LineTransforms<T>* transforms = FindLineTransforms<T>(grid.size.height);
  std::int32_t x = first;
  while (x <= last) {
    const std::int32_t wanted = std::min(last - x + 1, kColumnsAtATime<T>);
    const std::int32_t count = CountUncancelled(rows, wanted);
    if (transforms != nullptr && count > 0) {
      columns.Load(x, count);
      for (std::int32_t column = 0; column < count; ++column) {
        (transforms->*operation)(columns.Line(column));
      }
      columns.Store(x, count);
    }
    if (count < wanted) {
      return;
    }
    x += count;
  }
}

template <class T>
void MultiplyRows<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const LineTransforms<T>* transforms = FindLineTransforms<T>(grid.size.width);
  ForEachRow(rows, first, last, [&](std::int32_t y) {
    if (transforms != nullptr) {
      transforms->multiply(&grid.Row(y)->re, &by[std::ptrdiff_t{y} * grid.size.width].re);
    }
  });
}

template struct RowLines<float>;
template struct RowLines<double>;
template struct ColumnLines<float>;
template struct ColumnLines<double>;
template struct MultiplyRows<float>;
template struct MultiplyRows<double>;

}  // namespace lx
