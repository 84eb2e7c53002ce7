// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/render_job.h"

#include <chrono>
#include <new>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

constexpr std::chrono::seconds kPatience{5};

QStringList Arguments(const std::vector<std::string>& words) {
  QStringList list;
  for (const std::string& word : words) {
    list.append(QString::fromStdString(word));
  }
  // For machines, whatever a copied command says.
  list.insert(1, QStringLiteral("--progress=json"));
  return list;
}

// What ends the lines of a process that reports to machines.
bool IsSummary(const QByteArray& line) { return line.startsWith("{\"done\":"); }

QString Frames(std::size_t count) {
  return count == 1 ? RenderJob::tr("1 frame") : RenderJob::tr("%1 frames").arg(count);
}

}  // namespace

RenderJob::RenderJob(QObject* parent) : QObject(parent) {
  patience_.setSingleShot(true);
  patience_.setInterval(kPatience);
  connect(&patience_, &QTimer::timeout, this, [this] {
    if (process_) {
      process_->kill();
    }
  });
}

RenderJob::~RenderJob() {
  if (process_) {
    process_->disconnect(this);
    process_->terminate();
    if (!process_->waitForFinished()) {
      process_->kill();
      process_->waitForFinished();
    }
  }
}

void RenderJob::Start(const std::filesystem::path& program, const std::vector<std::string>& words) {
  Q_ASSERT(!process_);
  progress_ = {};
  lastWords_.clear();
  hasLostLine_ = false;
  isCancelled_ = false;
  process_ = std::make_unique<QProcess>();
  process_->setProcessChannelMode(QProcess::MergedChannels);
  process_->setStandardInputFile(QProcess::nullDevice());
  connect(process_.get(), &QProcess::readyReadStandardOutput, this, &RenderJob::TakeLines);
  connect(process_.get(), &QProcess::finished, this, [this] { End(true); });
  connect(process_.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) {
      End(false);
    }
  });
  process_->start(QString::fromStdString(program.string()), Arguments(words), QIODevice::ReadOnly);
}

void RenderJob::Cancel() {
  if (process_ && !isCancelled_) {
    isCancelled_ = true;
    process_->terminate();
    patience_.start();
  }
}

void RenderJob::TakeLines() {
  while (process_ && process_->canReadLine() && TakeNext([this] { return process_->readLine(); })) {
  }
}

// Without memory a line is lost, and with it how many frames are done. It may still be there to be
// read: the lines behind it wait for the next ones then, or for the end.
bool RenderJob::TakeNext(const std::function<QByteArray()>& read) {
  try {
    TakeLine(read().trimmed());
    return true;
  } catch (const std::bad_alloc&) {
    hasLostLine_ = true;
    return false;
  }
}

void RenderJob::TakeLine(const QByteArray& line) {
  FrameReport frame;
  if (progress_.Take(line.toStdString(), &frame)) {
    if (!frame.fault.empty()) {
      lastWords_ = tr("frame %1: %2").arg(frame.frame).arg(QString::fromStdString(frame.fault));
    }
    emit FrameTold(frame);
  } else if (!line.isEmpty() && !IsSummary(line)) {
    lastWords_ = QString::fromUtf8(line);
    emit LineSaid(lastWords_);
  }
}

// The process goes later: one of its own signals is on the stack.
void RenderJob::End(bool started) {
  if (started) {
    TakeLines();
    TakeNext([this] { return process_->readAll(); });
  }
  const JobEnd end = EndOf(started);
  patience_.stop();
  process_->disconnect(this);
  process_->setParent(this);
  process_.release()->deleteLater();
  emit Ended(end);
}

JobEnd RenderJob::EndOf(bool started) const {
  if (!started) {
    return {false, isCancelled_, -1,
            tr("%1 cannot be started: %2").arg(process_->program(), process_->errorString())};
  }
  const bool isWhole = process_->exitStatus() == QProcess::NormalExit;
  const int code = isWhole ? process_->exitCode() : -1;
  const QString fine = Frames(progress_.done + progress_.skipped);
  if (isWhole && code == kExitDone && hasLostLine_) {
    return {true, false, code, tr("Done.")};
  }
  if (isWhole && code == kExitDone) {
    return {true, false, code,
            progress_.skipped == 0
                ? tr("Done: %1.").arg(fine)
                : tr("Done: %1, of which %2 were up to date.").arg(fine).arg(progress_.skipped)};
  }
  if (isCancelled_ && hasLostLine_) {
    return {false, true, code, tr("Cancelled. Starting again goes on with the rest.")};
  }
  if (isCancelled_) {
    return {false, true, code,
            tr("Cancelled: %1 of %2 done. Starting again goes on with the rest.")
                .arg(progress_.done + progress_.skipped)
                .arg(Frames(progress_.count))};
  }
  if (!isWhole) {
    return {false, false, code, tr("glimmerhost crashed. Starting again goes on with the rest.")};
  }
  return {false, false, code,
          tr("glimmerhost ended with exit code %1: %2")
              .arg(code)
              .arg(lastWords_.isEmpty() ? tr("it did not say why") : lastWords_)};
}

}  // namespace glimmerhost
