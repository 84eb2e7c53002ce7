// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/value_slider.h"

#include <QtTest/qtestspontaneevent.h>
#include <gtest/gtest.h>

#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QWheelEvent>
#include <string>

#include "tests/host/viewer/panels/panel_stage.h"

namespace glimmerhost {
namespace {

class SliderTest : public lx_test::PanelTest {
 protected:
  SliderTest() { slider_ = PartOf<ValueSlider>("PRM_Emphasis", "slider"); }

  void Turn(QWidget* widget, int notches) {
    const QPointF middle = widget->rect().center();
    QWheelEvent turned(middle, widget->mapToGlobal(middle), {}, {0, notches * 120}, Qt::NoButton,
                       Qt::NoModifier, Qt::NoScrollPhase, false);
    // Only what comes from outside goes on to the widgets around, and sendEvent says that it does
    // not.
    QSpontaneKeyEvent::setSpontaneous(&turned);
    QCoreApplication::instance()->notify(widget, &turned);
  }

  // On the slider, as a part of its width.
  QPoint At(double part) const {
    return {static_cast<int>(part * slider_->width()), slider_->height() / 2};
  }

  ValueSlider* slider_;
};

TEST_F(SliderTest, ScrollsThePageByTheWheelUntilItHasTheFocus) {
  panel_.resize(360, 200);
  ShowShape('C');
  auto* bar = panel_.findChild<QScrollArea*>("pageScroll")->verticalScrollBar();
  bar->setValue(0);
  PartOf("PRM_RadiusX", "field")->setFocus();
  for (QWidget* still : {static_cast<QWidget*>(slider_), PartOf("PRM_Shape", "list")}) {
    const int before = bar->value();
    Turn(still, -1);
    EXPECT_GT(bar->value(), before) << still->objectName().toStdString();
  }
  EXPECT_EQ(document_.CurrentLook(), Look());

  slider_->setFocus();
  const int focused = bar->value();
  Turn(slider_, 1);
  EXPECT_EQ(bar->value(), focused);
  EXPECT_NE(document_.TextOf("emphasis"), "");
}

// A hundredth of 1 to 50 is 0.49.
TEST_F(SliderTest, StepsByKeysAndTenTimesAsFineWithShift) {
  slider_->setFocus();
  QTest::keyClick(slider_, Qt::Key_Right);
  EXPECT_EQ(document_.TextOf("emphasis"), "1.49");
  QTest::keyClick(slider_, Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(document_.TextOf("emphasis"), "1.54");
  QTest::keyClick(slider_, Qt::Key_End);
  EXPECT_EQ(document_.TextOf("emphasis"), "50");
  QTest::keyClick(slider_, Qt::Key_PageDown);
  EXPECT_EQ(document_.TextOf("emphasis"), "45.1");
  EXPECT_EQ(document_.UndoStack()->count(), 1);
  document_.UndoStack()->undo();
  EXPECT_EQ(document_.TextOf("emphasis"), "");
}

TEST_F(SliderTest, IsOneGestureWhileItIsDragged) {
  QTest::mousePress(slider_, Qt::LeftButton, {}, At(0.3));
  QTest::mouseMove(slider_, At(0.5));
  QTest::mouseMove(slider_, At(0.7));
  const double while_ = NumberAt("PRM_Emphasis", 1);
  QTest::mouseRelease(slider_, Qt::LeftButton, {}, At(0.7));
  QTest::mousePress(slider_, Qt::LeftButton, {}, At(0.2));
  QTest::mouseRelease(slider_, Qt::LeftButton, {}, At(0.2));

  EXPECT_NEAR(while_, 1.0 + 0.7 * 49.0, 1.5);
  EXPECT_NEAR(NumberAt("PRM_Emphasis", 1), 1.0 + 0.2 * 49.0, 1.5);
  EXPECT_EQ(document_.UndoStack()->count(), 2);
  document_.UndoStack()->undo();
  EXPECT_EQ(NumberAt("PRM_Emphasis", 1), while_);
  document_.UndoStack()->undo();
  EXPECT_EQ(document_.CurrentLook(), Look());
}

TEST_F(SliderTest, IsResetByADoubleClick) {
  document_.SetText("emphasis", "20", "");
  QTest::mouseDClick(slider_, Qt::LeftButton, {}, At(0.9));
  EXPECT_EQ(document_.TextOf("emphasis"), "");
  document_.UndoStack()->undo();
  EXPECT_EQ(document_.TextOf("emphasis"), "20");
}

// The slider is as far as it goes, and the value further.
TEST_F(SliderTest, StandsAtItsEndForWhatIsOnlyTyped) {
  Type("PRM_Emphasis", "400");
  EXPECT_EQ(slider_->Travel(), 1.0);
  EXPECT_EQ(NumberAt("PRM_Emphasis", 1), 400.0);
  slider_->setFocus();
  QTest::keyClick(slider_, Qt::Key_Left);
  EXPECT_EQ(document_.TextOf("emphasis"), "49.51");
}

TEST_F(SliderTest, TypesRadiiInTheUnitThatIsShown) {
  auto* radius = PartOf<ValueSlider>("PRM_RadiusX", "slider");
  radius->setFocus();
  QTest::keyClick(radius, Qt::Key_Home);
  EXPECT_EQ(document_.TextOf("radius-x"), "0px");
  QTest::keyClick(radius, Qt::Key_End);
  EXPECT_EQ(document_.TextOf("radius-x"), "500px");
  panel_.SetUnit(RadiusUnit::kPercent);
  QTest::keyClick(radius, Qt::Key_Home);
  EXPECT_EQ(document_.TextOf("radius-x"), "0%");
}

TEST_F(SliderTest, SetsAKeyframeOfWhatHasSome) {
  document_.SetText("emphasis", "1=1; 11=11", "");
  panel_.SetFrame(6);
  slider_->setFocus();
  QTest::keyClick(slider_, Qt::Key_End);
  EXPECT_EQ(document_.TextOf("emphasis"), "1=1; 6=50; 11=11");
}

TEST_F(SliderTest, MovesHalfOfAPoint) {
  ShowShape('D');
  auto* x = PartOf<ValueSlider>("PRM_Center_X", "slider");
  x->setFocus();
  QTest::keyClick(x, Qt::Key_End);
  EXPECT_EQ(document_.TextOf("center"), "2,0.5");
}

}  // namespace
}  // namespace glimmerhost
