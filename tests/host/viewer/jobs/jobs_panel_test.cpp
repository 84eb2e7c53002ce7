// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/jobs_panel.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <functional>
#include <string>
#include <vector>

#include "host/shots/manifest.h"
#include "host/viewer/jobs/frame_table.h"
#include "host/viewer/jobs/output_form.h"
#include "tests/host/viewer/jobs/shot_folder.h"
#include "tests/support/child_program.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr int kLong = 60000;

// The panel in a window, over a shot.
class Panel {
 public:
  explicit Panel(ShotFolder* shot, const fs::path& program = PROGRAM)
      : widget(
            ThePage(), [shot] { return shot->input; }, program) {
    widget.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&widget));
    Settle([this] { widget.InputChanged(); });
    Type("outputName", shot->target.output);
  }

  template <class Widget>
  Widget* Find(const char* name) const {
    Widget* const found = widget.findChild<Widget*>(name);
    EXPECT_TRUE(found) << name;
    return found;
  }

  // As a person does, and until the formats have been asked.
  void Type(const char* name, const std::string& text) {
    auto* const field = Find<QLineEdit>(name);
    Settle([&] {
      field->selectAll();
      QTest::keyClicks(field, QString::fromStdString(text));
    });
  }

  void Choose(const char* name, const QString& entry) const {
    auto* const box = Find<QComboBox>(name);
    const int index = box->findText(entry);
    EXPECT_LE(0, index) << entry.toStdString();
    box->setCurrentIndex(index);
  }

  void Press(const char* name) const { QTest::mouseClick(Find<QPushButton>(name), Qt::LeftButton); }

  // Presses the button and waits for the end of what it starts.
  void Render() {
    QSignalSpy running(&widget, &JobsPanel::RunningChanged);
    Press("startButton");
    while (widget.IsRunning()) {
      ASSERT_TRUE(running.wait(kLong));
    }
  }

  std::string Message() const { return Find<QLabel>("jobMessage")->text().toStdString(); }

  std::string StateAt(int row) const {
    const QAbstractItemModel* model = Find<QAbstractItemView>("jobFrames")->model();
    return model->index(row, FrameTable::kState).data().toString().toStdString();
  }

  // Until the table has been told how the files stand.
  void WaitForStanding(const std::function<void()>& act) const {
    QSignalSpy told(widget.findChild<StandingWatch*>(), &StandingWatch::Found);
    act();
    ASSERT_TRUE(told.wait(kLong));
  }

  JobsPanel widget;

 private:
  // Until what the act asked of another thread has been answered.
  void Settle(const std::function<void()>& act) const {
    QSignalSpy asked(widget.findChild<OutputForm*>(), &OutputForm::ChoicesKnown);
    act();
    EXPECT_TRUE(!asked.isEmpty() || asked.wait(kLong));
  }
};

TEST(JobsPanel, RendersWhatIsShownAndTellsEachFrame) {
  ShotFolder shot(1, 3);
  Panel panel(&shot);
  EXPECT_EQ("to do", panel.StateAt(2));
  panel.Render();
  EXPECT_EQ("Done: 3 frames.", panel.Message());
  EXPECT_EQ(3, panel.Find<QProgressBar>("jobProgress")->value());
  EXPECT_EQ(3, panel.Find<QProgressBar>("jobProgress")->maximum());
  for (int frame = 1; frame <= 3; ++frame) {
    EXPECT_EQ("done", panel.StateAt(frame - 1));
    EXPECT_TRUE(fs::exists(shot.Out(frame)));
  }
  EXPECT_TRUE(panel.Find<QLabel>("jobPace")->text().contains("a second"));
  EXPECT_EQ(3U, ReadManifest(shot.target.manifest).size());
}

