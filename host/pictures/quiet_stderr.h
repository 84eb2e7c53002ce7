// SPDX-License-Identifier: BSD-3-Clause
// QuietStderr: nothing that a thread says reaches stderr for the length of a scope.
//
// Libraries under the picture library write lines of their own when a file is broken; this
// program says it in one line. Other threads go on being heard: what the C library's stderr and
// std::cerr take is sorted by thread. What goes past both, to the descriptor, is not.
#pragma once

namespace glimmerhost {

class QuietStderr {
 public:
  QuietStderr();
  ~QuietStderr();
  QuietStderr(const QuietStderr&) = delete;
  QuietStderr& operator=(const QuietStderr&) = delete;

 private:
  bool before_;
};

}  // namespace glimmerhost
