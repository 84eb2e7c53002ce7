#include "host/pictures/quiet_stderr.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace glimmerhost {

QuietStderr::QuietStderr() : kept_(-1) {
  std::fflush(stderr);
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) {
    kept_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    if (kept_ >= 0) {
      dup2(nowhere, STDERR_FILENO);
    }
    close(nowhere);
  }
}

QuietStderr::~QuietStderr() {
  if (kept_ >= 0) {
    std::fflush(stderr);
    dup2(kept_, STDERR_FILENO);
    close(kept_);
  }
}

}  // namespace glimmerhost
