// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/shot_timeline.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <map>
#include <string>
#include <vector>

#include "host/viewer/panels/keyframe_tracks.h"
#include "host/viewer/panels/row_button.h"

namespace glimmerhost {
namespace {

const Page& ThePage() {
  static const Page page = Page::Load(PAGE);
  return page;
}

using Frames = std::map<std::string, std::vector<double>>;

class TimelineTest : public testing::Test {
 protected:
  TimelineTest() {
    document_.SetPicture(1000, 500, {1, 101});
    timeline_.resize(800, 240);
    std::vector<int> frames;
    for (int frame = 1; frame <= 101; ++frame) {
      frames.push_back(frame);
    }
    timeline_.SetShot(frames);
    timeline_.show();
    timeline_.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&timeline_));
    tracks_->setFocus();
  }

  QPoint Place(const std::string& name, double frame) { return tracks_->PlaceOf(name, frame); }

  void Drag(const QPoint& from, const std::vector<QPoint>& over) {
    QTest::mousePress(tracks_->viewport(), Qt::LeftButton, {}, from);
    for (const QPoint& point : over) {
      QTest::mouseMove(tracks_->viewport(), point);
    }
    QTest::mouseRelease(tracks_->viewport(), Qt::LeftButton, {}, over.back());
  }

  void Click(const QPoint& place, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(tracks_->viewport(), Qt::LeftButton, modifiers, place);
  }

  void Press(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(tracks_, static_cast<Qt::Key>(key), modifiers);
  }

  LookDocument document_{ThePage(), nullptr};
  ShotTimeline timeline_{&document_, nullptr};
  KeyframeTracks* tracks_ = timeline_.Tracks();
};

using TimelineFrames = TimelineTest;
using TimelineKeyframes = TimelineTest;

TEST_F(TimelineFrames, AreChosenByADragOnTheRuler) {
  QSignalSpy chosen(&timeline_, &ShotTimeline::FrameChosen);
  Drag(tracks_->PlaceOnRuler(20), {tracks_->PlaceOnRuler(30), tracks_->PlaceOnRuler(41)});
  ASSERT_EQ(chosen.count(), 3);
  EXPECT_EQ(chosen[0][0].toInt(), 20);
  EXPECT_EQ(chosen[2][0].toInt(), 41);
  EXPECT_EQ(timeline_.Frame(), 41);
  EXPECT_EQ(timeline_.findChild<QSpinBox*>("frame")->value(), 41);
  Drag(tracks_->PlaceOnRuler(41), {tracks_->PlaceOnRuler(101) + QPoint(500, 300)});
  EXPECT_EQ(timeline_.Frame(), 101);
  EXPECT_EQ(document_.UndoStack()->count(), 0);
}

TEST_F(TimelineFrames, AreChosenByKeys) {
  document_.SetText("mix", "1=0; 40=1; 60.7%=0.5; 90=1", "");
  timeline_.SetFrame(50);
  const struct {
    int key;
    Qt::KeyboardModifiers modifiers;
    int frame;
  } pressed[] = {{Qt::Key_Right, {}, 51},
                 {Qt::Key_Left, {}, 50},
                 {Qt::Key_Right, Qt::ControlModifier, 62},  // the nearest of 61.7
                 {Qt::Key_Right, Qt::ControlModifier, 90},
                 {Qt::Key_Right, Qt::ControlModifier, 90},
                 {Qt::Key_Left, Qt::ControlModifier, 62},
                 {Qt::Key_Left, Qt::ControlModifier, 40},
                 {Qt::Key_Home, {}, 1},
                 {Qt::Key_End, {}, 101}};
  for (const auto& one : pressed) {
    Press(one.key, one.modifiers);
    EXPECT_EQ(timeline_.Frame(), one.frame);
  }
}

TEST_F(TimelineFrames, AreThoseThatTheClipHas) {
  timeline_.SetShot({1, 2, 10, 11});
  timeline_.SetFrame(2);
  Press(Qt::Key_Right);
  EXPECT_EQ(timeline_.Frame(), 10);
  auto* field = timeline_.findChild<QSpinBox*>("frame");
  field->stepBy(-1);
  EXPECT_EQ(timeline_.Frame(), 2);
  field->setFocus();
  field->selectAll();
  QTest::keyClicks(field, "8");
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(timeline_.Frame(), 10);
  EXPECT_EQ(field->value(), 10);
  Drag(tracks_->PlaceOnRuler(10), {tracks_->PlaceOnRuler(4)});
  EXPECT_EQ(timeline_.Frame(), 2);
  timeline_.SetShot({});
  EXPECT_FALSE(timeline_.findChild<RowButton*>("play")->isEnabled());
}

