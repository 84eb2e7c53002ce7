// SPDX-License-Identifier: BSD-3-Clause
// Tags of a directory that is made, where libtiff may have no memory for them.
#pragma once

#include <tiffio.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>

namespace glimmerhost {

// There is no memory for a tag. libtiff counts the tag all the same, and would write or free what
// is not there: neither must be asked of it any more.
class TagRefused final : public std::bad_alloc {};

// For values that libtiff takes. These throw TagRefused: a file without the tag would be another
// one.
template <class... Values>
void SetTag(TIFF* tiff, std::uint32_t tag, Values... values) {
  if (TIFFSetField(tiff, tag, values...) == 0) {
    throw TagRefused();
  }
}

// Of what it copies libtiff may say that it has it, and have nothing.
void SetTextTag(TIFF* tiff, std::uint32_t tag, const std::string& text);
void SetBlockTag(TIFF* tiff, std::uint32_t tag, std::size_t size, const void* bytes);
void SetExtraSample(TIFF* tiff, std::uint16_t kind);  // one

}  // namespace glimmerhost
