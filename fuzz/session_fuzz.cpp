// SPDX-License-Identifier: BSD-3-Clause
// Scripts of sessions, read and not played.
#include "fuzz/fuzz_folder.h"
#include "host/session/session_script.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const glimmerhost::Page page = glimmerhost::Page::Load(PAGE);
  const auto file = fuzz::Put("a.session", bytes, size);
  fuzz::ReadOrRefuse([&] { glimmerhost::ReadSessionScript(file, page, fuzz::Folder()); });
  return 0;
}
