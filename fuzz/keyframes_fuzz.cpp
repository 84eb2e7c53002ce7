// SPDX-License-Identifier: BSD-3-Clause
// Values with times.
#include "fuzz/fuzz_folder.h"
#include "host/looks/keyframes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text = fuzz::Text(bytes, size);
  fuzz::ReadOrRefuse([&] {
    if (glimmerhost::HasKeyframes(text)) {
      for (const auto& key : glimmerhost::ParseKeyframes("--radius", text)) {
        glimmerhost::FrameOf(key.time, {1001, 1100}, "--radius", text);
      }
    }
  });
  return 0;
}
