// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/guards/reader_guard.h"

#include <string>

#include "host/pictures/channels.h"
#include "host/support/system.h"

namespace glimmerhost {

void CheckMemoryFor(const std::filesystem::path& file, int width, int height, std::uint64_t pixel) {
  constexpr std::uint64_t kMebibyte = 1024 * 1024;
  const std::uint64_t available = AvailableMemory();
  const std::uint64_t needed =
      static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * pixel;
  if (available != 0 && needed > available) {
    ReadFailure(file, "its " + std::to_string(width) + " x " + std::to_string(height) +
                          " pixels need " + std::to_string(needed / kMebibyte) +
                          " MiB, and this machine has " + std::to_string(available / kMebibyte) +
                          " MiB left");
  }
}

}  // namespace glimmerhost
