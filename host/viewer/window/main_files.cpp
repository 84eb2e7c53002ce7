// SPDX-License-Identifier: BSD-3-Clause
// What MainWindow opens, keeps and remembers.
#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QStringList>
#include <QUrl>
#include <optional>

#include "host/looks/look.h"
#include "host/looks/parameter_file.h"
#include "host/support/utf8_path.h"
#include "host/viewer/jobs/jobs_panel.h"
#include "host/viewer/window/main_window.h"
#include "host/viewer/window/message_bar.h"
#include "host/viewer/window/player.h"

namespace glimmerhost {
namespace {

constexpr const char* kRecentKey = "recent";
constexpr int kMostRecent = 10;

// Of the widgets that can be moved and hidden; another number where these are others.
constexpr int kLayoutVersion = 1;

bool IsLookFile(const QString& name) {
  return name.endsWith(".toml", Qt::CaseInsensitive) || name.endsWith(".json", Qt::CaseInsensitive);
}

QString LookFilter() { return MainWindow::tr("Looks (*.toml *.json)"); }

}  // namespace

void MainWindow::Open(const QString& name) {
  if (IsLookFile(name)) {
    if (MayDropLook()) {
      Try([&] { document_->Load(Utf8Path(name.toStdString())); });
    }
    return;
  }
  // Now, and not when it is open: what is said until then may be of a look that came with it.
  messages_->Clear();
  // What is remembered of it must be found from another folder, too.
  viewing_->Open(QFileInfo(name).absoluteFilePath());
}

void MainWindow::OfferLeftLook() {
  const std::optional<LeftLook> left = keeper_->Left();
  if (!left) {
    return;
  }
  leftLook_->Offer(
      left->input.isEmpty()
          ? tr("A look was left by a window that did not end as it should.")
          : tr("A look for %1 was left by a window that did not end as it should.")
                .arg(left->input),
      tr("&Take it up again"), [this, left] { Try([&] { TakeUpAgain(*left); }); },
      tr("&Discard it"),
      [this, left] {
        LookKeeper::Forget(*left);
        OfferLeftLook();
      });
}

// The file goes when the look is on the disk as this window's own.
void MainWindow::TakeUpAgain(const LeftLook& left) {
  document_->TakeUp(ReadParameterFile(page_, left.look), tr("Take up a look again"));
  connect(
      keeper_, &LookKeeper::Kept, this, [left] { LookKeeper::Forget(left); },
      Qt::SingleShotConnection);
  if (!left.input.isEmpty()) {
    viewing_->Open(left.input);
  }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls() && event->mimeData()->urls().front().isLocalFile()) {
    event->acceptProposedAction();
  }
}

// Of several files the first: those of a sequence are dropped together. Whoever drops waits for the
// answer, and must not wait for a person who is asked about the look.
void MainWindow::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  const QString file = event->mimeData()->urls().front().toLocalFile();
  QMetaObject::invokeMethod(
      this, [this, file] { Open(file); }, Qt::QueuedConnection);
}

void MainWindow::ChoosePicture() {
  const QString file = QFileDialog::getOpenFileName(
      this, tr("Open picture or sequence"),
      viewing_->Clip() ? QString::fromStdString(viewing_->Clip()->Input()) : QString());
  if (!file.isEmpty()) {
    Open(file);
  }
}

void MainWindow::ChooseSecondClip() {
  const QString file = QFileDialog::getOpenFileName(this, tr("Open second clip"));
  if (!file.isEmpty()) {
    document_->SetText(kSpread, file.toStdString(), tr("Open second clip"));
  }
}

// The newest first, each once.
void MainWindow::Remember(const QString& name) {
  QSettings settings;
  QStringList recent = settings.value(kRecentKey).toStringList();
  recent.removeAll(name);
  recent.prepend(name);
  settings.setValue(kRecentKey, QStringList(recent.mid(0, kMostRecent)));
}

void MainWindow::FillRecent() {
  recent_->clear();
  for (const QString& name : QSettings().value(kRecentKey).toStringList()) {
    // An ampersand would be a mnemonic.
    QString text = name;
    QAction* const action = recent_->addAction(text.replace("&", "&&"));
    connect(action, &QAction::triggered, this, [this, name] { Open(name); });
  }
  if (recent_->isEmpty()) {
    recent_->addAction(tr("Nothing yet"))->setEnabled(false);
  }
}

void MainWindow::LoadLook() {
  if (!MayDropLook()) {
    return;
  }
  const QString file = QFileDialog::getOpenFileName(this, tr("Load look"), {}, LookFilter());
  if (!file.isEmpty()) {
    document_->Load(Utf8Path(file.toStdString()));
  }
}

bool MainWindow::SaveLook() {
  if (document_->File().empty()) {
    return SaveLookAs();
  }
  Try([this] { document_->Save(document_->File()); });
  return document_->IsClean();
}

bool MainWindow::SaveLookAs() {
  QString file = QFileDialog::getSaveFileName(this, tr("Save look"), "look.toml", LookFilter());
  if (file.isEmpty()) {
    return false;
  }
  if (QFileInfo(file).suffix().isEmpty()) {
    file += ".toml";
  }
  Try([&] { document_->Save(Utf8Path(file.toStdString())); });
  return document_->IsClean();
}

bool MainWindow::MayDropLook() {
  if (document_->IsClean()) {
    return true;
  }
  QMessageBox box(QMessageBox::Question, tr("Look not saved"),
                  tr("The look has changes that are not saved."),
                  QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
  box.setObjectName("unsavedBox");
  switch (box.exec()) {
    case QMessageBox::Save:
      return SaveLook();
    case QMessageBox::Discard:
      return true;
    default:
      return false;
  }
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (jobs_->IsRunning() &&
      QMessageBox::question(this, tr("Rendering"),
                            tr("Frames are still being rendered to disk. Closing the window stops "
                               "that; what is done stays.")) != QMessageBox::Yes) {
    event->ignore();
    return;
  }
  if (!MayDropLook()) {
    event->ignore();
    return;
  }
  player_->Play(false);
  KeepLayout();
  event->accept();
}

void MainWindow::RestoreLayout() {
  const QSettings settings;
  if (!restoreGeometry(settings.value("window/geometry").toByteArray())) {
    resize(QSize(1440, 900).boundedTo(screen()->availableSize()));
  }
  restoreState(settings.value("window/state").toByteArray(), kLayoutVersion);
}

void MainWindow::KeepLayout() const {
  QSettings settings;
  settings.setValue("window/geometry", saveGeometry());
  settings.setValue("window/state", saveState(kLayoutVersion));
}

}  // namespace glimmerhost
