// SPDX-License-Identifier: BSD-3-Clause
// ChildProcess: another program, started by this one and read from while it runs.
//
// All of them are in one list, so that a signal that ends this program (ending.h) ends them too.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace glimmerhost {

struct ProcessEnd {
  int code = 0;    // its exit code
  int signal = 0;  // what killed it; 0 if it ended by itself
};

// "ended with exit code 1", "was killed by signal 9".
std::string ShowEnd(const ProcessEnd& end);

class ChildProcess {
 public:
  // What of its streams is this program's.
  enum class Use {
    kLines,   // both its outputs, line by line, while it runs
    kOutput,  // its standard output, in bytes; what it says of errors is kept for later
    kInput,   // its standard input, in bytes; what it says is kept for later
  };

  // Starts it in this process's folder, with its environment. But for kInput it has nothing to
  // read.
  //   program    with a folder in its name, that file; otherwise looked for as a shell does
  //   arguments  in UTF-8, any text, without the program's name; each comes over as it is
  // Throws MissingInput where there is no such program, Failure where it cannot be started.
  ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
               Use use = Use::kLines);

  // Ends it, if it has not been waited for.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Its standard output or input, borrowed, until CloseStream or the end of this object. Null for
  // kLines.
  std::FILE* Stream() const;

  // An input ends with it. False if not all was taken.
  bool CloseStream();

  // The next line of both its outputs, without its end. False when they have ended. For kOutput and
  // kInput after Wait, of what was kept.
  bool ReadLine(std::string* line);

  // Once, when its lines have been read, or its stream has been closed: a program whose output
  // nobody reads, or whose input has no end, may wait itself.
  ProcessEnd Wait();

 private:
  struct System;

  // Some bytes of its outputs; false at their end.
  bool ReadSome();

  std::unique_ptr<System> system_;
  std::string unread_;
};

// Ends all of them and comes back when they have ended. From then on whoever would start one or
// wait for one waits for ever: only for a program that ends at once.
void EndChildren() noexcept;

}  // namespace glimmerhost
