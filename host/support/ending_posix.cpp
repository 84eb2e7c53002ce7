// SPDX-License-Identifier: BSD-3-Clause
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <exception>
#include <string_view>
#include <thread>

#include "host/support/child_process.h"
#include "host/support/ending.h"
#include "host/support/system.h"
#include "host/support/temporary_file.h"

namespace glimmerhost {
namespace {

// Blocked signals that are ignored would still be waited for.
bool IsIgnored(int signal) {
  struct sigaction action {};
  return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

[[noreturn]] void WaitAndEnd(sigset_t signals) {
  int signal = 0;
  while (sigwait(&signals, &signal) != 0) {
  }
  EndChildren();
  AbandonTemporaryFiles();
  if (IsTerminal()) {
    // Past what stands there, and not through a stream, whose lock another thread may hold.
    constexpr std::string_view kNextLine = "\r\n";
    [[maybe_unused]] const ssize_t said = write(STDERR_FILENO, kNextLine.data(), kNextLine.size());
  }
  constexpr int kSignalled = 128;
  _exit(kSignalled + signal);
}

}  // namespace

void EndOnSignals() {
  // Errors of the writer, which knows what it was writing.
  signal(SIGXFSZ, SIG_IGN);
  signal(SIGPIPE, SIG_IGN);
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    if (!IsIgnored(number)) {
      sigaddset(&signals, number);
    }
  }
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  try {
    std::thread(WaitAndEnd, signals).detach();
  } catch (const std::exception&) {
    // They end the program as any other, and the next one removes what this one leaves.
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  }
}

}  // namespace glimmerhost
