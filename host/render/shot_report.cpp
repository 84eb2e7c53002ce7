// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/shot_report.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

#include "host/shots/frame_list.h"
#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

constexpr const char* kClearLine = "\r\033[K";

constexpr const char* kStateNames[] = {"done", "skipped", "failed", "missing"};

std::string Seconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f s", seconds);
  return text;
}

// "1:02:03", or "2:03" below an hour.
std::string Clock(double seconds) {
  const auto whole = static_cast<long>(seconds + 0.5);
  char text[48];
  if (whole < 3600) {
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
  } else {
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", whole / 3600, whole / 60 % 60, whole % 60);
  }
  return text;
}

}  // namespace

std::optional<FrameState> StateOf(const std::string& name) {
  const auto state = std::find(std::begin(kStateNames), std::end(kStateNames), name);
  return state == std::end(kStateNames)
             ? std::nullopt
             : std::optional(static_cast<FrameState>(state - std::begin(kStateNames)));
}

ShotReport::Form ShotReport::ParseForm(const std::string& text) {
  if (text == "json") {
    return Form::kJson;
  }
  if (text != "auto" && text != "bar" && text != "lines") {
    throw MustBe("--progress", "auto, bar, lines or json", text);
  }
  return text == "bar" || (text == "auto" && IsTerminal()) ? Form::kBar : Form::kLines;
}

ShotReport::ShotReport(Form form, std::size_t count, bool isShot)
    : form_(!isShot && form == Form::kLines ? Form::kQuiet : form),
      count_(count),
      isShot_(isShot),
      start_(std::chrono::steady_clock::now()) {
  if (form_ == Form::kBar) {
    ShowBar();
  }
}

ShotReport::~ShotReport() {
  if (barShown_) {
    std::cerr << kClearLine << std::flush;
  }
}

double ShotReport::Elapsed() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
}

void ShotReport::Line(const std::string& line) {
  if (barShown_) {
    std::cerr << kClearLine;
    barShown_ = false;
  }
  // One write, so that lines of several processes on one terminal stay whole.
  std::cerr << AsLine(line) + "\n" << std::flush;
}

void ShotReport::Remark(const std::string& line) { Line("glimmerhost: " + line); }

void ShotReport::Add(const FrameReport& report) {
  for (const std::string& line : std::exchange(ofShot_, {})) {
    Remark(line);
  }
  frames_[static_cast<int>(report.state)].push_back(report.frame);
  std::size_t seen = 0;
  for (const auto& frames : frames_) {
    seen += frames.size();
  }
  const std::string name = "frame " + std::to_string(report.frame);
  const std::string prefix = isShot_ ? name + ": " : "";
  if (form_ == Form::kJson) {
    nlohmann::ordered_json line;
    line["frame"] = report.frame;
    line["state"] = kStateNames[static_cast<int>(report.state)];
    line["output"] = report.output;
    line["seconds"] = report.seconds;
    line["index"] = seen;
    line["count"] = count_ == 0 ? nlohmann::ordered_json() : nlohmann::ordered_json(count_);
    line["elapsed"] = Elapsed();
    if (!report.fault.empty()) {
      line["fault"] = report.fault;
    }
    std::vector<std::string> remarks = report.remarks;
    for (const NotCarried& lost : report.notCarried) {
      remarks.push_back(lost.line);
    }
    if (!remarks.empty()) {
      line["remarks"] = remarks;
    }
    Line(line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
    return;
  }
  for (const std::string& remark : report.remarks) {
    Remark(prefix + remark);
  }
  NoteNotCarried(report, prefix);
  if (!report.fault.empty()) {
    Remark(prefix + report.fault);
  }
  if (form_ == Form::kBar) {
    ShowBar();
  } else if (form_ == Form::kLines && report.fault.empty()) {
    Line(name +
         (count_ == 0 ? "" : " (" + std::to_string(seen) + " of " + std::to_string(count_) + ")") +
         ": " + report.output +
         (report.state == FrameState::kSkipped ? " is there already"
                                               : ", " + Seconds(report.seconds)));
  }
}

void ShotReport::NoteNotCarried(const FrameReport& report, const std::string& prefix) {
  for (const NotCarried& lost : report.notCarried) {
    if (++notCarried_[lost.what] == 1) {
      Remark(prefix + lost.line);
    }
  }
}

void ShotReport::ShowBar() {
  constexpr std::size_t kWidth = 24;
  const std::size_t done = Count(FrameState::kDone);
  const std::size_t seen =
      done + Count(FrameState::kSkipped) + Count(FrameState::kFailed) + Count(FrameState::kMissing);
  std::string line = std::to_string(seen);
  if (count_ != 0) {
    const std::size_t filled = kWidth * seen / count_;
    line = "[" + std::string(filled, '=') + std::string(kWidth - filled, ' ') + "] " + line +
           " of " + std::to_string(count_);
  }
  if (done > 0) {
    const double each = Elapsed() / static_cast<double>(done);
    char rate[48];
    std::snprintf(rate, sizeof rate, ", %.2f frames/s", 1.0 / each);
    line += rate;
    if (count_ != 0) {
      line += ", " + Clock(each * static_cast<double>(count_ - seen)) + " left";
    }
  }
  std::cerr << kClearLine << line << std::flush;
  barShown_ = true;
}

void ShotReport::Finish() {
  if (form_ == Form::kJson) {
    nlohmann::ordered_json line;
    for (int state = 0; state < 4; ++state) {
      line[kStateNames[state]] = frames_[state].size();
    }
    line["elapsed"] = Elapsed();
    Line(line.dump());
    return;
  }
  for (const auto& [what, frames] : notCarried_) {
    if (frames > 1) {
      Remark("not carried in " + std::to_string(frames) + " frames: " + what);
    }
  }
  std::vector<int> bad = frames_[static_cast<int>(FrameState::kFailed)];
  const auto& missing = frames_[static_cast<int>(FrameState::kMissing)];
  bad.insert(bad.end(), missing.begin(), missing.end());
  std::sort(bad.begin(), bad.end());
  if (!isShot_) {
    if (bad.empty() && form_ == Form::kBar) {
      Line(Seconds(Elapsed()));
    }
  } else if (!bad.empty()) {
    const std::size_t fine = Count(FrameState::kDone) + Count(FrameState::kSkipped);
    const std::size_t count = count_ == 0 ? fine + bad.size() : count_;
    Remark(std::to_string(bad.size()) + " of " + Counted(count, "frame") + " failed (" +
           ShowFrames(bad) + "), " + std::to_string(fine) + " done" +
           (fine + bad.size() < count
                ? "; --skip-existing resumes, --keep-going renders the rest all the same"
                : ""));
  } else if (form_ != Form::kQuiet) {
    Line(Counted(Count(FrameState::kDone) + Count(FrameState::kSkipped), "frame") + ", " +
         Clock(Elapsed()));
  }
}

}  // namespace glimmerhost