TEST(JobsPanel, ShowsWhichFramesAreOutOfDateWhenTheLookChanges) {
  ShotFolder shot(1, 3);
  Panel panel(&shot);
  panel.WaitForStanding([&] { panel.Render(); });
  panel.WaitForStanding([&] {
    shot.input.look["radius"] = "first=3px; last=12px";
    panel.widget.InputChanged();
  });
  EXPECT_EQ("done", panel.StateAt(0));
  EXPECT_EQ("out of date", panel.StateAt(1));
  panel.Render();
  EXPECT_EQ("Done: 3 frames, of which 1 were up to date.", panel.Message());
}

TEST(JobsPanel, SeesFilesThatSomebodyElseTakesAway) {
  ShotFolder shot(1, 2);
  Panel panel(&shot);
  panel.WaitForStanding([&] { panel.Render(); });
  EXPECT_EQ("done", panel.StateAt(1));
  panel.WaitForStanding([&] { fs::remove(shot.Out(2)); });
  EXPECT_EQ("to do", panel.StateAt(1));
}

TEST(JobsPanel, RendersTheFramesThatAreChosen) {
  ShotFolder shot(1, 5);
  Panel panel(&shot);
  panel.widget.SetFrame(4);
  panel.Choose("framesChoice", "This frame: 4");
  panel.Render();
  EXPECT_TRUE(fs::exists(shot.Out(4)));
  EXPECT_FALSE(fs::exists(shot.Out(3)));
  panel.Choose("framesChoice", "List");
  QTest::keyClicks(panel.Find<QLineEdit>("framesList"), "1-5x2");
  panel.Render();
  EXPECT_TRUE(fs::exists(shot.Out(1)) && fs::exists(shot.Out(3)) && fs::exists(shot.Out(5)));
  EXPECT_FALSE(fs::exists(shot.Out(2)));
}

TEST(JobsPanel, SaysWhatIsWrongWithAListOfFrames) {
  ShotFolder shot(1, 2);
  Panel panel(&shot);
  panel.Choose("framesChoice", "List");
  QTest::keyClicks(panel.Find<QLineEdit>("framesList"), "1-");
  panel.Press("startButton");
  EXPECT_FALSE(panel.widget.IsRunning());
  EXPECT_NE(std::string::npos, panel.Message().find("1-")) << panel.Message();
}

TEST(JobsPanel, TellsWhichFrameFailedAndWhy) {
  ShotFolder shot(1, 2);
  shot.Break(2);
  Panel panel(&shot);
  panel.Render();
  EXPECT_EQ("done", panel.StateAt(0));
  EXPECT_EQ("failed", panel.StateAt(1));
  EXPECT_NE(std::string::npos, panel.Message().find("exit code 1: frame 2: ")) << panel.Message();
  EXPECT_TRUE(panel.Find<QPlainTextEdit>("jobLines")->toPlainText().contains("in.2.png"));
}

TEST(JobsPanel, CancelsAndGoesOn) {
  ShotFolder shot(1, 40, 200, 150);
  Panel panel(&shot);
  auto* const bar = panel.Find<QProgressBar>("jobProgress");
  const auto cancel = QObject::connect(bar, &QProgressBar::valueChanged, [&](int value) {
    if (value == 1) {
      panel.Press("cancelButton");
    }
  });
  panel.Render();
  QObject::disconnect(cancel);
  EXPECT_EQ(0U, panel.Message().find("Cancelled: ")) << panel.Message();
  EXPECT_FALSE(fs::exists(shot.Out(40)));
  panel.Render();
  EXPECT_EQ(0U, panel.Message().find("Done: 40 frames, of which ")) << panel.Message();
}

TEST(JobsPanel, SaysWhichProgramIsMissing) {
  ShotFolder shot(1, 1);
  Panel panel(&shot, shot.folder / "no_program");
  panel.Render();
  EXPECT_NE(std::string::npos, panel.Message().find("no_program")) << panel.Message();
  EXPECT_TRUE(panel.Find<QPushButton>("startButton")->isEnabled());
}

