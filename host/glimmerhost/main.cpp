#include "host/glimmerhost/command_line.h"
#include "host/support/system.h"

int main(int argc, char** argv) {
  return glimmerhost::RunCommandLine(glimmerhost::Arguments(argc, argv));
}
