// SPDX-License-Identifier: BSD-3-Clause
// Manifests, read and gone on with.
#include "fuzz/fuzz_folder.h"
#include "host/shots/manifest.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const auto file = fuzz::Put("a.jsonl", bytes, size);
  fuzz::ReadOrRefuse([&] { glimmerhost::ReadManifest(file); });
  fuzz::ReadOrRefuse([&] {
    glimmerhost::Manifest manifest(file, true, false);
    glimmerhost::ManifestEntry entry;
    entry.frame = 7;
    manifest.Add(entry);
  });
  return 0;
}
