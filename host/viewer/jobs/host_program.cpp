// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/host_program.h"

#include <system_error>

#include "host/support/failure.h"
#include "host/support/system.h"

namespace glimmerhost {

namespace fs = std::filesystem;

fs::path HostProgram(const fs::path& folder) {
  // Both programs have the same ending, or none.
  fs::path program = folder / "glimmerhost";
  program += ProgramFile().extension();
  std::error_code error;
  if (!fs::is_regular_file(program, error)) {
    throw MissingInput(program.string() +
                       ": not found; the program that renders must lie beside this one");
  }
  return program;
}

fs::path HostProgram() { return HostProgram(ProgramFolder()); }

}  // namespace glimmerhost
