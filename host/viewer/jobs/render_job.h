// SPDX-License-Identifier: BSD-3-Clause
// RenderJob: a render, or the submission of one, by a process of its own, told while it runs.
//
// On the window's thread alone, which never waits for the process: all that it tells comes by the
// event loop. What goes wrong ends in a JobEnd; nothing throws.
#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/render/shot_report.h"
#include "host/viewer/jobs/job_progress.h"

namespace glimmerhost {

struct JobEnd {
  bool isDone = false;       // all frames are
  bool isCancelled = false;  // by Cancel
  int code = 0;              // what the process ended with; -1 where it did not end by itself
  QString words;             // for a person, in one line
};

class RenderJob : public QObject {
  Q_OBJECT

 public:
  explicit RenderJob(QObject* parent = nullptr);

  // Ends the process and waits for that: only where the window ends, too.
  ~RenderJob() override;

  // Starts a process; not while one is running. Ended may come before this returns.
  //   words  of render or submit, its name first
  void Start(const std::filesystem::path& program, const std::vector<std::string>& words);

  // Has the process end, which leaves whole files alone. One that does not within some seconds is
  // killed; the next render of the same outputs removes what it has left.
  void Cancel();

  bool IsRunning() const { return process_ != nullptr; }

  // Of the process that runs, or that ran last.
  const JobProgress& Progress() const { return progress_; }

 signals:
  void FrameTold(const glimmerhost::FrameReport& report);

  // A line of no frame, as the process wrote it.
  void LineSaid(const QString& line);

  // Once for each Start. The job is not running any more.
  void Ended(const glimmerhost::JobEnd& end);

 private:
  void TakeLines();
  bool TakeNext(const std::function<QByteArray()>& read);
  void TakeLine(const QByteArray& line);
  void End(bool started);
  JobEnd EndOf(bool started) const;

  std::unique_ptr<QProcess> process_;
  QTimer patience_;  // with a process that is to end
  JobProgress progress_;
  QString lastWords_;         // of what went wrong, as far as the process said it
  bool hasLostLine_ = false;  // so that progress_ is not all there is
  bool isCancelled_ = false;
};

}  // namespace glimmerhost
