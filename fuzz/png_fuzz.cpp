// SPDX-License-Identifier: BSD-3-Clause
// PNG files. What stands behind a check sum is reached by mending it.
#include <zlib.h>

#include <vector>

#include "fuzz/fuzz_folder.h"
#include "host/pictures/png_tiff/png_tiff_formats.h"

namespace {

void MendCheckSums(std::vector<std::uint8_t>* file) {
  const auto number = [file](std::size_t at) {
    const std::uint8_t* const byte = file->data() + at;
    return std::uint32_t{byte[0]} << 24U | std::uint32_t{byte[1]} << 16U |
           std::uint32_t{byte[2]} << 8U | byte[3];
  };
  for (std::size_t at = 8; at + 12 <= file->size();) {
    const std::size_t length = number(at);
    if (length > file->size() - at - 12) {
      return;
    }
    const auto sum =
        static_cast<std::uint32_t>(crc32(0, file->data() + at + 4, static_cast<uInt>(length + 4)));
    for (unsigned i = 0; i < 4; ++i) {
      (*file)[at + 8 + length + i] = static_cast<std::uint8_t>(sum >> (24U - 8U * i));
    }
    at += length + 12;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size < 2) {
    return 0;
  }
  std::vector<std::uint8_t> picture(bytes + 1, bytes + size);
  // The first byte says how it is read.
  if ((bytes[0] & 1U) == 0) {
    MendCheckSums(&picture);
  }
  const auto file = fuzz::Put("a.png", picture.data(), picture.size());
  glimmerhost::ReadOptions options;
  options.keptFor = (bytes[0] & 2U) == 0 ? "png" : "tiff";
  fuzz::ReadOrRefuse([&] {
    try {
      glimmerhost::ReadReport report;
      const auto reader =
          (bytes[0] & 4U) == 0 ? glimmerhost::Reader::kExact : glimmerhost::Reader::kBestEffort;
      glimmerhost::ReadPngOrTiff(file, options, reader, &report);
    } catch (const glimmerhost::BeyondReader&) {
    }
  });
  return 0;
}
