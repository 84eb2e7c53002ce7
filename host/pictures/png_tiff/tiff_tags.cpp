// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_tags.h"

namespace glimmerhost {
namespace {

void CheckKept(const void* kept) {
  if (kept == nullptr) {
    throw TagRefused();
  }
}

}  // namespace

void SetTextTag(TIFF* tiff, std::uint32_t tag, const std::string& text) {
  SetTag(tiff, tag, text.c_str());
  const char* kept = nullptr;
  TIFFGetField(tiff, tag, &kept);
  CheckKept(kept);
}

void SetBlockTag(TIFF* tiff, std::uint32_t tag, std::size_t size, const void* bytes) {
  SetTag(tiff, tag, static_cast<std::uint32_t>(size), bytes);
  std::uint32_t count = 0;
  const void* kept = nullptr;
  TIFFGetField(tiff, tag, &count, &kept);
  CheckKept(kept);
}

void SetExtraSample(TIFF* tiff, std::uint16_t kind) {
  SetTag(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
  std::uint16_t count = 0;
  const std::uint16_t* kept = nullptr;
  TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &count, &kept);
  CheckKept(kept);
}

}  // namespace glimmerhost
