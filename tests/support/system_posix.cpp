// SPDX-License-Identifier: BSD-3-Clause
#include <stdlib.h>  // setenv

#include <cerrno>
#include <cstring>

#include "tests/support/system.h"

namespace lx_test {

void SetVariable(const char* name, const char* value) { setenv(name, value, 1); }
void RemoveVariable(const char* name) { unsetenv(name); }

const std::uint32_t kNoSuchFile = ENOENT;
const std::uint32_t kNoAccess = EACCES;
void RaiseError(std::uint32_t error) { errno = static_cast<int>(error); }
std::string SystemText(std::uint32_t error) { return std::strerror(static_cast<int>(error)); }

}  // namespace lx_test
