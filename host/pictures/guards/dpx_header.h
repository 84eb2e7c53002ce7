// SPDX-License-Identifier: BSD-3-Clause
// What the header of a DPX file promises, held against the file: the library's reader believes it.
// It would end the program where there is less user data than promised, and give out samples of 10
// and 12 bits that the file has not, without a word.
#pragma once

#include <filesystem>

namespace glimmerhost {

// Both throw Failure, which names the file. Of other files than DPX nothing is said.

// Where the header is not whole, or claims more user data than there is.
void CheckDpxHeader(const std::filesystem::path& file);

// And where samples are missing. How long runs are is not known before they are read; of such files
// nothing is said.
void CheckDpxLength(const std::filesystem::path& file);

}  // namespace glimmerhost
