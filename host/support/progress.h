// SPDX-License-Identifier: BSD-3-Clause
// Progress: one line on a terminal that says what is being done.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace glimmerhost {

class Progress {
 public:
  //   wanted  false, or no terminal on stderr: nothing is written but warnings
  explicit Progress(bool wanted);

  // Clears an unfinished line, so that an error stands alone.
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Replaces the line.
  void Show(const std::string& what);

  // Takes the line away.
  void Clear();

  // A line of its own, in the place of the one that is shown.
  void Warn(const std::string& what);
  void WarnAll(const std::vector<std::string>& lines);

  // The last line, with the seconds since the start.
  void Finish(const std::string& what);

 private:
  bool active_;
  bool open_ = false;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace glimmerhost
