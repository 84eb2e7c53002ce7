// SPDX-License-Identifier: BSD-3-Clause
// StandingWatch: how the outputs of a shot stand, found out on a thread, and anew when files beside
// them change.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>
#include <map>
#include <memory>

#include "host/support/newest_worker.h"
#include "host/viewer/jobs/shot_standing.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {

class StandingWatch : public QObject {
  Q_OBJECT

 public:
  //   page  must outlive it
  explicit StandingWatch(const Page& page, QObject* parent = nullptr);
  ~StandingWatch() override;

  // From now on it is about this. Asked often, as while a value is dragged, it looks once.
  void Watch(const JobInput& input, const RenderTarget& target);

  // Looks now and then by itself, too: other machines' changes of a shared folder are not told
  // here.
  void SetPolls(bool polls);

  // About nothing.
  void Forget();

 signals:
  void Found(const std::map<int, glimmerhost::FrameStanding>& standing);

 private:
  struct Box;
  struct Question {
    std::uint64_t serial;
    JobInput input;
    RenderTarget target;
  };

  void Look();
  void Fetch();

  Question question_{};
  bool isAsked_ = false;
  QFileSystemWatcher files_;
  QTimer soon_;
  QTimer poll_;
  Doorbell bell_;
  std::shared_ptr<Box> box_;
  std::unique_ptr<NewestWorker<Question>> worker_;
};

}  // namespace glimmerhost
