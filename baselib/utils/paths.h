// SPDX-License-Identifier: BSD-3-Clause
// Paths, in the form of this system: parted by the platform's separator.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx {

// Longer paths are cut.
inline constexpr std::size_t kPathBytes = 1024;

// One part of a path, counted from 0. One or two leading separators belong to part 0, and a
// drive of part 0 gets a separator, as its directory is asked for that way.
//
//   C:\a\b       "C:\"   "a"    "b"
//   \\srv\share  "\\srv" "share"
//   /opt/a       "/opt"  "a"
//
//   out  null, or kPathBytes that receive a copy
// Null for a null path and for a part that is not there. The text is the function's own and
// is overwritten by the next call; one thread at a time.
const char* path_component(const char* path, std::int32_t index, char* out);

bool is_directory(const char* path);

// Makes a directory and those above it. Server and share of a network path are not made.
// 1 where it is there at the end, 0 at the first that could not be made.
std::int32_t make_directory_path(const char* path);

// Lets the owner read and write a file or directory, or nobody write it.
bool set_file_writable(const char* path, bool writable);

}  // namespace lx
