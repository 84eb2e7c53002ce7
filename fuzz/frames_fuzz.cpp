// SPDX-License-Identifier: BSD-3-Clause
// Lists of frames, which show as what reads as the same list.
#include "fuzz/fuzz_folder.h"
#include "host/shots/frame_list.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::ReadOrRefuse([&] {
    const auto frames = glimmerhost::ParseFrames("--frames", fuzz::Text(bytes, size));
    if (glimmerhost::ParseFrames("--frames", glimmerhost::ShowFrames(frames)) != frames) {
      __builtin_trap();
    }
  });
  return 0;
}
