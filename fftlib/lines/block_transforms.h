// SPDX-License-Identifier: BSD-3-Clause
// Square blocks of real numbers through the fixed-size transforms, in whose order frequencies stay,
// and back without scaling: size * size times the block. And where the frequencies are.
#pragma once

#include <cstdint>

#include "fftlib/core/rows.h"

namespace lx {

class BlockTransforms {
 public:
  BlockTransforms() = default;
  ~BlockTransforms();
  BlockTransforms(const BlockTransforms&) = delete;
  BlockTransforms& operator=(const BlockTransforms&) = delete;

  // Makes the table of frequencies for a size unless it is there. A status.
  std::int32_t PrepareTable(std::int32_t size);

  // Single precision whatever else the engine works in. A size has been checked. A status.
  //   input, output  size * size numbers
  //   spectrum       size * size complex ones; Inverse destroys them
  static std::int32_t Forward(std::int32_t size, const float* input, float (*spectrum)[2],
                              Rows* rows);
  static std::int32_t Inverse(std::int32_t size, float (*spectrum)[2], float* output, Rows* rows);

  // The signed frequencies of a place of the spectrum. False, with nothing stored, for a place
  // outside and before there is a table.
  bool LookUp(std::int32_t row, std::int32_t column, float* rowFrequency,
              float* columnFrequency) const;

  // For tests.
  std::int32_t* Table() const { return table_; }
  std::int32_t TableSize() const { return tableSize_; }

 private:
  void FreeTable();

  std::int32_t* table_ = nullptr;
  std::int32_t tableSize_ = 0;
};

// Whether a block may have that side: a power of two from 2 to 8192.
bool IsBlockSize(std::int32_t size);

}  // namespace lx
