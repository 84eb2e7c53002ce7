// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/exact_render.h"

#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "host/looks/look_layers.h"
#include "host/pictures/alpha.h"
#include "host/pictures/picture_file.h"
#include "host/support/utf8_path.h"
#include "host/viewer/jobs/job_progress.h"
#include "host/viewer/jobs/render_words.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// What the process is told. An uncompressed file takes a tenth of the time to write and read.
std::vector<std::string> WordsOf(const Page& page, const ExactRequest& request,
                                 const fs::path& output) {
  RenderTarget target;
  target.output = output.string();
  target.bits = "16";
  target.compression = "none";
  target.precision = "16";
  target.engine = request.engine;
  target.frames = {request.frame};
  target.replaces = true;
  std::vector<std::string> words =
      RenderWords(page, {request.file, request.span, {request.frame}, request.look}, target);
  words.insert(words.begin() + 1, "--progress=json");
  return words;
}

// Of a literal the text takes no memory.
QString WordsOf(const std::exception& fault) noexcept {
  try {
    return QString::fromUtf8(fault.what());
  } catch (const std::bad_alloc&) {
    return QStringLiteral("no memory left");
  }
}

bool IsPremultiplied(const Page& page, const Look& look) {
  return PictureLookOf(page, {{"", look}}).alpha != "as-is";
}

}  // namespace

// What the reader puts down for the window.
struct ExactRender::Box {
  std::mutex mutex;
  std::optional<ExactFrame> frame;
};

ExactRender::ExactRender(const Page& page, fs::path program, QObject* parent)
    : QObject(parent), page_(page), program_(std::move(program)), box_(std::make_shared<Box>()) {
  connect(&bell_, &Doorbell::Rung, this, &ExactRender::Fetch);
  reader_ = std::make_unique<NewestWorker<Reading>>(
      [box = box_, ring = bell_.Ringer()](const Reading& reading) {
        ExactFrame frame;
        frame.serial = reading.serial;
        frame.seconds = reading.seconds;
        try {
          std::string warning;
          auto picture = std::make_shared<Picture>(ReadPicture(reading.file, &warning));
          if (reading.premultiplied) {
            Premultiply(picture.get());
          }
          frame.picture = std::move(picture);
        } catch (const std::exception& fault) {
          frame.fault = WordsOf(fault);
        }
        std::error_code ignored;
        fs::remove(reading.file, ignored);
        {
          const std::lock_guard lock(box->mutex);
          box->frame = std::move(frame);
        }
        ring();
      });
}

ExactRender::~ExactRender() {
  Cancel();
  for (QProcess* process : findChildren<QProcess*>()) {
    process->disconnect();
    process->waitForFinished();
  }
}

void ExactRender::Ask(const ExactRequest& request) {
  Cancel();
  request_ = request;
  isRunning_ = true;
  const fs::path output =
      Utf8Path(folder_.filePath(QString::number(request.serial) + ".tif").toStdString());
  QStringList arguments;
  try {
    for (const std::string& word : WordsOf(page_, request, output)) {
      arguments.append(QString::fromStdString(word));
    }
  } catch (const std::exception& fault) {
    Fail(QString::fromUtf8(fault.what()));
    return;
  }
  process_ = std::make_unique<QProcess>();
  process_->setProcessChannelMode(QProcess::MergedChannels);
  process_->setStandardInputFile(QProcess::nullDevice());
  connect(process_.get(), &QProcess::finished, this, &ExactRender::Finish);
  connect(process_.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) {
      Fail(tr("%1 cannot be started: %2").arg(process_->program(), process_->errorString()));
    }
  });
  process_->start(QString::fromStdString(program_.string()), arguments, QIODevice::ReadOnly);
}

// Killed, and not asked: one that hangs would not listen, and its files lie in a folder of ours.
void ExactRender::Cancel() {
  isRunning_ = false;
  if (process_) {
    process_->disconnect(this);
    QProcess* const process = process_.release();
    process->setParent(this);
    if (process->state() == QProcess::NotRunning) {
      process->deleteLater();
      return;
    }
    connect(process, &QProcess::finished, process, &QObject::deleteLater);
    process->kill();
  }
}

void ExactRender::Fail(const QString& fault) {
  Cancel();
  ExactFrame frame;
  frame.serial = request_.serial;
  frame.fault = fault;
  emit Answered(frame);
}

void ExactRender::Finish() {
  QString said;
  FrameReport report;
  JobProgress progress;
  for (const QByteArray& line : process_->readAll().split('\n')) {
    if (progress.Take(line.toStdString(), &report)) {
      said = QString::fromStdString(report.fault);
    } else if (said.isEmpty() && !line.isEmpty() && !line.startsWith('{')) {
      said = QString::fromUtf8(line);
    }
  }
  if (process_->exitStatus() != QProcess::NormalExit) {
    Fail(tr("The process that renders with the engine %1 died.")
             .arg(QString::fromStdString(request_.engine)));
  } else if (process_->exitCode() != 0 || progress.done == 0) {
    Fail(said.isEmpty() ? tr("It ended with exit code %1.").arg(process_->exitCode()) : said);
  } else {
    process_->disconnect(this);
    process_->setParent(this);
    process_.release()->deleteLater();
    reader_->Ask({request_.serial, Utf8Path(report.output), IsPremultiplied(page_, request_.look),
                  report.seconds});
  }
}

void ExactRender::Fetch() {
  std::optional<ExactFrame> frame;
  {
    const std::lock_guard lock(box_->mutex);
    frame.swap(box_->frame);
  }
  if (frame && isRunning_ && frame->serial == request_.serial) {
    isRunning_ = false;
    emit Answered(*frame);
  }
}

}  // namespace glimmerhost
