// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/main_window.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QUrl>
#include <fstream>
#include <string>
#include <vector>

#include "host/looks/keyframed_values.h"
#include "host/looks/keys.h"
#include "host/module/frame_renderer.h"
#include "host/viewer/jobs/jobs_panel.h"
#include "host/viewer/window/exact_view.h"
#include "host/viewer/window/message_bar.h"
#include "tests/host/viewer/window/window_stage.h"
#include "tests/support/child_program.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using viewer_test::Ramp;
using viewer_test::WaitUntil;
using viewer_test::Write;

class Window : public testing::Test, public viewer_test::WindowStage {
 public:
  std::string WritePicture(const std::string& name, int frame = 1) {
    Write(scratch / name, Ramp(160, 90, frame));
    return (scratch / name).string();
  }

  QString Message() { return window->findChild<MessageBar*>("messageBar")->Text(); }

  MessageBar* LeftLookBar() { return window->findChild<MessageBar*>("leftLookBar"); }

  // As a window leaves it that is killed.
  void LeaveLook(const std::string& name, const std::string& sides, const std::string& input) {
    std::ofstream(scratch / "state" / (name + ".toml")) << "version = 1\nsides = " << sides << "\n";
    std::ofstream(scratch / "state" / (name + ".input")) << input;
  }

  QAction* Action(const char* name) { return window->findChild<QAction*>(name); }

  bool WaitForMessage(const QString& part) {
    return WaitUntil(viewing, &Viewing::StateChanged, [&] { return Message().contains(part); });
  }

  double Number(const char* key, int frame = 1) {
    return std::get<double>(document->ValuesAt(frame).at(key));
  }
};

TEST_F(Window, OpensAFileThatIsDroppedAndOffersItsSequence) {
  WritePicture("shot.0001.png", 1);
  const std::string dropped = WritePicture("shot.0002.png", 2);
  WritePicture("shot.0003.png", 3);
  QMimeData files;
  files.setUrls({QUrl::fromLocalFile(QString::fromStdString(dropped))});
  QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window.get(), &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
  QCoreApplication::sendEvent(window.get(), &drop);
  ASSERT_TRUE(WaitForMessage("shot.####.png"));
  ASSERT_TRUE(Settle());
  EXPECT_EQ(viewing->Frames(), std::vector<int>{1});

  QSignalSpy opened(viewing, &Viewing::Opened);
  QTest::mouseClick(window->findChild<QPushButton*>("messageButton"), Qt::LeftButton);
  ASSERT_TRUE(opened.wait());
  EXPECT_EQ(viewing->Frames(), (std::vector<int>{1, 2, 3}));
}

TEST_F(Window, SaysWhatIsWrongWithABrokenPictureAndLives) {
  std::ofstream(scratch / "broken.png") << "no picture";
  window->Open(QString::fromStdString((scratch / "broken.png").string()));
  ASSERT_TRUE(WaitForMessage("broken.png"));
  EXPECT_TRUE(Open(WritePicture("whole.png")));
  EXPECT_EQ(Message(), "");
}

TEST_F(Window, ShowsNoPictureInThePlaceOfABrokenOne) {
  WritePicture("shot.0001.png", 1);
  std::ofstream(scratch / "shot.0002.png") << "no picture";
  ASSERT_TRUE(Open((scratch / "shot.####.png").string()));
  ASSERT_NE(view->Before(), nullptr);
  viewing->SetFrame(2);
  ASSERT_TRUE(WaitForMessage("shot.0002.png"));
  ASSERT_TRUE(WaitUntil(viewing, &Viewing::StateChanged, [this] { return viewing->IsSettled(); }));
  EXPECT_EQ(view->Before(), nullptr);
  EXPECT_EQ(viewing->State(), ShownState::kNothing);

  viewing->SetFrame(1);
  ASSERT_TRUE(Settle());
  EXPECT_NE(view->Before(), nullptr);
  EXPECT_EQ(viewing->State(), ShownState::kTrueFrame);
  EXPECT_EQ(Message(), "");
}

TEST_F(Window, TakesTypedValuesAsTheCommandLineDoes) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  TypeInto(kShapeKey, "polygon");
  TypeInto(kRadiusXKey, "12px");
  TypeInto(kRadiusYKey, "5%");
  TypeInto(kSidesKey, "7");
  Look typed;
  typed["shape"] = "polygon";
  typed["radius-x"] = "12px";
  typed["radius-y"] = "5%";
  typed["sides"] = "7";
  EXPECT_EQ(document->ValuesAt(1), StillValues(page, {{"--", typed}}, 160, 90));
}

