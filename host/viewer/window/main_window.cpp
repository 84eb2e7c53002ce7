// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/main_window.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <exception>
#include <initializer_list>
#include <utility>

#include "host/support/utf8_path.h"
#include "host/viewer/jobs/jobs_panel.h"
#include "host/viewer/panels/page_panel.h"
#include "host/viewer/panels/presets_panel.h"
#include "host/viewer/panels/shot_timeline.h"
#include "host/viewer/picture/picture_view.h"
#include "host/viewer/picture/value_bar.h"
#include "host/viewer/picture/view_bar.h"
#include "host/viewer/window/corner_aperture.h"
#include "host/viewer/window/exact_view.h"
#include "host/viewer/window/live_page.h"
#include "host/viewer/window/message_bar.h"
#include "host/viewer/window/player.h"
#include "host/viewer/window/preset_pictures.h"

namespace glimmerhost {
namespace {

QDockWidget* MakeDock(QMainWindow* window, Qt::DockWidgetArea area, const char* name,
                      const QString& title, QWidget* content) {
  auto* const dock = new QDockWidget(title, window);
  dock->setObjectName(name);
  dock->setWidget(content);
  window->addDockWidget(area, dock);
  return dock;
}

}  // namespace

MainWindow::MainWindow(const Page& page, std::shared_ptr<const EffectModule> module,
                       const WindowPlaces& places, QWidget* parent)
    : QMainWindow(parent), page_(page), module_(std::move(module)) {
  setObjectName("glimmerview");
  setAcceptDrops(true);
  MakeParts(places);
  MakeDocks();
  MakeFileMenu();
  MakeEditMenu();
  MakeViewMenu();
  MakeShotMenu();
  MakeHelpMenu();
  ConnectParts();
  UseCache();
  // The configuration that programs of this kind share.
  if (const QString colours = qEnvironmentVariable("OCIO"); !colours.isEmpty()) {
    ScreenChoice choice;
    choice.config = Utf8Path(colours.toStdString());
    viewBar_->UseColours(choice);
  }
  RestoreLayout();
  ShowTitle();
  ShowState();
  picture_->setFocus();
  QApplication::instance()->installEventFilter(this);
}

// Parts tell of what they do also while they end, and some look at others: nobody listens any more
// then, and those that look at others end first.
MainWindow::~MainWindow() {
  QApplication::instance()->removeEventFilter(this);
  document_->UndoStack()->disconnect(this);
  for (QObject* part : findChildren<QObject*>()) {
    part->disconnect(this);
  }
  for (QObject* part : std::initializer_list<QObject*>{
           jobs_, timeline_, presets_, pagePanel_, aperture_, values_, viewBar_, presetPictures_,
           exact_, keeper_, player_, viewing_}) {
    delete part;
  }
}

void MainWindow::MakeParts(const WindowPlaces& places) {
  document_ = new LookDocument(page_, this);
  viewing_ = new Viewing(page_, module_, document_, this);
  player_ = new Player(viewing_, this);
  keeper_ = new LookKeeper(page_, document_, places.state, this);
  exact_ = new ExactView(page_, viewing_, document_, places.program, this);
  auto* const middle = new QWidget(this);
  messages_ = new MessageBar("messageBar", middle);
  leftLook_ = new MessageBar("leftLookBar", middle);
  picture_ = new PictureView(middle);
  picture_->SetHint(tr("Drop a picture here, or press %1 to open one.")
                        .arg(QKeySequence(QKeySequence::Open).toString(QKeySequence::NativeText)));
  viewBar_ = new ViewBar(picture_, middle);
  values_ = new ValueBar(picture_, middle);
  aperture_ = new CornerAperture(module_, viewing_, document_, picture_);
  auto* const column = new QVBoxLayout(middle);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(viewBar_);
  column->addWidget(leftLook_);
  column->addWidget(messages_);
  column->addWidget(picture_, 1);
  column->addWidget(values_);
  setCentralWidget(middle);
  loading_ = new QLabel(this);
  loading_->setObjectName("loading");
  statusBar()->addWidget(loading_, 1);
  engine_ = new QLabel(this);
  engine_->setObjectName("engineMark");
  statusBar()->addPermanentWidget(engine_);
  pagePanel_ = new PagePanel(page_, document_, this);
  presets_ = new PresetsPanel(document_, this);
  presetPictures_ = new PresetPictures(page_, module_, this);
  timeline_ = new ShotTimeline(document_, this);
  jobs_ = new JobsPanel(
      page_, [this] { return Job(); }, places.program, this);
}

void MainWindow::MakeDocks() {
  setDockOptions(AnimatedDocks | AllowTabbedDocks | AllowNestedDocks);
  setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  QDockWidget* const look =
      MakeDock(this, Qt::RightDockWidgetArea, "lookDock", tr("Look"), pagePanel_);
  QDockWidget* const presets =
      MakeDock(this, Qt::RightDockWidgetArea, "presetsDock", tr("Presets"), presets_);
  QDockWidget* const jobs =
      MakeDock(this, Qt::RightDockWidgetArea, "jobsDock", tr("Render"), jobs_);
  tabifyDockWidget(look, presets);
  tabifyDockWidget(presets, jobs);
  setTabPosition(Qt::RightDockWidgetArea, QTabWidget::North);
  look->raise();
  MakeDock(this, Qt::BottomDockWidgetArea, "timelineDock", tr("Timeline"), timeline_);
}

void MainWindow::ConnectParts() {
  LivePage* const live = viewing_->PageOfModule();
  connect(picture_, &PictureView::Pressed, live, &LivePage::Press);
  connect(picture_, &PictureView::Moved, live, &LivePage::Move);
  connect(picture_, &PictureView::Released, live, &LivePage::Release);
  connect(picture_, &PictureView::ScreenSizeChanged, live, &LivePage::SetScreenSize);
  connect(pagePanel_, &PagePanel::WidgetPressed, live, &LivePage::PressWidget);
  connect(live, &LivePage::Updated, this, [this, live] {
    picture_->ShowStrokes(live->Effect()->Strokes());
    pagePanel_->ShowRows(live->Rows(), live->Effect()->Values());
  });

  connect(viewing_, &Viewing::Opened, this, [this] {
    const QString input = QString::fromStdString(viewing_->Clip()->Input());
    keeper_->SetInput(input);
    Remember(input);
    ShowTitle();
  });
  connect(viewing_, &Viewing::FramesChanged, this, [this] {
    timeline_->SetShot(viewing_->Frames(), !viewing_->Clip()->IsSequence());
    jobs_->InputChanged();
  });
  connect(timeline_, &ShotTimeline::LengthWanted, this,
          [this] { Try([this] { ChooseLength(); }); });
  connect(viewing_, &Viewing::BelongsTo, this, [this](const QString& sequence) {
    messages_->Offer(tr("This picture is a frame of %1.").arg(sequence), tr("&Open the sequence"),
                     [this, sequence] { Open(sequence); });
  });
  connect(viewing_, &Viewing::FrameChanged, timeline_, &ShotTimeline::SetFrame);
  connect(viewing_, &Viewing::FrameChanged, pagePanel_, &PagePanel::SetFrame);
  connect(viewing_, &Viewing::Loading, loading_, &QLabel::setText);
  connect(viewing_, &Viewing::Shown, this, &MainWindow::ShowFrames);
  connect(viewing_, &Viewing::StateChanged, this, &MainWindow::ShowState);
  connect(viewing_, &Viewing::Told, this, &MainWindow::Tell);
  connect(viewing_, &Viewing::Hangs, this, [this] {
    messages_->Offer(tr("The render of this frame does not come to an end. Your look is safe."),
                     tr("&Give it up"), [this] { viewing_->GiveUp(); });
  });
  connect(exact_, &ExactView::Changed, this, &MainWindow::ShowFrames);
  connect(exact_, &ExactView::Changed, this, &MainWindow::ShowState);
  connect(exact_, &ExactView::Told, this, &MainWindow::Tell);
  connect(keeper_, &LookKeeper::Failed, this, &MainWindow::Tell);

  connect(presets_, &PresetsPanel::Refused, this, &MainWindow::Tell);
  connect(presetPictures_, &PresetPictures::Made, this,
          [this](const std::string& name, const QImage& picture) {
            presets_->ShowPicture(name, picture);
          });
  connect(viewing_, &Viewing::Shown, this, &MainWindow::AskForPresetPictures);
  connect(timeline_, &ShotTimeline::FrameChosen, this, [this](int frame) {
    player_->Play(false);
    viewing_->SetFrame(frame);
  });
  connect(timeline_, &ShotTimeline::PlayToggled, player_, &Player::Play);
  connect(player_, &Player::Toggled, timeline_, &ShotTimeline::SetPlaying);
  connect(player_, &Player::DroppedChanged, timeline_, &ShotTimeline::ShowDropped);
  connect(timeline_, &ShotTimeline::Refused, this, &MainWindow::Tell);
  connect(pagePanel_, &PagePanel::UnitChanged, this,
          [this] { timeline_->SetUnit(pagePanel_->Unit()); });
  connect(viewBar_, &ViewBar::ColoursFailed, this, &MainWindow::Tell);
  connect(viewing_, &Viewing::Opened, jobs_, &JobsPanel::InputChanged);
  connect(document_, &LookDocument::Changed, jobs_, &JobsPanel::InputChanged);
  connect(viewing_, &Viewing::FrameChanged, jobs_, &JobsPanel::SetFrame);
  connect(jobs_, &JobsPanel::FrameChosen, viewing_, &Viewing::SetFrame);
  connect(document_, &LookDocument::Changed, this, [this] {
    // What does not go with the picture counts as not set, and nobody may think otherwise.
    if (const QString fault = document_->Fault(); !fault.isEmpty()) {
      Tell(fault);
    }
  });
  connect(document_, &LookDocument::FileChanged, this, &MainWindow::ShowTitle);
  connect(document_->UndoStack(), &QUndoStack::cleanChanged, this, &MainWindow::ShowTitle);
}

void MainWindow::ShowFrames() {
  const std::shared_ptr<const LoadedFrame>& loaded = viewing_->Loaded();
  if (!loaded) {
    picture_->SetHint(tr("There is no picture of this frame."));
    picture_->ShowFrames(nullptr, nullptr, false);
    return;
  }
  if (showsSecond_ && loaded->spread) {
    picture_->ShowFrames(SecondClip(), nullptr, false);
    return;
  }
  // A result of a frame before is better than none while the next is in work.
  const bool isExact = exact_->Result() != nullptr;
  picture_->ShowFrames(loaded->picture, isExact ? exact_->Result() : viewing_->Result(),
                       !isExact && viewing_->Rendered().isProxy);
}

// The second clip as a picture, made once for each.
std::shared_ptr<const Picture> MainWindow::SecondClip() {
  const quantel::cPtr<FrameImage>& spread = viewing_->Loaded()->spread;
  if (secondOf_.Object() != spread.Object()) {
    auto picture = std::make_shared<Picture>();
    const auto [width, height] = spread->size();
    picture->width = width;
    picture->height = height;
    spread->CopyTo(picture.get());
    second_ = std::move(picture);
    secondOf_ = spread;
  }
  return second_;
}

// Once for each clip, by the first frame of it whose true picture is there: no hand waits then.
void MainWindow::AskForPresetPictures() {
  if (picturedClip_ == viewing_->Clip() || viewing_->State() != ShownState::kTrueFrame) {
    return;
  }
  picturedClip_ = viewing_->Clip();
  std::vector<PresetPictures::Preset> presets;
  presets_->AskForPictures([&](const std::string& name, const Look& look) {
    presets.push_back({name, look});
  });
  presetPictures_->Ask(viewing_->Loaded(), viewing_->Clip()->Span(), std::move(presets),
                       PresetsPanel::PictureSize() * devicePixelRatioF());
}

void MainWindow::ShowState() {
  const FrameMark mark = [this] {
    switch (viewing_->State()) {
      case ShownState::kNothing:
        return FrameMark::kNone;
      case ShownState::kWorking:
        return FrameMark::kRendering;
      case ShownState::kProxy:
        return FrameMark::kProxy;
      case ShownState::kTrueFrame:
        break;
    }
    return exact_->IsRunning() ? FrameMark::kRendering : FrameMark::kTrueFrame;
  }();
  values_->SetMark(mark);
  const QString engine = QString::fromStdString(exact_->Engine());
  engine_->setText(exact_->IsRunning() ? tr("The engine %1 works on the frame…").arg(engine)
                   : exact_->Result()  ? tr("Rendered by the engine %1").arg(engine)
                                       : QString());
}

JobInput MainWindow::Job() const {
  if (!viewing_->Clip()) {
    return {};
  }
  const ViewedClip& clip = *viewing_->Clip();
  return {clip.Input(), document_->Span(), viewing_->Frames(), document_->CurrentLook()};
}

// [*] is where Qt shows that something is not saved.
void MainWindow::ShowTitle() {
  const QString clip =
      viewing_->Clip() ? QString::fromStdString(viewing_->Clip()->Title()) : QString();
  const QString look = QString::fromStdU16String(document_->File().filename().u16string());
  QString title = clip;
  if (!look.isEmpty()) {
    title += (title.isEmpty() ? "" : " – ") + look;
  }
  setWindowTitle((title.isEmpty() ? tr("GlimmerBlur") : title + tr(" – GlimmerBlur")) + "[*]");
  setWindowModified(!document_->IsClean());
}

void MainWindow::Tell(const QString& line) { messages_->Tell(line); }

void MainWindow::Try(const std::function<void()>& act) {
  try {
    act();
  } catch (const std::exception& fault) {
    Tell(QString::fromUtf8(fault.what()));
  }
}

// A letter that is typed at a list goes to the entry that begins with it, and is no key of the
// view.
bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    const bool isList = qobject_cast<QComboBox*>(watched) != nullptr ||
                        qobject_cast<QAbstractItemView*>(watched) != nullptr;
    const bool isLetter =
        (key.modifiers() & ~Qt::ShiftModifier) == Qt::NoModifier && !key.text().trimmed().isEmpty();
    if (isList && isLetter) {
      event->accept();
      return true;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

}  // namespace glimmerhost
