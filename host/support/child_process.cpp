// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/child_process.h"

#include <cstddef>

namespace glimmerhost {

std::string ShowEnd(const ProcessEnd& end) {
  return end.signal != 0 ? "was killed by signal " + std::to_string(end.signal)
                         : "ended with exit code " + std::to_string(end.code);
}

bool ChildProcess::ReadLine(std::string* line) {
  std::size_t end = 0;
  while ((end = unread_.find('\n')) == std::string::npos) {
    if (!ReadSome()) {
      line->swap(unread_);
      unread_.clear();
      return !line->empty();
    }
  }
  *line = unread_.substr(0, end);
  unread_.erase(0, end + 1);
  if (line->ends_with('\r')) {
    line->pop_back();
  }
  return true;
}

}  // namespace glimmerhost