TEST_F(TimelineFrames, ArePlayedBySpaceAndByTheButton) {
  QSignalSpy played(&timeline_, &ShotTimeline::PlayToggled);
  Press(Qt::Key_Space);
  Press(Qt::Key_Space);
  QTest::mouseClick(timeline_.findChild<RowButton*>("play"), Qt::LeftButton);
  timeline_.SetPlaying(false);
  QTest::mouseClick(timeline_.findChild<RowButton*>("play"), Qt::LeftButton);
  ASSERT_EQ(played.count(), 4);
  EXPECT_TRUE(played[0][0].toBool());
  EXPECT_FALSE(played[1][0].toBool());
  EXPECT_TRUE(played[2][0].toBool());
  EXPECT_TRUE(played[3][0].toBool());
  timeline_.ShowDropped(3);
  EXPECT_EQ(timeline_.findChild<QLabel*>("dropped")->text(), "3 frames dropped");
}

TEST_F(TimelineKeyframes, AreMovedByADragAsOneStepOfUndo) {
  document_.SetText("radius-x", "first=1px; 31~=2px; 61=3px", "");
  const int before = document_.UndoStack()->count();

  Drag(Place("radius-x", 31),
       {Place("radius-x", 40), Place("radius-x", 61), Place("radius-x", 71)});

  EXPECT_EQ(document_.TextOf("radius-x"), "first=1px; 61=3px; 71~=2px");
  EXPECT_EQ(document_.UndoStack()->count(), before + 1);
  EXPECT_EQ(tracks_->Selection(), (Frames{{"radius-x", {71}}}));
  document_.UndoStack()->undo();
  EXPECT_EQ(document_.TextOf("radius-x"), "first=1px; 31~=2px; 61=3px");
  EXPECT_TRUE(tracks_->Selection().empty());
}

TEST_F(TimelineKeyframes, AreWhereTheyWereAfterAnAbandonedDrag) {
  document_.SetText("radius-x", "1=1px; 31=2px", "");
  QTest::mousePress(tracks_->viewport(), Qt::LeftButton, {}, Place("radius-x", 31));
  QTest::mouseMove(tracks_->viewport(), Place("radius-x", 41));
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 41=2px");
  Press(Qt::Key_Escape);
  QTest::mouseMove(tracks_->viewport(), Place("radius-x", 51));
  QTest::mouseRelease(tracks_->viewport(), Qt::LeftButton, {}, Place("radius-x", 51));
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 31=2px");
  EXPECT_EQ(document_.UndoStack()->count(), 1);
}

