// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/look_keeper.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <chrono>
#include <exception>
#include <mutex>
#include <string>
#include <system_error>
#include <utility>

#include "host/looks/parameter_file.h"
#include "host/support/utf8_path.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// Long enough that a drag writes once, and short enough that little is lost.
constexpr std::chrono::milliseconds kRest{400};

QString Name(const fs::path& path) { return QString::fromStdU16String(path.u16string()); }

// Beside the look: what was open. A look has no place for it.
fs::path InputFile(fs::path look) { return look.replace_extension(".input"); }
fs::path LockOf(fs::path look) { return look.replace_extension(".lock"); }

// A lock that is never taken for old: a window may be open for weeks.
std::unique_ptr<QLockFile> MakeLock(const fs::path& look) {
  auto lock = std::make_unique<QLockFile>(Name(LockOf(look)));
  lock->setStaleLockTime(0);
  return lock;
}

void Remove(const fs::path& look) {
  std::error_code ignored;
  fs::remove(look, ignored);
  fs::remove(InputFile(look), ignored);
}

}  // namespace

struct LookKeeper::Copy {
  std::optional<Look> look;  // none where nothing would be lost
  std::string input;
};

// Throws what writing files does.
void LookKeeper::Write(const Page& page, const fs::path& file, const Copy& copy) {
  if (!copy.look) {
    Remove(file);
    return;
  }
  SaveParameters(page, file, *copy.look, true);
  QFile input(Name(InputFile(file)));
  if (input.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    input.write(copy.input.data(), static_cast<qint64>(copy.input.size()));
  }
}

struct LookKeeper::Box {
  std::mutex mutex;
  std::string fault;
};

LookKeeper::LookKeeper(const Page& page, LookDocument* document, fs::path folder, QObject* parent)
    : QObject(parent),
      page_(page),
      document_(document),
      folder_(std::move(folder)),
      box_(std::make_shared<Box>()) {
  std::error_code ignored;
  fs::create_directories(folder_, ignored);
  // Two windows of one process have files of their own, too.
  for (int number = 1; !lock_; ++number) {
    file_ = folder_ / ("look-" + std::to_string(QCoreApplication::applicationPid()) + "-" +
                       std::to_string(number) + ".toml");
    std::unique_ptr<QLockFile> lock = MakeLock(file_);
    constexpr int kEnough = 64;
    if (lock->tryLock(0) || number == kEnough) {
      lock_ = std::move(lock);
    }
  }
  auto* const bell = new Doorbell(this);
  connect(bell, &Doorbell::Rung, this, &LookKeeper::Answer);
  writer_ = std::make_unique<NewestWorker<Copy>>(
      [box = box_, ring = bell->Ringer(), file = file_, &page](const Copy& copy) {
        std::string fault;
        try {
          Write(page, file, copy);
        } catch (const std::exception& wrong) {
          fault = wrong.what();
        }
        {
          const std::lock_guard lock(box->mutex);
          box->fault = fault;
        }
        ring();
      });
  rest_.setSingleShot(true);
  rest_.setInterval(kRest);
  connect(&rest_, &QTimer::timeout, this, &LookKeeper::Keep);
  connect(document_, &LookDocument::Changed, this, [this] { rest_.start(); });
  connect(document_->UndoStack(), &QUndoStack::cleanChanged, this, [this] { rest_.start(); });
}

LookKeeper::~LookKeeper() {
  writer_.reset();
  Remove(file_);
}

void LookKeeper::SetInput(const QString& input) {
  input_ = input;
  if (!document_->IsClean()) {
    rest_.start();
  }
}

// A look that nobody has changed since it was saved is offered by nobody: it would stand before one
// that holds work.
void LookKeeper::Keep() {
  writer_->Ask({document_->IsClean() ? std::nullopt : std::optional(document_->CurrentLook()),
                input_.toStdString()});
}

void LookKeeper::Answer() {
  std::string fault;
  {
    const std::lock_guard lock(box_->mutex);
    fault = box_->fault;
  }
  if (fault.empty()) {
    emit Kept();
  } else {
    emit Failed(QString::fromStdString(fault));
  }
}

std::optional<LeftLook> LookKeeper::Left() const {
  const QDir folder(Name(folder_));
  for (const QFileInfo& found : folder.entryInfoList({"look-*.toml"}, QDir::Files, QDir::Time)) {
    const fs::path look = found.filesystemAbsoluteFilePath();
    if (look.filename() == file_.filename() || !MakeLock(look)->tryLock(0)) {
      continue;
    }
    QFile input(Name(InputFile(look)));
    const bool isThere = input.open(QIODevice::ReadOnly);
    return LeftLook{look, isThere ? QString::fromUtf8(input.readAll()) : QString()};
  }
  return std::nullopt;
}

void LookKeeper::Forget(const LeftLook& left) { Remove(left.look); }

}  // namespace glimmerhost
