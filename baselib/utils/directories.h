// SPDX-License-Identifier: BSD-3-Clause
// Where the system keeps its files: one home directory, found from the machine's settings,
// and a few directories below it.
//
// All texts lie in static buffers, one for each function, which the next call overwrites.
// One thread at a time.
#pragma once

#include <cstdint>

namespace lx {

enum StandardDirectory : std::uint32_t {
  kHomeDirectory = 69,
  kSettingsDirectory = 70,  // "Settings" below home
  kLogsDirectory = 73,      // "Logs" below home
};

// The machine's setting LX_HOME_DIR; without one the folder "Vantrell" below the program
// files folder; without that a fixed default. It does not end in a separator. The process's
// own environment is not asked.
const char* get_home_directory();

// A single blank for a number that is none of StandardDirectory.
const char* get_standard_directory(std::uint32_t number);

// A value of the persistent environment, the machine's or the user's. Null where there is
// none, an empty one, or one of 1024 bytes or more.
const char* get_environment_setting(const char* name, bool machine);

// Makes the standard directories and lets their owner write them. 1, or 0 at the first that
// could not be made.
std::int32_t make_standard_directories();

}  // namespace lx
