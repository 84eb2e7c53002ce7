// SPDX-License-Identifier: BSD-3-Clause
// A program that this library is loaded with runs as often as it is told to, each time from its
// main on and in a process of its own, with another request refused.
//
// With REFUSALS_SERVER in the environment it reads lines from the descriptor 100, "KIND N FILE":
// the request and where the process's words go; FILE.callers is whom the refused request came from,
// innermost first. It answers on 101, "STATUS SEEN WHAT": what waitpid
// said, how many requests of that kind there were, and the function that was refused, or "-".
#include <dlfcn.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <new>

#include "tests/faults/counted_requests.h"

namespace {

using Main = int (*)(int, char**, char**);
using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);

constexpr int kCommands = 100;
constexpr int kAnswers = 101;

// No run takes half as long; one that takes longer hangs.
constexpr int kPatienceMilliseconds = 10000;

Main realMain;
faults::Requests* shared;  // a run that crashes has said there what it was refused

int RunOnce(int argc, char** argv, char** variables, faults::Kind kind, long n, const char* said) {
  const int file = open(said, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  dup2(file, STDOUT_FILENO);
  dup2(file, STDERR_FILENO);
  close(file);
  static char callers[4096];
  snprintf(callers, sizeof callers, "%s.callers", said);
  faults::SayCallersIn(callers);
  faults::RefuseFrom(kind, n);
  const int code = realMain(argc, argv, variables);
  faults::RefuseNoMore();
  return code;
}

int RunOne(int argc, char** argv, char** variables) {
  int kind = 0;
  long n = 0;
  if (sscanf(getenv("REFUSALS_ONE"), "%d %ld", &kind, &n) != 2) {
    return 2;
  }
  faults::RefuseFrom(static_cast<faults::Kind>(kind), n);
  return realMain(argc, argv, variables);
}

// What waitpid says; -1 for one that hung and was killed.
int Await(pid_t child) {
  for (int waited = 0; waited < kPatienceMilliseconds * 4; ++waited) {
    int status = 0;
    if (waitpid(child, &status, WNOHANG) == child) {
      return status;
    }
    const timespec pause{0, 250000};
    nanosleep(&pause, nullptr);
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  return -1;
}

int Serve(int argc, char** argv, char** variables) {
  // Loaded here once, so that not every run waits for it. Threads that it starts are not in the
  // runs, and what it does at the end of a process would wait for them.
  const char* const library = getenv("REFUSALS_LOADED");
  if (library != nullptr) {
    dlopen(library, RTLD_NOW | RTLD_LOCAL);
  }
  void* const memory = mmap(nullptr, sizeof(faults::Requests), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  shared = new (memory) faults::Requests;
  faults::CountIn(shared);
  FILE* const commands = fdopen(kCommands, "r");
  char line[4096];
  while (fgets(line, sizeof line, commands) != nullptr) {
    int kind = 0;
    long n = 0;
    char said[4000];
    if (sscanf(line, "%d %ld %3999s", &kind, &n, said) != 3) {
      return 2;
    }
    shared->seen = 0;
    shared->refused = nullptr;
    const pid_t child = fork();
    if (child == 0) {
      close(kCommands);
      close(kAnswers);
      const int code = RunOnce(argc, argv, variables, static_cast<faults::Kind>(kind), n, said);
      if (library != nullptr) {
        fflush(nullptr);
        _exit(code);
      }
      exit(code);
    }
    const int status = Await(child);
    // All processes have the library at the same place.
    const char* const refused = shared->refused;
    dprintf(kAnswers, "%d %ld %s\n", status, shared->seen.load(),
            refused != nullptr ? refused : "-");
  }
  return 0;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int __libc_start_main(Main program, int argc,
                                                                        char** argv, void (*init)(),
                                                                        void (*fini)(),
                                                                        void (*end)(),
                                                                        void* stack) {
  realMain = program;
  const auto next = reinterpret_cast<Start>(faults::Find("__libc_start_main"));
  const bool serves = getenv("REFUSALS_SERVER") != nullptr;
  const bool isOne = getenv("REFUSALS_ONE") != nullptr;
  unsetenv("REFUSALS_SERVER");
  unsetenv("LD_PRELOAD");
  return next(serves ? Serve : isOne ? RunOne : program, argc, argv, init, fini, end, stack);
}
