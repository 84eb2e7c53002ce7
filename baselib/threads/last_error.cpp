// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/last_error.h"

#include <cstdint>
#include <cstring>

#include "baselib/platform/platform.h"

namespace lx {

const char* last_error_text() {
  // Asked for first: to find a thread's own buffer may be a call of the system's too.
  const Platform& platform = GetPlatform();
  const std::uint32_t error = platform.lastError();
  // Threads may fail together, so each has its own buffer.
  thread_local char text[256];
  text[0] = '\0';
  if (error != 0) {
    platform.errorText(error, text, sizeof text);
  }
  const std::size_t length = std::strlen(text);
  if (length > 0 && text[length - 1] == '\n') {
    text[length - 1] = '\0';
  }
  return text;
}

}  // namespace lx