TEST_F(Window, RefusesAValueInWordsBesideItsField) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  TypeInto(kEmphasisKey, "501");
  EXPECT_EQ(Number(kEmphasisKey), 1.0);
  EXPECT_TRUE(PartOf<QLabel>(kEmphasisKey, "error")->text().contains("500"));
}

TEST_F(Window, UndoesAndRedoesByKeys) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  TypeInto(kEmphasisKey, "20");
  TypeInto(kEmphasisKey, "30");
  view->setFocus();
  Action("undoAction")->trigger();
  EXPECT_EQ(Number(kEmphasisKey), 20.0);
  Action("undoAction")->trigger();
  EXPECT_EQ(Number(kEmphasisKey), 1.0);
  Action("redoAction")->trigger();
  EXPECT_EQ(Number(kEmphasisKey), 20.0);
  ASSERT_TRUE(Settle());
  // The frame follows.
  Picture expected = Ramp(160, 90, 1);
  std::map<std::string, Value> values = page.Defaults();
  values[kEmphasisKey] = 20.0;
  RenderPicture(*module, values, {}, {1, 1}, &expected);
  EXPECT_EQ(viewing->Result()->samples, expected.samples);
}

TEST_F(Window, ChangesTheViewByKeysAndNothingElse) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  const auto before = document->ValuesAt(1);
  QTest::keyClick(window.get(), Qt::Key_G);
  EXPECT_EQ(view->View().channel, ViewChannel::kGreen);
  QTest::keyClick(window.get(), Qt::Key_C);
  EXPECT_EQ(view->View().channel, ViewChannel::kColour);
  QTest::keyClick(window.get(), Qt::Key_W);
  EXPECT_TRUE(view->View().wipes);
  QTest::keyClick(window.get(), Qt::Key_T);
  EXPECT_TRUE(view->View().showsBefore);
  QTest::keyClick(window.get(), Qt::Key_1);
  EXPECT_EQ(view->Zoom(), 1.0);
  EXPECT_EQ(document->ValuesAt(1), before);
}

TEST_F(Window, SavesAndLoadsLooksThatRenderAsTheySay) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  TypeInto(kEmphasisKey, "20");
  document->Save(scratch / "kept.toml");
  EXPECT_FALSE(window->isWindowModified());
  TypeInto(kEmphasisKey, "30");
  EXPECT_TRUE(window->isWindowModified());
  document->UndoStack()->setClean();
  window->Open(QString::fromStdString((scratch / "kept.toml").string()));
  EXPECT_EQ(Number(kEmphasisKey), 20.0);
  EXPECT_TRUE(window->windowTitle().contains("kept.toml"));

  std::ofstream(scratch / "odd.toml") << "version = 1\nradios = 3\n";
  window->Open(QString::fromStdString((scratch / "odd.toml").string()));
  EXPECT_TRUE(Message().contains("radios")) << Message().toStdString();
  EXPECT_EQ(Number(kEmphasisKey), 20.0);
}

TEST_F(Window, ShowsTheSecondClipInThePlaceOfTheFrame) {
  ASSERT_TRUE(Open(WritePicture("in.png", 1)));
  const auto frame = view->Before();
  document->SetText("spread", WritePicture("spread.png", 7), "");
  ASSERT_TRUE(Settle());
  Action("secondClipAction")->trigger();
  EXPECT_EQ(view->Before()->samples, Ramp(160, 90, 7).samples);
  EXPECT_EQ(view->After(), nullptr);
  Action("secondClipAction")->trigger();
  EXPECT_EQ(view->Before()->samples, frame->samples);
  EXPECT_EQ(view->After(), viewing->Result());
}

TEST_F(Window, SaysWhatOfALookDoesNotGoWithThePicture) {
  document->SetText("radius-x", "150px", "");
  ASSERT_TRUE(Open(WritePicture("in.png")));
  // Of 160 pixels, whose half is the most.
  EXPECT_TRUE(Message().contains("150px")) << Message().toStdString();
  EXPECT_EQ(Number(kRadiusXKey), 0.02);
}

TEST_F(Window, UsesAPresetAsOneStep) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  auto* const list = window->findChild<QDockWidget*>("presetsDock")->findChild<QListWidget*>();
  ASSERT_GT(list->count(), 0);
  const int steps = document->UndoStack()->count();
  list->setCurrentRow(0);
  QTest::keyClick(list, Qt::Key_Return);
  EXPECT_EQ(document->UndoStack()->count(), steps + 1);
  EXPECT_NE(document->ValuesAt(1), page.Defaults());
}

