// SPDX-License-Identifier: BSD-3-Clause
// Looks in JSON files.
#include "fuzz/fuzz_folder.h"
#include "host/looks/parameter_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const glimmerhost::Page page = glimmerhost::Page::Load(PAGE);
  fuzz::ReadOrRefuse(
      [&] { glimmerhost::ParseParameters(page, "look.json", fuzz::Text(bytes, size)); });
  return 0;
}
