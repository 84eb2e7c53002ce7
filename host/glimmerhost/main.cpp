// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/command_line.h"
#include "host/support/ending.h"
#include "host/support/system.h"

int main(int argc, char** argv) {
  glimmerhost::HoldStandardStreams();
  glimmerhost::EndOnSignals();
  return glimmerhost::RunCommandLine(argc, argv);
}
