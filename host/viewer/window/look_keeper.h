// SPDX-License-Identifier: BSD-3-Clause
// LookKeeper: what is being edited, kept on the disk while it is, so that a window that dies takes
// no work along.
//
// Each window keeps a file of its own in one folder, with a lock that the system frees when the
// window's process ends. A file without a live lock is what a dead window left.
#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>
#include <QTimer>
#include <filesystem>
#include <memory>
#include <optional>

#include "host/looks/page.h"
#include "host/support/newest_worker.h"
#include "host/viewer/panels/look_document.h"

namespace glimmerhost {

// What a window left that ended without its person's will.
struct LeftLook {
  std::filesystem::path look;  // a look file
  QString input;               // what was open; empty for nothing
};

class LookKeeper : public QObject {
  Q_OBJECT

 public:
  //   folder  is made where it is not there
  // Both others must outlive it.
  LookKeeper(const Page& page, LookDocument* document, std::filesystem::path folder,
             QObject* parent = nullptr);

  // Writes what still waits, and removes the file: the window ends by its person's will.
  ~LookKeeper() override;

  // What is open, kept with the look.
  void SetInput(const QString& input);

  // The newest look that a dead window left; none for none. It is not found again after Forget.
  std::optional<LeftLook> Left() const;
  static void Forget(const LeftLook& left);

 signals:
  // The look is on the disk as it is now, or has nothing that is not saved.
  void Kept();
  void Failed(const QString& fault);

 private:
  struct Box;
  struct Copy;

  static void Write(const Page& page, const std::filesystem::path& file, const Copy& copy);
  void Keep();
  void Answer();

  const Page& page_;
  LookDocument* document_;
  std::filesystem::path folder_;
  std::filesystem::path file_;
  QString input_;
  std::unique_ptr<QLockFile> lock_;
  QTimer rest_;
  std::shared_ptr<Box> box_;
  std::unique_ptr<NewestWorker<Copy>> writer_;
};

}  // namespace glimmerhost
