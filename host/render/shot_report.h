// SPDX-License-Identifier: BSD-3-Clause
// ShotReport: what a person, or a machine, is told while a shot is rendered. All on stderr.
#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/not_carried.h"

namespace glimmerhost {

enum class FrameState { kDone, kSkipped, kFailed, kMissing };

struct FrameReport {
  int frame = 0;
  FrameState state = FrameState::kDone;
  std::string output;                // its file's name
  std::string fault;                 // why it failed
  std::vector<std::string> remarks;  // what was cut or left out
  std::vector<NotCarried> notCarried;
  double seconds = 0.0;  // of the effect's own work
};

// The state of that name, as lines for machines have it.
std::optional<FrameState> StateOf(const std::string& name);

class ShotReport {
 public:
  enum class Form {
    kQuiet,  // faults and remarks alone
    kBar,    // one line on a terminal, with the rate and the time that is left
    kLines,  // a line a frame
    kJson,   // an object a line, for machines
  };

  // "auto": a bar where there is a terminal, lines elsewhere. Throws UsageError.
  static Form ParseForm(const std::string& text);

  //   count   of the frames to come; 0 if nobody knows
  //   isShot  false for one picture, which is not called a frame
  ShotReport(Form form, std::size_t count, bool isShot);

  // Takes an unfinished bar away.
  ~ShotReport();
  ShotReport(const ShotReport&) = delete;
  ShotReport& operator=(const ShotReport&) = delete;

  void Add(const FrameReport& report);

  // Lines of the whole shot. They come before what is told of the first frame: of a command that is
  // wrong, which shows when that is loaded, nothing else is told.
  void RemarkOfShot(std::vector<std::string> lines) { ofShot_ = std::move(lines); }

  // A line of its own, of no frame.
  void Remark(const std::string& line);

  // Another program's line, as it is.
  void Pass(const std::string& line) { Line(line); }

  // The last line: what became of all frames.
  void Finish();

  std::size_t Count(FrameState state) const { return frames_[static_cast<int>(state)].size(); }

 private:
  void Line(const std::string& line);
  void NoteNotCarried(const FrameReport& report, const std::string& prefix);
  void ShowBar();
  double Elapsed() const;

  Form form_;
  std::size_t count_;
  bool isShot_;
  std::vector<int> frames_[4];  // by state
  // Frames by what they have lost: the first is named at once, and the rest counted.
  std::map<std::string, std::size_t> notCarried_;
  std::vector<std::string> ofShot_;
  bool barShown_ = false;
  std::chrono::steady_clock::time_point start_;
};

}  // namespace glimmerhost