// What is copied renders the very samples that are shown.
TEST_F(Window, CopiesACommandThatRendersWhatIsSeen) {
  ASSERT_TRUE(Open(WritePicture("a name of words.png")));
  TypeInto(kShapeKey, "image");
  TypeInto(kEmphasisKey, "20");
  Mouse(QEvent::MouseButtonPress,
        QPointF(view->ScreenSize().width(), view->ScreenSize().height()) / 2.0);
  Mouse(QEvent::MouseMove, {40, 30});
  Mouse(QEvent::MouseButtonRelease, {40, 30});
  ASSERT_TRUE(Settle());
  Action("copyCommandAction")->trigger();
  std::vector<std::string> words =
      lx_test::SplitArguments(QApplication::clipboard()->text().toStdString());
  ASSERT_GT(words.size(), 2U);
  words.erase(words.begin());
  const auto outcome = lx_test::RunChild(PROGRAM, words);
  ASSERT_EQ(outcome.code, 0) << outcome.text;
  std::string warning;
  EXPECT_EQ(ReadPicture(scratch / "a name of words_blur.png", &warning).samples,
            viewing->Result()->samples);
}

TEST_F(Window, RendersAShotToDiskAsItIsSeen) {
  for (int frame = 1; frame <= 4; ++frame) {
    WritePicture("shot.000" + std::to_string(frame) + ".png", frame);
  }
  ASSERT_TRUE(Open((scratch / "shot.####.png").string()));
  document->SetText("radius-x", "first=2px; last=20px", "");
  viewing->SetFrame(3);
  ASSERT_TRUE(WaitUntil(viewing, &Viewing::StateChanged, [this] {
    return viewing->IsSettled() && viewing->Rendered().frame->frame == 3;
  }));
  auto* const jobs = window->findChild<JobsPanel*>();
  Action("renderAction")->trigger();
  QTest::mouseClick(jobs->findChild<QPushButton*>("startButton"), Qt::LeftButton);
  ASSERT_TRUE(jobs->IsRunning());
  ASSERT_TRUE(WaitUntil(jobs, &JobsPanel::RunningChanged, [&] { return !jobs->IsRunning(); }));
  std::string warning;
  EXPECT_EQ(ReadPicture(scratch / "shot_blur.0003.png", &warning).samples,
            viewing->Result()->samples);
  EXPECT_TRUE(fs::exists(scratch / "shot_blur.0004.png"));
}

TEST_F(Window, ShowsWhatAnotherEngineMakesAndDropsItWhenValuesChange) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  TypeInto(kEmphasisKey, "20");
  ASSERT_TRUE(Settle());
  auto* const exact = window->findChild<ExactView*>();
  Action("doubleAction")->trigger();
  ASSERT_TRUE(WaitUntil(exact, &ExactView::Changed, [&] { return exact->Result() != nullptr; }));
  const auto outcome = lx_test::RunChild(
      PROGRAM, {"render", (scratch / "in.png").string(), "-o", (scratch / "out.png").string(),
                "--engine", "double", "--emphasis", "20"});
  ASSERT_EQ(outcome.code, 0) << outcome.text;
  std::string warning;
  EXPECT_EQ(exact->Result()->samples, ReadPicture(scratch / "out.png", &warning).samples);
  EXPECT_EQ(view->After(), exact->Result());

  TypeInto(kEmphasisKey, "21");
  EXPECT_EQ(exact->Result(), nullptr);
}

TEST_F(Window, OffersWhatADeadWindowLeft) {
  LeaveLook("look-1-1", "9", WritePicture("was.png"));
  window->OfferLeftLook();
  ASSERT_TRUE(LeftLookBar()->Text().contains("was.png"));
  QSignalSpy opened(viewing, &Viewing::Opened);
  QSignalSpy kept(window->findChild<LookKeeper*>(), &LookKeeper::Kept);
  QTest::mouseClick(LeftLookBar()->findChild<QPushButton*>("messageButton"), Qt::LeftButton);
  EXPECT_EQ(Number(kSidesKey), 9.0);
  EXPECT_TRUE(fs::exists(scratch / "state" / "look-1-1.toml"));
  ASSERT_TRUE(opened.count() > 0 || opened.wait());
  EXPECT_EQ(viewing->Clip()->Title(), "was.png");
  ASSERT_TRUE(kept.count() > 0 || kept.wait());
  EXPECT_FALSE(fs::exists(scratch / "state" / "look-1-1.toml"));
}

// A radius of 70px is more than half of the small picture, and all right in the one it was for.
TEST_F(Window, TakesUpALeftLookThatDoesNotGoWithWhatIsOpen) {
  Write(scratch / "small.png", Ramp(16, 9, 1));
  ASSERT_TRUE(Open((scratch / "small.png").string()));
  LeaveLook("look-1-1", "9\nradius-x = \"70px\"", WritePicture("was.png"));
  window->OfferLeftLook();
  QSignalSpy opened(viewing, &Viewing::Opened);
  QTest::mouseClick(LeftLookBar()->findChild<QPushButton*>("messageButton"), Qt::LeftButton);
  ASSERT_TRUE(opened.count() > 0 || opened.wait());
  ASSERT_TRUE(Settle());
  EXPECT_EQ(document->TextOf("radius-x"), "70px");
  // The store holds the aperture's whole width.
  EXPECT_EQ(Number(kRadiusXKey), 140.0 / 160.0);
}

