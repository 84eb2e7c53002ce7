// SPDX-License-Identifier: BSD-3-Clause
// ExactRender: one frame by another engine of the effect, in a process of its own.
//
// The engine that is the effect as it is written takes seconds and gigabytes, and may die: the
// window lives on, and a newer request ends the process at once. On the window's thread alone,
// which never waits; the picture is read back on another thread.
#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "host/looks/look.h"
#include "host/looks/page.h"
#include "host/looks/shot_span.h"
#include "host/pictures/picture.h"
#include "host/support/newest_worker.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {

struct ExactRequest {
  std::uint64_t serial = 0;
  std::string file;  // the frame's
  int frame = 1;
  ShotSpan span;  // the frames that times of keyframes count in
  Look look;
  std::string engine = "exact";
};

struct ExactFrame {
  std::uint64_t serial = 0;
  std::shared_ptr<const Picture> picture;  // of 16 bits, premultiplied unless the look says as-is;
                                           // null where there is a fault
  double seconds = 0.0;                    // of the effect's own work
  QString fault;                           // for a person; empty for none
};

class ExactRender : public QObject {
  Q_OBJECT

 public:
  //   page, program  must outlive it; the program is glimmerhost
  ExactRender(const Page& page, std::filesystem::path program, QObject* parent = nullptr);
  ~ExactRender() override;

  // Ends what is running and starts this. Each request is answered at most once, and one that was
  // followed or cancelled not at all.
  void Ask(const ExactRequest& request);

  void Cancel();

  bool IsRunning() const { return isRunning_; }

 signals:
  void Answered(const glimmerhost::ExactFrame& frame);

 private:
  struct Box;
  struct Reading {
    std::uint64_t serial;
    std::filesystem::path file;
    bool premultiplied;
    double seconds;
  };

  void Finish();
  void Fail(const QString& fault);
  void Fetch();

  const Page& page_;
  std::filesystem::path program_;
  QTemporaryDir folder_;
  ExactRequest request_;
  bool isRunning_ = false;
  std::unique_ptr<QProcess> process_;
  Doorbell bell_;
  std::shared_ptr<Box> box_;
  std::unique_ptr<NewestWorker<Reading>> reader_;
};

}  // namespace glimmerhost
