// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/steady_file.h"

#include <cstdint>
#include <system_error>
#include <utility>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// What of a file changes when somebody writes to it.
std::pair<fs::file_time_type, std::uintmax_t> StateOf(const fs::path& file) {
  std::error_code error;
  const fs::file_time_type time = fs::last_write_time(file, error);
  return {time, fs::file_size(file, error)};
}

}  // namespace

void ReadSteadily(const fs::path& file, const std::function<void()>& read) {
  const auto before = StateOf(file);
  read();
  if (StateOf(file) != before) {
    throw Failure(file.string() + ": it changed while it was read");
  }
}

}  // namespace glimmerhost
