// SPDX-License-Identifier: BSD-3-Clause
#include <libdeflate.h>

#include <memory>

#include "host/pictures/png_tiff/inflate.h"

namespace glimmerhost {

bool InflateFast(const std::vector<std::uint8_t>& deflated, std::uint8_t* to, std::size_t size) {
  // Tables of 10 KiB, which each thread builds anew for every block anyway.
  using Decompressor = std::unique_ptr<libdeflate_decompressor, void (*)(libdeflate_decompressor*)>;
  thread_local const Decompressor decompressor(libdeflate_alloc_decompressor(),
                                               libdeflate_free_decompressor);
  return decompressor != nullptr &&
         libdeflate_zlib_decompress(decompressor.get(), deflated.data(), deflated.size(), to, size,
                                    nullptr) == LIBDEFLATE_SUCCESS;
}

}  // namespace glimmerhost