TEST_F(Window, GoesOnOfferingALeftLookWhileAPictureIsOpened) {
  LeaveLook("look-1-1", "9", WritePicture("was.png"));
  window->OfferLeftLook();
  ASSERT_TRUE(Open(WritePicture("other.png")));
  EXPECT_TRUE(LeftLookBar()->Text().contains("was.png"));
}

TEST_F(Window, ForgetsALeftLookThatNobodyWantsAndOffersTheNext) {
  LeaveLook("look-1-1", "9", "first.png");
  LeaveLook("look-2-1", "8", "second.png");
  window->OfferLeftLook();
  const bool isFirst = LeftLookBar()->Text().contains("first.png");
  auto* const discard = LeftLookBar()->findChild<QPushButton*>("messageOtherButton");
  QTest::mouseClick(discard, Qt::LeftButton);
  EXPECT_FALSE(fs::exists(scratch / "state" / (isFirst ? "look-1-1.toml" : "look-2-1.toml")));
  EXPECT_TRUE(LeftLookBar()->Text().contains(isFirst ? "second.png" : "first.png"));
  QTest::mouseClick(discard, Qt::LeftButton);
  EXPECT_EQ(LeftLookBar()->Text(), "");
}

TEST_F(Window, RemembersWhatWasOpenAndHowItLookedLike) {
  const std::string file = WritePicture("remembered.png");
  ASSERT_TRUE(Open(file));
  window->findChild<QDockWidget*>("timelineDock")->hide();
  EXPECT_TRUE(window->close());

  MainWindow next(page, module, {PROGRAM, scratch / "state"});
  next.show();
  EXPECT_TRUE(next.findChild<QDockWidget*>("timelineDock")->isHidden());
  auto* const recent = next.findChild<QMenu*>("recentMenu");
  emit recent->aboutToShow();
  ASSERT_FALSE(recent->actions().isEmpty());
  EXPECT_EQ(recent->actions().front()->text(), QString::fromStdString(file));
  next.findChild<QDockWidget*>("timelineDock")->show();
  EXPECT_TRUE(next.close());
}

TEST_F(Window, GoesOnSayingWhatIsWrongWithALookThatCameWithThePicture) {
  std::ofstream(scratch / "bad.toml") << "version = 1\nradiuss-x = \"4px\"\n";
  QSignalSpy opened(viewing, &Viewing::Opened);
  window->Open(QString::fromStdString(WritePicture("in.png")));
  window->Open(QString::fromStdString((scratch / "bad.toml").string()));
  ASSERT_TRUE(opened.wait());
  EXPECT_TRUE(Message().contains("radiuss-x"));
}

TEST_F(Window, RemembersWhereAFileIsThatWasNamedFromAFolder) {
  WritePicture("in.png");
  const QString before = QDir::currentPath();
  QDir::setCurrent(QString::fromStdString(scratch.Path().string()));
  const bool isOpen = Open("in.png");
  QDir::setCurrent(before);
  ASSERT_TRUE(isOpen);
  EXPECT_EQ(viewing->Clip()->Input(), (scratch / "in.png").string());
}

TEST_F(Window, HasNoEmptyPlacesInItsMenus) {
  for (const QMenu* menu : window->findChildren<QMenu*>()) {
    for (const QAction* action : menu->actions()) {
      EXPECT_TRUE(action->isSeparator() || !action->text().isEmpty())
          << menu->title().toStdString() << ": " << action->objectName().toStdString();
    }
  }
}

// Only what can be reached by keys can be used by them.
TEST_F(Window, IsReachedByTabFromThePictureToEveryPanel) {
  ASSERT_TRUE(Open(WritePicture("in.png")));
  window->activateWindow();
  view->setFocus();
  bool reachesPage = false;
  bool reachesTimeline = false;
  const int kEnough = 200;
  for (int i = 0; i < kEnough && !(reachesPage && reachesTimeline); ++i) {
    QWidget* const now = QApplication::focusWidget();
    ASSERT_NE(now, nullptr);
    reachesPage |= window->findChild<QWidget*>("pagePanel")->isAncestorOf(now);
    reachesTimeline |= window->findChild<QWidget*>("timeline")->isAncestorOf(now);
    QTest::keyClick(now, Qt::Key_Tab);
  }
  EXPECT_TRUE(reachesPage);
  EXPECT_TRUE(reachesTimeline);
}

}  // namespace
}  // namespace glimmerhost
