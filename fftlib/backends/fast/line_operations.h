// SPDX-License-Identifier: BSD-3-Clause
// Transforms of many lines at once: eight rows, or eight columns, a lane each.
//
// Rows lie in a buffer that holds number x of all eight together; a row of real numbers is one of
// half as many complex numbers, so that of each of those the real parts come first:
//
//   buffer   x = 0 of rows 0 .. 7 | x = 1 of rows 0 .. 7 | ...     16 doubles a complex number
//
// Planes lie in blocks of eight columns, one block behind the other, whose rows hold the real parts
// of all eight and then the imaginary ones. A column is a frequency of the rows, in the order that
// their plan leaves them in, and behind those the highest one.
//
//   block    row 0: re of 8 columns, im of 8 columns | row 1: ... | ...
//
// A lane is a line, and no line's sums depend on its neighbours: all forms give the same bits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "fftkernels/mixed_radix/line_plan.h"

namespace lx {

inline constexpr std::int32_t kLines = 8;            // of a buffer, or of a block
inline constexpr std::int32_t kStride = 2 * kLines;  // doubles from one complex number to the next

// Real rows by complex ones of half their length.
struct RowPlan {
  // Two frequencies of the half that the whole row's are made of, k and half - k.
  struct Couple {
    std::int32_t first;   // position of k
    std::int32_t second;  // and of half - k
    double cosine;        // of 2 pi k over the whole length
    double sine;
  };

  LinePlan half;
  const Couple* couples = nullptr;  // for k of 1 up to but not with half / 2
  std::int32_t coupleCount = 0;
  std::int32_t middle = -1;  // position of half / 2, if there is one

  std::int32_t Columns() const { return half.length + 1; }
};

// Which rows of a block the columns are read from and written to.
struct ColumnRows {
  const std::int32_t* source;  // for each number of a column, the row that it is; below 0 for zero
  std::int32_t stored;         // as many numbers from the first on go back, each to its own row
};

// The four planes of eight rows, each in a buffer of its own: luma, Cr, Cb and alpha from 0 to 1. A
// null one is left out.
using PlaneBuffers = std::array<double*, 4>;

// Rows of pixels of four 16-bit channels. Where there are fewer than eight, the others are read
// from some row that exists, and not written.
using PixelRows = std::array<std::uint16_t*, kLines>;

struct LineOperations {
  // Between pixels and planes, without any curve. They take the steps of FillFromPicture and
  // StoreToPicture, rounding for rounding.
  //   width    pixels of a row
  //   count    rows that are written
  //   buffers  to be written all but alpha, without which the pixels keep theirs
  void (*readPixels)(const PixelRows& rows, std::int32_t width, const PlaneBuffers& buffers);
  void (*writePixels)(const PlaneBuffers& buffers, std::int32_t width, std::int32_t count,
                      const PixelRows& rows);

  // In place: twice the spectrum of real rows, and from it the rows, times twice their length.
  void (*forwardRows)(const RowPlan& plan, double* buffer);
  void (*inverseRows)(const RowPlan& plan, double* buffer);

  // Between a buffer's spectra and the rows of a plane, count of them.
  //   plane        at the first of the rows in the first block
  //   blockStride  doubles from a block to the next
  void (*spread)(const double* buffer, std::int32_t columns, std::int32_t count,
                 std::ptrdiff_t blockStride, double* plane);
  void (*gather)(const double* plane, std::int32_t columns, std::int32_t count,
                 std::ptrdiff_t blockStride, double* buffer);

  // Between eight rows of real numbers and a buffer.
  //   rows   eight, of stride doubles each
  //   count  numbers of each
  void (*pack)(const double* rows, std::int32_t stride, std::int32_t count, double* buffer);
  void (*unpack)(const double* buffer, std::int32_t stride, std::int32_t count, double* rows);

  // A block's columns forward, times a spectrum, and backward, in place.
  //   spectrum  a block's, of whole columns, in the plan's order
  //   scratch   a block of whole columns
  void (*convolveColumns)(const LinePlan& plan, const ColumnRows& rows, const double* spectrum,
                          double* block, double* scratch);

  // The spectrum of a block's columns.
  void (*forwardColumns)(const LinePlan& plan, const ColumnRows& rows, const double* block,
                         double* spectrum);
};

const LineOperations& PlainLineOperations();
const LineOperations& Vector128LineOperations();  // every processor of the families has these

// Null where the processor, or the build, does not have them.
const LineOperations* Avx2LineOperations();
const LineOperations* Avx512LineOperations();

// Those in force: the fastest that the processor has, unless a test has put others in their place.
const LineOperations& GetLineOperations();

// Puts operations in force for the length of a scope, for back-ends that are made in it. They are
// borrowed, and the processor must have them.
class ScopedLineOperations {
 public:
  explicit ScopedLineOperations(const LineOperations* operations);
  ~ScopedLineOperations();
  ScopedLineOperations(const ScopedLineOperations&) = delete;
  ScopedLineOperations& operator=(const ScopedLineOperations&) = delete;

 private:
  const LineOperations* previous_;
};

}  // namespace lx
