// SPDX-License-Identifier: BSD-3-Clause
// The program's command line, run in this process.
//
// By the function that main calls, exit codes included. A process of its own would take a hundred
// times as long to start as a refusal takes. What belongs to a process is not to be seen this way:
// signals, standard streams that are closed, modules that stay loaded, and --threads, which narrows
// the whole process, stay away.
#pragma once

#include <string>
#include <vector>

namespace lx_test {

struct CommandLineRun {
  int code = 0;
  std::string out;  // with plain line ends, as the other one
  std::string err;
};

// One at a time: the process's own streams are caught meanwhile.
//   arguments  in UTF-8, without the program's name
CommandLineRun RunCommandLineHere(const std::vector<std::string>& arguments);

}  // namespace lx_test
