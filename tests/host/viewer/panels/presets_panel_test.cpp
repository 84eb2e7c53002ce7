// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/presets_panel.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>
#include <map>
#include <string>

#include "host/looks/presets.h"

namespace glimmerhost {
namespace {

const Page& ThePage() {
  static const Page page = Page::Load(PAGE);
  return page;
}

class PresetsTest : public testing::Test {
 protected:
  PresetsTest() {
    document_.SetPicture(1000, 500, {1, 11});
    panel_.resize(320, 400);
    panel_.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&panel_));
  }

  QPoint Middle(int row) { return list_->visualItemRect(list_->item(row)).center(); }

  LookDocument document_{ThePage(), nullptr};
  PresetsPanel panel_{&document_, nullptr};
  QListWidget* list_ = panel_.findChild<QListWidget*>("presets");
};

using PresetsPanelList = PresetsTest;

TEST_F(PresetsPanelList, HasEveryPresetWithItsSummary) {
  const auto presets = Presets();
  ASSERT_EQ(list_->count(), static_cast<int>(presets.size()));
  for (int i = 0; i < list_->count(); ++i) {
    const Preset& preset = presets[static_cast<std::size_t>(i)];
    EXPECT_EQ(list_->item(i)->text().toStdString(), preset.summary);
    EXPECT_EQ(list_->item(i)->toolTip().toStdString(), "--preset " + preset.name);
  }
}

// City lights are the second.
TEST_F(PresetsPanelList, UsesOneByAClickOrEnterAsOneStepOfUndo) {
  document_.SetText("rotation", "30", "");
  QSignalSpy used(&panel_, &PresetsPanel::Used);
  QTest::mouseClick(list_->viewport(), Qt::LeftButton, {}, Middle(1));
  ASSERT_EQ(used.count(), 1);
  EXPECT_EQ(used[0][0].toString(), "city-lights");
  EXPECT_EQ(document_.TextOf("radius-x"), "7%");
  EXPECT_EQ(document_.TextOf("rotation"), "");
  EXPECT_EQ(document_.UndoStack()->count(), 2);

  QTest::keyClick(list_, Qt::Key_Down);
  QTest::keyClick(list_, Qt::Key_Return);
  EXPECT_EQ(document_.TextOf("radius-x"), "first~=4%; 75%~=0.6%; last=0%");
  EXPECT_EQ(document_.UndoStack()->count(), 3);
  document_.UndoStack()->setIndex(1);
  EXPECT_EQ(document_.TextOf("rotation"), "30");
}

TEST_F(PresetsPanelList, AsksForPicturesAndShowsThemWhenTheyAreThere) {
  std::map<std::string, Look> asked;
  panel_.AskForPictures([&](const std::string& name, const Look& look) { asked[name] = look; });
  EXPECT_EQ(asked.size(), Presets().size());
  EXPECT_EQ(asked["city-lights"].At("radius"), "7%");
  const QPoint picture = list_->visualItemRect(list_->item(1)).topLeft() + QPoint(40, 33);
  const auto shown = [&] { return list_->viewport()->grab().toImage().pixelColor(picture); };
  EXPECT_NE(shown(), QColor(Qt::green));

  QImage image(64, 36, QImage::Format_RGB32);
  image.fill(Qt::green);
  panel_.ShowPicture("city-lights", image);
  panel_.ShowPicture("no-such", image);

  EXPECT_EQ(shown(), QColor(Qt::green));
}

// A still says nothing of the shot whose times the preset counts in.
TEST_F(PresetsPanelList, TellsWhyOneCannotBeUsed) {
  document_.SetPicture(1000, 500, {});
  QSignalSpy refused(&panel_, &PresetsPanel::Refused);
  QTest::mouseClick(list_->viewport(), Qt::LeftButton, {}, Middle(2));
  ASSERT_EQ(refused.count(), 1);
  EXPECT_TRUE(refused[0][0].toString().startsWith("preset focus-pull: radius "))
      << refused[0][0].toString().toStdString();
  EXPECT_EQ(document_.CurrentLook(), Look());
}

}  // namespace
}  // namespace glimmerhost
