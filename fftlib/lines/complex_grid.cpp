// Rows and columns of a complex grid through the fixed-size transforms.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "baselib/utils/heap.h"
#include "fftlib/backends/kernels/passes.h"
#include "fftlib/core/complex_sample.h"
#include "fftlib/fftlib.h"
#include "fftlib/lines/line_transforms.h"

namespace lx {
namespace {

void ClearStatus(DefocusEngine* engine) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
}

template <class T>
ComplexSample<T>* GridRow(const DefocusEngine& engine, void* grid, std::int32_t y) {
  return static_cast<ComplexSample<T>*>(grid) + std::ptrdiff_t{y} * engine.paddedWidth;
}

template <class T>
using LineFunction = void (*)(T* line);

template <class T>
void RunRowLines(DefocusEngine* engine, std::int32_t first, std::int32_t last,
                 LineFunction<T> LineTransforms<T>::*operation) {
  ClearStatus(engine);
  const LineTransforms<T>* transforms = FindLineTransforms<T>(engine->paddedWidth);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    if (transforms != nullptr) {
      (transforms->*operation)(&GridRow<T>(*engine, engine->passTarget, y)->re);
    }
  }
}

// Several columns at a time, so that whatever the memory hands over with a sample is used: four
// cache lines of each row.
template <class T>
constexpr std::int32_t kColumnsAtATime = 256 / sizeof(ComplexSample<T>);

// Lines beside one another in memory lie this much further apart than they are long. At a
// distance of a power of two all of them would share a few places of the cache.
template <class T>
constexpr std::ptrdiff_t kLineGap = 64 / sizeof(ComplexSample<T>);

template <class T>
class ColumnLines {
 public:
  explicit ColumnLines(const DefocusEngine& engine)
      : stride_(engine.paddedHeight + kLineGap<T>),
        lines_(static_cast<ComplexSample<T>*>(lx_aligned_malloc(
            static_cast<std::uint32_t>(kColumnsAtATime<T> * stride_ * sizeof(ComplexSample<T>)), -1,
            false))) {}
  ~ColumnLines() { lx_aligned_free(lines_, false); }
  ColumnLines(const ColumnLines&) = delete;
  ColumnLines& operator=(const ColumnLines&) = delete;

  bool IsThere() const { return lines_ != nullptr; }
  ComplexSample<T>* Line(std::int32_t column) const { return lines_ + column * stride_; }

  void Load(const DefocusEngine& engine, std::int32_t x, std::int32_t count) const {
    for (std::int32_t y = 0; y < engine.paddedHeight; ++y) {
      const ComplexSample<T>* row = GridRow<T>(engine, engine.passTarget, y) + x;
      ComplexSample<T>* to = lines_ + y;
      for (std::int32_t column = 0; column < count; ++column) {
        to[column * stride_] = row[column];
      }
    }
  }

  void Store(const DefocusEngine& engine, std::int32_t x, std::int32_t count) const {
    for (std::int32_t y = 0; y < engine.paddedHeight; ++y) {
      ComplexSample<T>* row = GridRow<T>(engine, engine.passTarget, y) + x;
      const ComplexSample<T>* from = lines_ + y;
      for (std::int32_t column = 0; column < count; ++column) {
        row[column] = from[column * stride_];
      }
    }
  }

 private:
  std::ptrdiff_t stride_;
  ComplexSample<T>* lines_;
};

template <class T>
void RunColumnLines(DefocusEngine* engine, std::int32_t first, std::int32_t last,
                    LineFunction<T> LineTransforms<T>::*operation) {
  ClearStatus(engine);
  const ColumnLines<T> lines(*engine);
  if (!lines.IsThere()) {
    engine->status.store(kStatusNoMemory, std::memory_order_relaxed);
    return;
  }
  const LineTransforms<T>* transforms = FindLineTransforms<T>(engine->paddedHeight);
  std::int32_t x = first;
  while (x <= last) {
    const std::int32_t wanted = std::min(last - x + 1, kColumnsAtATime<T>);
    std::int32_t count = 0;
    while (count < wanted && !engine->CancelRequested()) {
      ++count;
    }
    if (transforms != nullptr && count > 0) {
      lines.Load(*engine, x, count);
      for (std::int32_t column = 0; column < count; ++column) {
        (transforms->*operation)(&lines.Line(column)->re);
      }
      lines.Store(*engine, x, count);
    }
    if (count < wanted) {
      return;
    }
    x += count;
  }
}

}  // namespace

template <class T>
void ForwardRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunRowLines<T>(engine, first, last, &LineTransforms<T>::forward);
}

template <class T>
void ForwardColumnsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunColumnLines<T>(engine, first, last, &LineTransforms<T>::forward);
}

template <class T>
void InverseRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunRowLines<T>(engine, first, last, &LineTransforms<T>::inverse);
}

template <class T>
void InverseColumnsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunColumnLines<T>(engine, first, last, &LineTransforms<T>::inverse);
}

template <class T>
void ScaleRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunRowLines<T>(engine, first, last, &LineTransforms<T>::scale);
}

template <class T>
void ScaleColumnsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunColumnLines<T>(engine, first, last, &LineTransforms<T>::scale);
}

template <class T>
void MultiplyRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  ClearStatus(engine);
  const LineTransforms<T>* transforms = FindLineTransforms<T>(engine->paddedWidth);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    if (transforms != nullptr) {
      transforms->multiply(&GridRow<T>(*engine, engine->passTarget, y)->re,
                           &GridRow<T>(*engine, engine->kernelPsf, y)->re);
    }
  }
}

template void ForwardRowsPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void ForwardRowsPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void ForwardColumnsPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void ForwardColumnsPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void InverseRowsPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void InverseRowsPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void InverseColumnsPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void InverseColumnsPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void ScaleRowsPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void ScaleRowsPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void ScaleColumnsPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void ScaleColumnsPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void MultiplyRowsPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void MultiplyRowsPass<double>(DefocusEngine*, std::int32_t, std::int32_t);

}  // namespace lx
