// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/quiet_stderr.h"

#include <sys/types.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <iostream>
#include <streambuf>

namespace glimmerhost {
namespace {

thread_local bool quiet = false;

// All of it has been said, or there is nobody to say it to.
ssize_t Say(void* /*cookie*/, const char* text, std::size_t length) {
  for (std::size_t said = 0; !quiet && said < length;) {
    const ssize_t part = write(STDERR_FILENO, text + said, length - said);
    if (part <= 0) {
      break;
    }
    said += static_cast<std::size_t>(part);
  }
  return static_cast<ssize_t>(length);
}

class SortedBuffer : public std::streambuf {
 protected:
  int_type overflow(int_type c) override {
    const char letter = traits_type::to_char_type(c);
    Say(nullptr, &letter, 1);
    return traits_type::not_eof(c);
  }

  std::streamsize xsputn(const char* text, std::streamsize length) override {
    return Say(nullptr, text, static_cast<std::size_t>(length));
  }
};

// Puts streams that ask which thread it is in the place of both, before main and so before there
// are threads. They stay until the process is gone: threads may speak to the last.
struct Sorting {
  Sorting() {
    if (std::FILE* const sorted = fopencookie(nullptr, "w", {nullptr, Say, nullptr, nullptr})) {
      std::setvbuf(sorted, nullptr, _IONBF, 0);
      stderr = sorted;
    }
    // A leak on purpose: std::cerr is flushed after static objects are gone.
    std::cerr.rdbuf(new SortedBuffer);
  }
};

const Sorting sorting;

}  // namespace

QuietStderr::QuietStderr() : before_(quiet) { quiet = true; }

QuietStderr::~QuietStderr() { quiet = before_; }

}  // namespace glimmerhost