TEST_F(TimelineKeyframes, OfSeveralRowsAreMovedAndRemovedTogether) {
  document_.SetText("radius-x", "1=1px; 31=2px", "");
  document_.SetText("mix", "21=0; last=1", "");
  Click(Place("radius-x", 31));
  Click(Place("mix", 101), Qt::ControlModifier);
  EXPECT_EQ(tracks_->Selection(), (Frames{{"radius-x", {31}}, {"mix", {101}}}));
  Click(Place("radius-x", 31), Qt::ControlModifier);
  EXPECT_EQ(tracks_->Selection(), (Frames{{"mix", {101}}}));
  Click(Place("radius-x", 31), Qt::ControlModifier);

  Drag(Place("radius-x", 31), {Place("radius-x", 26)});
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 26=2px");
  EXPECT_EQ(document_.TextOf("mix"), "21=0; last-5=1");
  Press(Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 27=2px");
  EXPECT_EQ(document_.TextOf("mix"), "21=0; last-4=1");
  Press(Qt::Key_Delete);
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px");
  EXPECT_EQ(document_.TextOf("mix"), "21=0");
  EXPECT_TRUE(tracks_->Selection().empty());
  document_.UndoStack()->undo();
  EXPECT_EQ(document_.TextOf("mix"), "21=0; last-4=1");
}

TEST_F(TimelineKeyframes, AreReachedAndMovedByKeysAlone) {
  document_.SetText("radius-x", "1=1px; 31=2px", "");
  document_.SetText("mix", "21=0; 41=1", "");
  // It was the only row, and has its curve since then.
  EXPECT_EQ(tracks_->SelectedName(), "radius-x");
  Press(Qt::Key_Down);
  EXPECT_EQ(tracks_->SelectedName(), "mix");
  Press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(timeline_.Frame(), 21);
  Press(Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(document_.TextOf("mix"), "20=0; 41=1");
  Press(Qt::Key_A, Qt::ControlModifier);
  Press(Qt::Key_Delete);
  EXPECT_EQ(document_.TextOf("mix"), "1");
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 31=2px");
}

TEST_F(TimelineKeyframes, HaveAMenuOfHowTheyGoOn) {
  document_.SetText("radius-x", "1=1px; 31=2px; 61=3px", "");
  Click(Place("radius-x", 31));
  QContextMenuEvent asked(QContextMenuEvent::Keyboard, {}, tracks_->mapToGlobal(QPoint(0, 0)));
  QCoreApplication::sendEvent(tracks_, &asked);
  auto* menu = tracks_->findChild<QMenu*>("keyframeMenu");
  ASSERT_NE(menu, nullptr);
  EXPECT_TRUE(menu->actions()[0]->isChecked());
  menu->actions()[1]->trigger();
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 31~=2px; 61=3px");
  menu->actions()[2]->trigger();
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 31|=2px; 61=3px");
  menu->actions()[4]->trigger();
  EXPECT_EQ(document_.TextOf("radius-x"), "1=1px; 61=3px");
  menu->close();
}

TEST_F(TimelineKeyframes, AreAddedByADoubleClickInARow) {
  document_.SetText("mix", "1=0; 101=1", "");
  QTest::mouseDClick(tracks_->viewport(), Qt::LeftButton, {}, Place("mix", 51));
  EXPECT_EQ(document_.TextOf("mix"), "1=0; 51=0.5; 101=1");
}

TEST_F(TimelineKeyframes, ThatCannotBeMovedStayAndItIsTold) {
  document_.SetText("mix", "1=0; 101=1", "");
  QSignalSpy refused(&timeline_, &ShotTimeline::Refused);
  Click(Place("mix", 1));
  Press(Qt::Key_Left, Qt::AltModifier);
  ASSERT_EQ(refused.count(), 1);
  EXPECT_TRUE(refused[0][0].toString().contains("the time 0 is not in the shot 1-101"));
  EXPECT_EQ(document_.TextOf("mix"), "1=0; 101=1");
  EXPECT_EQ(tracks_->Selection(), (Frames{{"mix", {1}}}));
}

// The least and the most of the frames, by hand: a half of the way from 10px to 20px.
TEST(ValueCurves, AreOfTheValuesThatFramesHave) {
  LookDocument document(ThePage(), nullptr);
  document.SetPicture(1000, 500, {1, 3});
  document.SetText("radius-x", "1=10px; 3=20px", "");
  document.SetText("center", "1=0,1; 3=1,0", "");
  document.SetText("shape", "1=circle; 3=polygon", "");

  const ShotFrames frames({1, 2, 3});
  const ValueCurves radius = CurvesOf(document, "radius-x", frames, RadiusUnit::kPixels, 100);
  ASSERT_EQ(radius.lines.size(), 1U);
  EXPECT_EQ(radius.lines[0], (std::vector<QPointF>{{1, 0.02}, {2, 0.03}, {3, 0.04}}));
  EXPECT_EQ(radius.lowestText, "10px");
  EXPECT_EQ(radius.highestText, "20px");
  EXPECT_FALSE(radius.areSteps);
  const ValueCurves center = CurvesOf(document, "center", frames, RadiusUnit::kPixels, 100);
  ASSERT_EQ(center.lines.size(), 2U);
  EXPECT_EQ(center.lines[1][2], QPointF(3, 0));
  const ValueCurves shape = CurvesOf(document, "shape", frames, RadiusUnit::kPixels, 100);
  EXPECT_TRUE(shape.areSteps);
  EXPECT_EQ(shape.highestText, "polygon");
  EXPECT_EQ(CurvesOf(document, "radius-x", frames, RadiusUnit::kPixels, 1).lines[0].size(), 2U);
}

}  // namespace
}  // namespace glimmerhost
