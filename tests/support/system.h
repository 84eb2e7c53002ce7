// SPDX-License-Identifier: BSD-3-Clause
// What tests do to the system behind the platform's back.
#pragma once

#include <cstdint>
#include <string>

namespace lx_test {

// A variable of this process's environment. Tests that set one remove it.
void SetVariable(const char* name, const char* value);
void RemoveVariable(const char* name);

// The calling thread's last error, and the system's text for an error, as it stands.
extern const std::uint32_t kNoSuchFile;
extern const std::uint32_t kNoAccess;
void RaiseError(std::uint32_t error);
std::string SystemText(std::uint32_t error);

}  // namespace lx_test
