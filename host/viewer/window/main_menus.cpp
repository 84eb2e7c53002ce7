// SPDX-License-Identifier: BSD-3-Clause
// The menus of MainWindow, and what their entries do that no part does by itself.
#include <QAction>
#include <QActionGroup>
#include <QDockWidget>
#include <QFileDialog>
#include <QInputDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QSettings>
#include <QWidgetAction>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "host/looks/look.h"
#include "host/module/module_choice.h"
#include "host/support/utf8_path.h"
#include "host/viewer/jobs/jobs_panel.h"
#include "host/viewer/panels/shot_timeline.h"
#include "host/viewer/picture/picture_view.h"
#include "host/viewer/picture/view_bar.h"
#include "host/viewer/window/corner_aperture.h"
#include "host/viewer/window/exact_view.h"
#include "host/viewer/window/main_window.h"
#include "host/viewer/window/message_bar.h"
#include "host/viewer/window/player.h"
#include "host/viewer/window/theme.h"

namespace glimmerhost {
namespace {

constexpr const char* kCacheKey = "cache";
constexpr int kUsualCache = 1024;  // MiB
constexpr int kMostCache = 1 << 20;

int CacheMebibytes() {
  return std::clamp(QSettings().value(kCacheKey, kUsualCache).toInt(), 0, kMostCache);
}

}  // namespace

QAction* MainWindow::Add(QMenu* menu, const char* name, const QString& text,
                         const QKeySequence& keys, const std::function<void()>& act) {
  auto* const action = new QAction(text, this);
  action->setObjectName(name);
  action->setShortcut(keys);
  if (act) {
    connect(action, &QAction::triggered, this, [this, act] { Try(act); });
  }
  menu->addAction(action);
  return action;
}

// One of several in a menu, of which one holds.
QAction* MainWindow::AddChoice(QMenu* menu, const QString& text, bool holds,
                               const std::function<void()>& act) {
  QAction* const action = Add(menu, "", text, {}, act);
  action->setCheckable(true);
  action->setChecked(holds);
  auto* group = menu->findChild<QActionGroup*>();
  if (group == nullptr) {
    group = new QActionGroup(menu);
  }
  group->addAction(action);
  return action;
}

void MainWindow::MakeFileMenu() {
  QMenu* const file = menuBar()->addMenu(tr("&File"));
  Add(file, "openAction", tr("&Open picture or sequence…"), QKeySequence::Open,
      [this] { ChoosePicture(); });
  recent_ = file->addMenu(tr("Open &recent"));
  recent_->setObjectName("recentMenu");
  connect(recent_, &QMenu::aboutToShow, this, &MainWindow::FillRecent);
  Add(file, "openSecondAction", tr("Open s&econd clip…"), QKeySequence("Ctrl+Shift+O"),
      [this] { ChooseSecondClip(); });
  file->addSeparator();
  Add(file, "loadLookAction", tr("&Load look…"), QKeySequence("Ctrl+L"), [this] { LoadLook(); });
  Add(file, "saveLookAction", tr("&Save look"), QKeySequence::Save, [this] { SaveLook(); });
  Add(file, "saveLookAsAction", tr("Save look &as…"), QKeySequence("Ctrl+Shift+S"),
      [this] { SaveLookAs(); });
  Add(file, "copyCommandAction", tr("&Copy command line"), QKeySequence("Ctrl+Shift+C"),
      [this] { CopyCommand(); });
  file->addSeparator();
  Add(file, "renderAction", tr("Re&nder to disk…"), QKeySequence("Ctrl+R"), [this] {
    auto* const dock = findChild<QDockWidget*>("jobsDock");
    dock->show();
    dock->raise();
    jobs_->setFocus();
  });
  file->addSeparator();
  Add(file, "quitAction", tr("&Quit"), QKeySequence::Quit, [this] { close(); });
}

void MainWindow::MakeEditMenu() {
  QMenu* const edit = menuBar()->addMenu(tr("&Edit"));
  QAction* const undo = document_->UndoStack()->createUndoAction(this, tr("&Undo"));
  undo->setObjectName("undoAction");
  undo->setShortcut(QKeySequence::Undo);
  edit->addAction(undo);
  QAction* const redo = document_->UndoStack()->createRedoAction(this, tr("&Redo"));
  redo->setObjectName("redoAction");
  redo->setShortcut(QKeySequence::Redo);
  edit->addAction(redo);
  edit->addSeparator();
  Add(edit, "resetAction", tr("Reset &look"), QKeySequence("Ctrl+Backspace"),
      [this] { document_->ResetAll(); });
}

void MainWindow::MakeViewMenu() {
  QMenu* const view = menuBar()->addMenu(tr("&View"));
  for (QAction* action : viewBar_->actions()) {
    // A field of the bar would be an empty place in a menu.
    if (qobject_cast<QWidgetAction*>(action) == nullptr) {
      view->addAction(action);
    }
  }
  view->addSeparator();
  QAction* const aperture =
      Add(view, "apertureAction", tr("&Aperture in the corner"), QKeySequence("P"), {});
  aperture->setCheckable(true);
  aperture->setChecked(true);
  connect(aperture, &QAction::toggled, aperture_, &CornerAperture::SetShown);
  Add(view, "coloursAction", tr("&Colour configuration…"), {}, [this] { ChooseColours(); });
  QAction* const second = Add(view, "secondClipAction", tr("&Second clip"), QKeySequence("S"), {});
  second->setCheckable(true);
  connect(second, &QAction::toggled, this, &MainWindow::ShowSecondClip);
  MakeEngineMenu(view);
  MakeThemeMenu(view);
  view->addSeparator();
  for (const char* dock : {"lookDock", "presetsDock", "jobsDock", "timelineDock"}) {
    view->addAction(findChild<QDockWidget*>(dock)->toggleViewAction());
  }
}

// In the place of the frame, so that the crosshair can be dragged on what it cuts from.
void MainWindow::ShowSecondClip(bool shown) {
  showsSecond_ = shown;
  if (shown && (!viewing_->Loaded() || !viewing_->Loaded()->spread)) {
    Tell(tr("There is no second clip: the shape image cuts the aperture out of the frame itself."));
  }
  ShowFrames();
}

void MainWindow::MakeEngineMenu(QMenu* view) {
  QMenu* const menu = view->addMenu(tr("&Engine"));
  menu->setObjectName("engineMenu");
  for (const std::string& name : EngineList()) {
    const bool isOwn = name == kDefaultEngine;
    AddChoice(menu, QString::fromStdString(name), isOwn, [this, name, isOwn] {
      exact_->SetEngine(isOwn ? "" : name);
    })->setObjectName(QString::fromStdString(name) + "Action");
  }
}

void MainWindow::MakeThemeMenu(QMenu* view) {
  QMenu* const menu = view->addMenu(tr("&Theme"));
  const int chosen = QSettings().value("theme", static_cast<int>(Theme::kDark)).toInt();
  for (const auto& [theme, text] : {std::pair{Theme::kDark, tr("&Dark")},
                                    {Theme::kLight, tr("&Light")},
                                    {Theme::kDesktop, tr("Like the des&ktop")}}) {
    AddChoice(menu, text, static_cast<int>(theme) == chosen, [theme = theme] {
      UseTheme(theme);
      QSettings().setValue("theme", static_cast<int>(theme));
    });
  }
  UseTheme(static_cast<Theme>(chosen));
}

void MainWindow::MakeShotMenu() {
  QMenu* const shot = menuBar()->addMenu(tr("&Shot"));
  Add(shot, "playAction", tr("&Play or stop"), QKeySequence("K"),
      [this] { timeline_->TogglePlay(); });
  Add(shot, "previousAction", tr("P&revious frame"), QKeySequence(","), [this] { Step(-1); });
  Add(shot, "nextAction", tr("&Next frame"), QKeySequence("."), [this] { Step(1); });
  Add(shot, "firstAction", tr("&First frame"), QKeySequence("Ctrl+,"),
      [this] { timeline_->GoToFirst(); });
  Add(shot, "lastAction", tr("&Last frame"), QKeySequence("Ctrl+."),
      [this] { timeline_->GoToLast(); });
  shot->addSeparator();
  Add(shot, "keyBeforeAction", tr("Keyframe &before"), QKeySequence("["),
      [this] { timeline_->GoToKeyframeBefore(); });
  Add(shot, "keyAfterAction", tr("Keyframe &after"), QKeySequence("]"),
      [this] { timeline_->GoToKeyframeAfter(); });
  shot->addSeparator();
  Add(shot, "lengthAction", tr("&Length of a still…"), {}, [this] { ChooseLength(); });
  Add(shot, "cacheAction", tr("&Memory for frames…"), {}, [this] { ChooseCache(); });
  QMenu* const rates = shot->addMenu(tr("Frames a &second"));
  for (const double rate : {12.0, 23.976, 24.0, 25.0, 29.97, 30.0, 50.0, 60.0}) {
    AddChoice(rates, QString::number(rate), rate == player_->Rate(),
              [this, rate] { player_->SetRate(rate); });
  }
}

// A still becomes a shot by the look, which says so to the command line, too.
void MainWindow::ChooseLength() {
  if (!viewing_->Clip() || viewing_->Clip()->IsSequence()) {
    Tell(tr("A sequence has the frames of its files. A picture can be made a shot of any length."));
    return;
  }
  constexpr int kTwoSeconds = 48;
  const int now = static_cast<int>(viewing_->Frames().size());
  bool isGiven = false;
  const int frames = QInputDialog::getInt(this, tr("Length of a still"),
                                          tr("Frames of the shot that the picture is shown in:"),
                                          now > 1 ? now : kTwoSeconds, 1, 100000, 1, &isGiven);
  if (isGiven) {
    document_->SetText(kShot, frames > 1 ? "1-" + std::to_string(frames) : "",
                       tr("Length of the shot"));
  }
}

// A configuration of OpenColorIO; what cannot be had of it is told over the picture.
void MainWindow::ChooseColours() {
  const QString file = QFileDialog::getOpenFileName(
      this, tr("Colour configuration"), {}, tr("OpenColorIO configurations (*.ocio *.ocioz)"));
  if (!file.isEmpty()) {
    ScreenChoice choice;
    choice.config = Utf8Path(file.toStdString());
    viewBar_->UseColours(choice);
  }
}

void MainWindow::ChooseCache() {
  bool isGiven = false;
  const int mebibytes = QInputDialog::getInt(
      this, tr("Memory for frames"), tr("Frames that were read are kept, up to so many MiB:"),
      CacheMebibytes(), 0, kMostCache, 64, &isGiven);
  if (isGiven) {
    QSettings().setValue(kCacheKey, mebibytes);
    UseCache();
  }
}

void MainWindow::UseCache() {
  constexpr std::uint64_t kMebibyte = 1024 * 1024;
  viewing_->SetCacheLimit(static_cast<std::uint64_t>(CacheMebibytes()) * kMebibyte);
}

// Frames that the clip lacks are passed over.
void MainWindow::Step(int by) {
  const std::vector<int>& frames = viewing_->Frames();
  if (frames.empty()) {
    return;
  }
  player_->Play(false);
  const auto at = std::lower_bound(frames.begin(), frames.end(), viewing_->Frame());
  const auto place = std::clamp<std::ptrdiff_t>(at - frames.begin() + by, 0,
                                                static_cast<std::ptrdiff_t>(frames.size()) - 1);
  viewing_->SetFrame(frames[static_cast<std::size_t>(place)]);
}

void MainWindow::MakeHelpMenu() {
  QMenu* const help = menuBar()->addMenu(tr("&Help"));
  Add(help, "keysAction", tr("&Keys and mouse"), QKeySequence::HelpContents,
      [this] { ShowKeys(); });
  Add(help, "aboutAction", tr("&About GlimmerBlur"), {}, [this] { ShowAbout(); });
}
void MainWindow::CopyCommand() {
  jobs_->CopyCommandLine();
  loading_->setText(tr("The command line is in the clipboard."));
}

void MainWindow::ShowAbout() {
  const QString engine = QString::fromUtf8(module_->Engine().name.data(),
                                           static_cast<qsizetype>(module_->Engine().name.size()));
  QMessageBox::about(
      this, tr("About GlimmerBlur"),
      tr("<h3>GlimmerBlur %1</h3><p>A lens defocus for moving pictures.</p>"
         "<p>Shown by the engine %2.</p>"
         "<p>Our own sources are under the BSD-3-Clause licence. The engine exact links FFTW, "
         "which is under the GPL. This window uses Qt %3 under the LGPL, version 3.</p>")
          .arg(GLIMMERVIEW_VERSION, engine, qVersion()));
}

void MainWindow::ShowKeys() {
  QString rows;
  for (const QAction* action : findChildren<QAction*>()) {
    if (!action->shortcut().isEmpty()) {
      QString text = action->text();
      rows += QString("<tr><td>%1&nbsp;&nbsp;</td><td>%2</td></tr>")
                  .arg(action->shortcut().toString(QKeySequence::NativeText).toHtmlEscaped(),
                       text.remove('&').remove("…").toHtmlEscaped());
    }
  }
  QMessageBox box(QMessageBox::NoIcon, tr("Keys and mouse"),
                  tr("<p>The wheel zooms at the cursor; the middle button, or Space and the left "
                     "one, moves the picture. Handles on the picture are dragged with the left "
                     "button.</p><table>%1</table>")
                      .arg(rows),
                  QMessageBox::Close, this);
  box.exec();
}

}  // namespace glimmerhost
