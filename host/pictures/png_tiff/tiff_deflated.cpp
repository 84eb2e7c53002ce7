// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_deflated.h"

#include "host/pictures/png_tiff/inflate.h"

namespace glimmerhost {
namespace {

std::uint16_t Field(TIFF* tiff, std::uint32_t tag) {
  std::uint16_t value = 0;
  TIFFGetFieldDefaulted(tiff, tag, &value);
  return value;
}

}  // namespace

DeflatedBlocks::DeflatedBlocks(const TiffLibrary& library)
    : tiff_(library.Tiff()),
      tiled_(TIFFIsTiled(tiff_) != 0),
      fileSize_(TIFFGetSizeProc(tiff_)(TIFFClientdata(tiff_))) {
  const std::uint16_t compression = Field(tiff_, TIFFTAG_COMPRESSION);
  deflated_ = compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE;
  if (!deflated_) {
    return;
  }
  const bool apart = Field(tiff_, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
  std::uint32_t width = 0;
  TIFFGetField(tiff_, tiled_ ? TIFFTAG_TILEWIDTH : TIFFTAG_IMAGEWIDTH, &width);
  rows_.predictor = Field(tiff_, TIFFTAG_PREDICTOR);
  rows_.bits = Field(tiff_, TIFFTAG_BITSPERSAMPLE);
  rows_.step = apart ? 1 : Field(tiff_, TIFFTAG_SAMPLESPERPIXEL);
  rows_.samples = width * rows_.step;
  rows_.rowBytes =
      static_cast<std::size_t>(tiled_ ? TIFFTileRowSize64(tiff_) : TIFFScanlineSize64(tiff_));
  rows_.swapped = TIFFIsByteSwapped(tiff_) != 0;
}

// The block as it stands in the file.
bool DeflatedBlocks::Fetch(std::uint32_t number) {
  const std::uint64_t size = TIFFGetStrileByteCount(tiff_, number);
  if (size == 0 || size > fileSize_) {
    return false;
  }
  raw_.resize(static_cast<std::size_t>(size));
  const auto wanted = static_cast<tmsize_t>(size);
  const tmsize_t read = tiled_ ? TIFFReadRawTile(tiff_, number, raw_.data(), wanted)
                               : TIFFReadRawStrip(tiff_, number, raw_.data(), wanted);
  if (Field(tiff_, TIFFTAG_FILLORDER) == FILLORDER_LSB2MSB) {
    TIFFReverseBits(raw_.data(), wanted);
  }
  return read == wanted;
}

bool DeflatedBlocks::Read(std::uint32_t number, std::size_t rows,
                          std::vector<std::uint8_t>* block) {
  if (!Fetch(number) || !Inflate(raw_, block->data(), rows * rows_.rowBytes)) {
    return false;
  }
  UndoPrediction(rows_, rows, block->data());
  return true;
}

bool DeflatedBlocks::IsWhole(std::uint32_t number) {
  return Fetch(number) && InflateSlowly(raw_, nullptr, 0);
}

}  // namespace glimmerhost
