// QuietStderr: nothing reaches stderr for the length of a scope.
//
// Libraries under the picture library write lines of their own when a file is broken;
// this program says it in one line. For one thread at a time.
#pragma once

namespace glimmerhost {

class QuietStderr {
 public:
  QuietStderr();
  ~QuietStderr();
  QuietStderr(const QuietStderr&) = delete;
  QuietStderr& operator=(const QuietStderr&) = delete;

 private:
  int kept_;  // the real one, or -1 where it could not be put away
};

}  // namespace glimmerhost
