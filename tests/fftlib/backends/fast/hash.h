// SPDX-License-Identifier: BSD-3-Clause
// A hash of what bytes a test has made, to be compared with one that is written down.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx_test {

// Of 64 bits (G. Fowler, L. C. Noll, K.-P. Vo, "The FNV non-cryptographic hash algorithm").
inline std::uint64_t HashOf(const void* data, std::size_t bytes) {
  std::uint64_t hash = 0xcbf29ce484222325U;
  const auto* at = static_cast<const unsigned char*>(data);
  for (std::size_t i = 0; i < bytes; ++i) {
    hash = (hash ^ at[i]) * 0x100000001b3U;
  }
  return hash;
}

}  // namespace lx_test
