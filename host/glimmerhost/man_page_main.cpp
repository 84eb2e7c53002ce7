// SPDX-License-Identifier: BSD-3-Clause
// Writes the manual while the program is built: man_page FRAME OUTPUT.
#include <fstream>
#include <iostream>
#include <sstream>

#include "host/glimmerhost/man_page.h"

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "man_page FRAME OUTPUT\n";
    return 2;
  }
  std::ostringstream frame;
  frame << std::ifstream(arguments[1]).rdbuf();
  std::ofstream out(arguments[2]);
  out << glimmerhost::ManPage(frame.str());
  out.close();
  return out ? 0 : 1;
}
