// SPDX-License-Identifier: BSD-3-Clause
// What the program asks of the system about files beyond the C++ library. One source a system
// defines it.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace glimmerhost {

enum class FileUse { kRead, kMake };

// A file of any name, in bytes. One that is made is new, and not behind a link: null if there is
// anything of that name. It may be read too, and can be removed while it is open: where the system
// does not allow that, it goes when it is closed. Null if the system does not open it.
std::FILE* OpenFile(const std::filesystem::path& file, FileUse use) noexcept;

// As std::fseek and std::ftell, also behind 2 GiB.
bool SeekFile(std::FILE* file, std::int64_t offset, int from) noexcept;
std::int64_t TellFile(std::FILE* file) noexcept;

// Comes back when what was written to the file is on the disk.
std::error_code SyncFile(const std::filesystem::path& file) noexcept;

// The same for the names in a folder. What a system cannot sync is none of its errors.
std::error_code SyncFolder(const std::filesystem::path& folder) noexcept;

// Gives the file the other name, in the same folder.
//   replace  false: std::errc::file_exists if the name is taken. Where the file system can
//            promise it, a program that takes the name at the same moment loses nothing.
std::error_code MoveFileTo(const std::filesystem::path& file, const std::filesystem::path& to,
                           bool replace) noexcept;

}  // namespace glimmerhost
