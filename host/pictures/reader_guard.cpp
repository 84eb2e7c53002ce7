// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/reader_guard.h"

#include <array>
#include <cstddef>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include "host/pictures/channels.h"
#include "host/support/system.h"

namespace glimmerhost {

void CheckDpxHeader(const std::filesystem::path& file) {
  std::array<char, 36> header{};
  std::ifstream in(file, std::ios::binary);
  in.read(header.data(), header.size());
  const std::string_view magic(header.data(), 4);
  const bool highFirst = magic == "SDPX";
  if (!in || (!highFirst && magic != "XPDS")) {
    return;
  }
  constexpr std::size_t kUserSize = 32;
  std::uint32_t claimed = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t at = kUserSize + (highFirst ? i : 3 - i);
    claimed = claimed << 8U | static_cast<unsigned char>(header[at]);
  }
  constexpr std::uint32_t kUndefined = 0xFFFFFFFF;
  std::error_code error;
  const std::uintmax_t bytes = std::filesystem::file_size(file, error);
  if (claimed != kUndefined && !error && claimed > bytes) {
    ReadFailure(file, "its header claims " + std::to_string(claimed) +
                          " bytes of user data, and the file has " + std::to_string(bytes));
  }
}

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
