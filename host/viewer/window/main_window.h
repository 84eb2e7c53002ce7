// SPDX-License-Identifier: BSD-3-Clause
// MainWindow: glimmerview's window. It puts the parts together; what each does stands in its
// header.
//
//   +----------------------------+-------------+
//   | ViewBar                    | Look        |
//   | messages                   |   PagePanel |
//   | PictureView                | Presets     |
//   | ValueBar                   | Render      |
//   +----------------------------+             |
//   | Timeline                   |             |
//   +----------------------------+-------------+
#pragma once

#include <QMainWindow>
#include <QString>
#include <filesystem>
#include <memory>
#include <string>

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/viewer/jobs/job_input.h"
#include "host/viewer/panels/look_document.h"
#include "host/viewer/window/look_keeper.h"
#include "host/viewer/window/viewing.h"

class QAction;
class QLabel;
class QMenu;

namespace glimmerhost {

class CornerAperture;
class ExactView;
class JobsPanel;
class MessageBar;
class PagePanel;
class PictureView;
class Player;
class PresetPictures;
class PresetsPanel;
class ShotTimeline;
class ValueBar;
class ViewBar;

// Where the window finds what is not its own.
struct WindowPlaces {
  std::filesystem::path program;  // glimmerhost, which renders to disk
  std::filesystem::path state;    // a folder for looks that are being edited
};

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  //   page  must outlive it
  MainWindow(const Page& page, std::shared_ptr<const EffectModule> module,
             const WindowPlaces& places, QWidget* parent = nullptr);
  ~MainWindow() override;

  // Opens a picture or a sequence, or loads a look: by the ending of the name.
  void Open(const QString& name);

  // Offers what a window left that died.
  void OfferLeftLook();

  // Renders that were given up and go on: the process must end without waiting for them.
  bool HasHangingRenders() const { return viewing_->Hanging() > 0; }

  // For tests and for whoever looks at the whole.
  LookDocument* Document() { return document_; }
  Viewing* Shown() { return viewing_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MakeParts(const WindowPlaces& places);
  void MakeDocks();
  void ConnectParts();
  void MakeFileMenu();
  void MakeEditMenu();
  void MakeViewMenu();
  void MakeShotMenu();
  void MakeHelpMenu();
  void MakeEngineMenu(QMenu* view);
  void MakeThemeMenu(QMenu* view);
  QAction* Add(QMenu* menu, const char* name, const QString& text, const QKeySequence& keys,
               const std::function<void()>& act);

  QAction* AddChoice(QMenu* menu, const QString& text, bool holds,
                     const std::function<void()>& act);

  void ShowFrames();
  std::shared_ptr<const Picture> SecondClip();
  void ShowSecondClip(bool shown);
  void ShowState();
  void AskForPresetPictures();
  void ShowTitle();
  JobInput Job() const;
  void TakeUpAgain(const LeftLook& left);
  void Tell(const QString& line);
  void Try(const std::function<void()>& act);

  void ChoosePicture();
  void ChooseSecondClip();
  void LoadLook();
  bool SaveLook();
  bool SaveLookAs();
  bool MayDropLook();
  void CopyCommand();
  void Step(int by);
  void ChooseLength();
  void ChooseColours();
  void ChooseCache();
  void UseCache();
  void ShowAbout();
  void ShowKeys();

  void Remember(const QString& name);
  void FillRecent();
  void RestoreLayout();
  void KeepLayout() const;

  const Page& page_;
  std::shared_ptr<const EffectModule> module_;
  LookDocument* document_;
  Viewing* viewing_;
  Player* player_;
  LookKeeper* keeper_;
  MessageBar* messages_;
  MessageBar* leftLook_;  // of its own: no message of a file that is opened may take it away
  PictureView* picture_;
  ViewBar* viewBar_;
  ValueBar* values_;
  PagePanel* pagePanel_;
  PresetsPanel* presets_;
  PresetPictures* presetPictures_;
  ShotTimeline* timeline_;
  JobsPanel* jobs_;
  ExactView* exact_;
  CornerAperture* aperture_;
  QLabel* loading_;
  QLabel* engine_;
  QMenu* recent_ = nullptr;
  bool showsSecond_ = false;
  std::shared_ptr<const Picture> second_;
  quantel::cPtr<FrameImage> secondOf_;  // what the picture of the second clip was made of
  std::shared_ptr<const ViewedClip> picturedClip_;  // that presets are shown on
};

}  // namespace glimmerhost
