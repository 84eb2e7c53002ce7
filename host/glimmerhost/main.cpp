#include "host/glimmerhost/command_line.h"

int main(int argc, char** argv) { return glimmerhost::RunCommandLine(argc, argv); }
