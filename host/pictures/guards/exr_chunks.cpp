// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/guards/exr_chunks.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace glimmerhost {
namespace {

// Little-endian; 0 behind the file's end.
std::uint64_t Take(FileBytes* bytes, std::size_t size) {
  std::array<std::uint8_t, 8> part{};
  if (bytes->Read(part.data(), size) != size) {
    return 0;
  }
  std::uint64_t number = 0;
  for (std::size_t i = size; i > 0; --i) {
    number = number << 8U | part[i - 1];
  }
  return number;
}

// How many bytes stand before the next 0, which is taken, too.
std::size_t TakeText(FileBytes* bytes) {
  std::size_t length = 0;
  while (Take(bytes, 1) != 0) {
    ++length;
  }
  return length;
}

// A head: attributes of a name, a type, a size and that many bytes, and a name without letters.
// False if it has none.
bool TakeHead(FileBytes* bytes) {
  bool hasAny = false;
  while (TakeText(bytes) > 0) {
    hasAny = true;
    TakeText(bytes);
    const auto size = static_cast<std::int64_t>(Take(bytes, 4));
    bytes->Seek(bytes->Seek(0, std::ios_base::cur) + size, std::ios_base::beg);
  }
  return hasAny;
}

}  // namespace

bool HasAllExrChunks(FileBytes* bytes) {
  constexpr std::uint64_t kMagic = 20000630;
  constexpr std::uint64_t kSeveralParts = 0x1000;
  bytes->Seek(0, std::ios_base::beg);
  if (Take(bytes, 4) != kMagic) {
    return true;
  }
  const bool hasParts = (Take(bytes, 4) & kSeveralParts) != 0;
  // The heads of several parts end with one that is empty.
  while (TakeHead(bytes) && hasParts) {
  }
  // The places of all chunks of all parts. The chunk that is first in the file stands behind them;
  // where lines are stored from the bottom up, its place is the last of them.
  std::int64_t end = std::numeric_limits<std::int64_t>::max();
  for (std::int64_t at = bytes->Seek(0, std::ios_base::cur); at < end; at += 8) {
    const auto place = static_cast<std::int64_t>(Take(bytes, 8));
    if (place == 0) {
      return false;
    }
    end = std::min(end, place);
  }
  return true;
}

}  // namespace glimmerhost
