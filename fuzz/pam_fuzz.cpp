// SPDX-License-Identifier: BSD-3-Clause
// Pictures on a pipe.
#include <cstdio>

#include "fuzz/fuzz_folder.h"
#include "host/pictures/pam_stream.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  std::FILE* const from = fmemopen(const_cast<std::uint8_t*>(bytes), size, "rb");
  fuzz::ReadOrRefuse([&] {
    glimmerhost::PamReader reader(from, "pipe");
    while (const auto picture = reader.Next()) {
      if (picture->samples.size() != picture->PixelCount() * 4) {
        __builtin_trap();
      }
    }
    reader.IsAtEnd();
  });
  std::fclose(from);
  return 0;
}