// What is pasted into a terminal renders the same.
TEST(JobsPanel, CopiesTheCommandThatRendersWhatIsShown) {
  ShotFolder shot(1, 2);
  Panel panel(&shot);
  panel.Choose("outputBits", "8 bits");
  panel.Press("copyCommandButton");
  const std::string line = QGuiApplication::clipboard()->text().toStdString();
  ASSERT_EQ(0, lx_test::RunChild("/bin/bash", {"-c", line}).code) << line;
  EXPECT_EQ(8, ReadBack(shot.Out(2)).bits);
  panel.Render();
  EXPECT_EQ("Done: 2 frames, of which 2 were up to date.", panel.Message());
}

TEST(JobsPanel, SubmitsToSeveralProcesses) {
  ShotFolder shot(1, 4);
  Panel panel(&shot);
  panel.Choose("renderBy", "Several processes");
  panel.Find<QSpinBox>("farmProcesses")->setValue(2);
  panel.Find<QSpinBox>("farmChunk")->setValue(2);
  EXPECT_EQ("Submi&t", panel.Find<QPushButton>("startButton")->text());
  panel.Render();
  EXPECT_EQ("Done: 4 frames.", panel.Message());
  EXPECT_TRUE(fs::exists(shot.folder / "out" / "out.manifest.0002-of-0002.jsonl"));
}

// The program's part ends when the jobs are handed over; theirs is seen in the manifests of chunks.
TEST(JobsPanel, FollowsTheJobsOfAFarmByTheirManifests) {
  ShotFolder shot(1, 4);
  Panel panel(&shot, shot.Script("echo \"array job 17: 2 chunks\"; echo \"$@\""));
  panel.Choose("renderBy", "Slurm jobs");
  panel.Find<QLineEdit>("farmSbatch")->setText("--partition=long --time=60");
  panel.WaitForStanding([&] { panel.Render(); });
  EXPECT_EQ(0U, panel.Message().find("Handed over to Slurm.")) << panel.Message();
  const QString said = panel.Find<QPlainTextEdit>("jobLines")->toPlainText();
  EXPECT_TRUE(said.startsWith("array job 17: 2 chunks\n")) << said.toStdString();
  EXPECT_TRUE(said.contains("--engine=slurm --sbatch=--partition=long --sbatch=--time=60"));
  EXPECT_EQ("to do", panel.StateAt(0));

  FarmTarget farm;
  farm.processes = 2;
  panel.WaitForStanding(
      [&] { lx_test::RunChild(PROGRAM, SubmitWords(ThePage(), shot.input, shot.target, farm)); });
  for (int row = 0; row < 4; ++row) {
    EXPECT_EQ("done", panel.StateAt(row)) << row;
  }
}

TEST(JobsPanel, OffersWhatTheOutputsFormatHas) {
  ShotFolder shot(1, 1);
  Panel panel(&shot);
  auto* const compression = panel.Find<QComboBox>("outputCompression");
  EXPECT_LE(0, compression->findText("small"));
  panel.Type("outputName", (shot.folder / "out" / "out.@.tif").string());
  EXPECT_GT(0, compression->findText("small"));
  EXPECT_LE(0, compression->findText("lzw"));
  panel.Choose("outputCompression", "none");
  // What the next format has, too, stays chosen.
  panel.Type("outputName", shot.target.output);
  EXPECT_EQ("none", compression->currentText());
  panel.Type("outputName", "out.doc");
  EXPECT_TRUE(panel.Find<QLabel>("outputFormat")->isVisible());
}

TEST(JobsPanel, ProposesAnOutputUntilSomebodyTypesOne) {
  ShotFolder shot(1, 1);
  JobsPanel panel(ThePage(), [&] { return shot.input; });
  auto* const output = panel.findChild<QLineEdit*>("outputName");
  panel.InputChanged();
  EXPECT_EQ((shot.folder / "in_blur.@.png").string(), output->text().toStdString());
  QTest::keyClicks(output, "x");
  panel.InputChanged();
  EXPECT_EQ((shot.folder / "in_blur.@.pngx").string(), output->text().toStdString());
}

