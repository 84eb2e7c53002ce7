// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/input_file.h"

#include <system_error>

#include "host/support/failure.h"

namespace glimmerhost {

void RequireFile(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(file, error);
  if (status.type() == std::filesystem::file_type::not_found) {
    throw MissingInput(file.string() + ": not found");
  }
  if (!std::filesystem::status_known(status)) {
    throw Failure(file.string() + ": cannot be read: " + error.message());
  }
  if (!std::filesystem::is_regular_file(status)) {
    throw Failure(file.string() + ": not a file");
  }
}

}  // namespace glimmerhost
