// SPDX-License-Identifier: BSD-3-Clause
// Shared libraries, loaded by hand.
#pragma once

#include <string>

namespace lx_test {

// Null where the file cannot be loaded; LibraryError then tells why.
void* OpenLibrary(const char* file);
void CloseLibrary(void* library);
std::string LibraryError();

// Null where the library exports no such name.
using AnyFunction = void (*)();
AnyFunction FunctionOf(void* library, const char* name);

// Whether the library, by a file or by its bare name, is in the process.
bool IsLibraryOpen(const char* file);

}  // namespace lx_test