// One picture, over which the values change.
TEST(JobsPanel, RendersAPictureThatIsAShot) {
  ShotFolder shot(1, 1);
  shot.input.input = shot.In(1).string();
  Panel panel(&shot);
  shot.input.frames = {1, 2, 3};
  shot.input.span = {1, 3};
  shot.target.output = (shot.folder / "out" / "out.@.png").string();
  panel.widget.InputChanged();
  panel.Type("outputName", shot.target.output);
  EXPECT_TRUE(panel.Find<QComboBox>("framesChoice")->isEnabled());
  panel.Render();
  EXPECT_EQ("Done: 3 frames.", panel.Message());
  EXPECT_NE(ReadBack(shot.Out(1)).samples, ReadBack(shot.Out(3)).samples);
}

TEST(JobsPanel, ProposesAPlaceForFramesWhenAPictureBecomesAShot) {
  ShotFolder shot(1, 1);
  shot.input.input = shot.In(1).string();
  JobsPanel panel(ThePage(), [&] { return shot.input; });
  panel.InputChanged();
  auto* const output = panel.findChild<QLineEdit*>("outputName");
  EXPECT_EQ((shot.folder / "in.1_blur.png").string(), output->text().toStdString());
  shot.input.frames = {1, 2, 3};
  panel.InputChanged();
  EXPECT_EQ((shot.folder / "in.1_blur.####.png").string(), output->text().toStdString());
}

TEST(JobsPanel, ShowsAFrameThatIsChosenInTheTable) {
  ShotFolder shot(5, 7);
  Panel panel(&shot);
  QSignalSpy chosen(&panel.widget, &JobsPanel::FrameChosen);
  auto* const table = panel.Find<QAbstractItemView>("jobFrames");
  table->setFocus();
  table->setCurrentIndex(table->model()->index(1, 0));
  QTest::keyClick(table, Qt::Key_Return);
  ASSERT_EQ(1, chosen.count());
  EXPECT_EQ(6, chosen.front().front().toInt());
}

// Space starts, and space again cancels.
TEST(JobsPanel, LeavesTheKeyboardWithTheButtonThatGoesOn) {
  ShotFolder shot(1, 40, 200, 150);
  Panel panel(&shot);
  auto* const start = panel.Find<QPushButton>("startButton");
  auto* const cancel = panel.Find<QPushButton>("cancelButton");
  start->setFocus();
  QTest::keyClick(start, Qt::Key_Space);
  ASSERT_TRUE(panel.widget.IsRunning());
  EXPECT_EQ(cancel, QApplication::focusWidget());
  QSignalSpy running(&panel.widget, &JobsPanel::RunningChanged);
  QTest::keyClick(cancel, Qt::Key_Space);
  ASSERT_TRUE(running.wait(kLong));
  EXPECT_EQ(start, QApplication::focusWidget());
}

TEST(JobsPanel, IsReachedByTheKeyboardInTheOrderOfItsRows) {
  ShotFolder shot(1, 2);
  Panel panel(&shot);
  panel.Find<QLineEdit>("outputName")->setFocus();
  std::vector<std::string> names;
  for (int i = 0; i < 13; ++i) {
    names.push_back(QApplication::focusWidget()->objectName().toStdString());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
  }
  EXPECT_EQ((std::vector<std::string>{"outputName", "outputBrowse", "outputBits",
                                      "outputCompression", "outputPrecision", "outputEngine",
                                      "framesChoice", "existingChoice", "keepGoing", "renderBy",
                                      "startButton", "copyCommandButton", "jobFrames"}),
            names);
}

}  // namespace
}  // namespace glimmerhost
