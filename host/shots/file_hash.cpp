// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/file_hash.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <memory>
#include <new>
#include <vector>

#include "host/support/failure.h"
#include "host/support/input_file.h"

namespace glimmerhost {
namespace {

std::string Show(XXH128_hash_t hash) {
  XXH128_canonical_t bytes;
  XXH128_canonicalFromHash(&bytes, hash);
  std::string text = "xxh128:";
  for (const unsigned char byte : bytes.digest) {
    std::array<char, 3> digits{};
    std::snprintf(digits.data(), digits.size(), "%02x", byte);
    text += digits.data();
  }
  return text;
}

// Some file systems, and some libraries, count whole seconds; that of a network has its own clock.
bool IsSettled(std::filesystem::file_time_type time) {
  constexpr std::chrono::seconds kTick{2};
  return time + kTick < std::filesystem::file_time_type::clock::now();
}

}  // namespace

std::string SamplesHash(const std::vector<std::uint16_t>& samples) {
  return Show(XXH3_128bits(samples.data(), samples.size() * sizeof samples[0]));
}

std::string TextHash(std::string_view text) { return Show(XXH3_128bits(text.data(), text.size())); }

FileState StateOfFile(const std::filesystem::path& file, const FileState& known) {
  std::error_code error;
  FileState state;
  state.size = std::filesystem::file_size(file, error);
  const auto time = std::filesystem::last_write_time(file, error);
  state.time = IsSettled(time) ? time.time_since_epoch().count() : 0;
  const bool isKnown = !error && !known.hash.empty() && known.size == state.size &&
                       state.time != 0 && known.time == state.time;
  state.hash = isKnown ? known.hash : FileHash(file);
  return state;
}

std::string FileHash(const std::filesystem::path& file) {
  RequireFile(file);
  std::ifstream in(file, std::ios::binary);
  const std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)> state(XXH3_createState(),
                                                                       XXH3_freeState);
  if (state == nullptr) {
    throw std::bad_alloc();
  }
  XXH3_128bits_reset(state.get());
  std::vector<char> block(1 << 20);
  while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
    XXH3_128bits_update(state.get(), block.data(), static_cast<std::size_t>(in.gcount()));
  }
  if (!in.eof()) {
    throw Failure(file.string() + ": cannot be read");
  }
  return Show(XXH3_128bits_digest(state.get()));
}

}  // namespace glimmerhost
