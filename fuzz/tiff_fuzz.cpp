// SPDX-License-Identifier: BSD-3-Clause
// TIFF files.
#include "fuzz/fuzz_folder.h"
#include "host/pictures/png_tiff/png_tiff_formats.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size < 2) {
    return 0;
  }
  // The first byte says how it is read.
  const auto file = fuzz::Put("a.tif", bytes + 1, size - 1);
  glimmerhost::ReadOptions options;
  options.keptFor = (bytes[0] & 1U) == 0 ? "tiff" : "png";
  fuzz::ReadOrRefuse([&] {
    try {
      glimmerhost::ReadReport report;
      const auto reader =
          (bytes[0] & 2U) == 0 ? glimmerhost::Reader::kExact : glimmerhost::Reader::kBestEffort;
      glimmerhost::ReadPngOrTiff(file, options, reader, &report);
    } catch (const glimmerhost::BeyondReader&) {
    }
  });
  fuzz::ReadOrRefuse([&] { glimmerhost::CheckTiffBlocks(file); });
  return 0;
}
