// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/standing_watch.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <utility>

#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

// A render of small frames changes its folder many times a second.
constexpr std::chrono::milliseconds kSoon{250};

constexpr std::chrono::seconds kPoll{5};

}  // namespace

struct StandingWatch::Box {
  std::mutex mutex;
  std::uint64_t serial = 0;
  std::optional<std::map<int, FrameStanding>> standing;
};

StandingWatch::StandingWatch(const Page& page, QObject* parent)
    : QObject(parent), box_(std::make_shared<Box>()) {
  soon_.setSingleShot(true);
  soon_.setInterval(kSoon);
  poll_.setInterval(kPoll);
  // Not begun anew by each change: then nothing would be seen before the last one.
  connect(&files_, &QFileSystemWatcher::directoryChanged, this, [this] {
    if (isAsked_ && !soon_.isActive()) {
      soon_.start();
    }
  });
  connect(&soon_, &QTimer::timeout, this, &StandingWatch::Look);
  connect(&poll_, &QTimer::timeout, this, &StandingWatch::Look);
  connect(&bell_, &Doorbell::Rung, this, &StandingWatch::Fetch);
  worker_ = std::make_unique<NewestWorker<Question>>(
      [&page, box = box_, ring = bell_.Ringer()](const Question& question) {
        std::map<int, FrameStanding> standing = StandingOf(page, question.input, question.target);
        {
          const std::lock_guard lock(box->mutex);
          box->serial = question.serial;
          box->standing = std::move(standing);
        }
        ring();
      });
}

StandingWatch::~StandingWatch() = default;

void StandingWatch::Watch(const JobInput& input, const RenderTarget& target) {
  question_ = {question_.serial + 1, input, target};
  isAsked_ = true;
  const QString folder = QString::fromStdString(
      std::filesystem::absolute(Utf8Path(target.output)).parent_path().string());
  if (!files_.directories().contains(folder)) {
    if (!files_.directories().isEmpty()) {
      files_.removePaths(files_.directories());
    }
    files_.addPath(folder);
  }
  soon_.start();
}

void StandingWatch::SetPolls(bool polls) {
  if (polls) {
    poll_.start();
  } else {
    poll_.stop();
  }
}

void StandingWatch::Forget() {
  isAsked_ = false;
  soon_.stop();
}

void StandingWatch::Look() {
  if (isAsked_) {
    worker_->Ask(question_);
  }
}

void StandingWatch::Fetch() {
  std::optional<std::map<int, FrameStanding>> standing;
  {
    const std::lock_guard lock(box_->mutex);
    if (box_->serial == question_.serial) {
      standing.swap(box_->standing);
    }
  }
  if (standing && isAsked_) {
    emit Found(*standing);
  }
}

}  // namespace glimmerhost
