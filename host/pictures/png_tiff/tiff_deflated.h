// SPDX-License-Identifier: BSD-3-Clause
// DeflatedBlocks: the deflated strips or tiles of a TIFF file.
//
// libtiff doesn't look at their check sums wherever a broken block seems to hold more than it
// should, and the bytes that it gives out then are noise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/pictures/png_tiff/tiff_library.h"
#include "host/pictures/png_tiff/tiff_prediction.h"

namespace glimmerhost {

class DeflatedBlocks {
 public:
  //   library  borrowed, and of a file that has been opened
  explicit DeflatedBlocks(const TiffLibrary& library);

  // Whether the file's blocks are deflated.
  bool IsDeflated() const { return deflated_; }

  // And samples in them of a kind that Read knows.
  bool IsKnown() const { return deflated_ && CanUndoPrediction(rows_); }

  // Reads the first rows of a block, as libtiff would give them. False if the block is not there or
  // broken.
  //   block  room for them
  bool Read(std::uint32_t number, std::size_t rows, std::vector<std::uint8_t>* block);

  // Whether the block is there and whole, whatever its samples.
  bool IsWhole(std::uint32_t number);

 private:
  bool Fetch(std::uint32_t number);

  TIFF* tiff_;
  bool deflated_;
  bool tiled_;
  TiffRows rows_{};
  std::uint64_t fileSize_;
  std::vector<std::uint8_t> raw_;
};

}  // namespace glimmerhost
