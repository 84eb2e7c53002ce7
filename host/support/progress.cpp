// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/progress.h"

#include <iomanip>
#include <iostream>

#include "host/support/system.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// Back to the first column, and the rest of the line away.
constexpr const char* kClearLine = "\r\033[K";

}  // namespace

Progress::Progress(bool wanted)
    : active_(wanted && IsTerminal()), start_(std::chrono::steady_clock::now()) {}

void Progress::Clear() {
  if (open_) {
    std::cerr << kClearLine << std::flush;
    open_ = false;
  }
}

void Progress::Show(const std::string& what) {
  if (active_) {
    std::cerr << kClearLine << what << " ..." << std::flush;
    open_ = true;
  }
}

void Progress::Warn(const std::string& what) {
  std::cerr << (open_ ? kClearLine : "") << "glimmerhost: " << AsLine(what) << std::endl;
  open_ = false;
}

void Progress::WarnAll(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    Warn(line);
  }
}

void Progress::Finish(const std::string& what) {
  if (active_) {
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start_;
    std::cerr << kClearLine << what << ", " << std::fixed << std::setprecision(1) << taken.count()
              << " s\n";
    open_ = false;
  }
}

}  // namespace glimmerhost
