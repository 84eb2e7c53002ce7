// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/page_panel.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QToolButton>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/viewer/panels/row_button.h"
#include "tests/host/viewer/panels/panel_stage.h"
#include "tests/support/scratch_folder.h"

namespace glimmerhost {
namespace {

using lx_test::PanelTest;
using PagePanelRows = PanelTest;
using PagePanelTexts = PanelTest;
using PagePanelKeyframes = PanelTest;
using PagePanelWidgets = PanelTest;

TEST_F(PagePanelRows, AreThoseOfThePageWithItsWords) {
  for (const Parameter& parameter : page_.Parameters()) {
    QWidget* row = Row(parameter.key.c_str());
    ASSERT_NE(row, nullptr) << parameter.key;
    EXPECT_EQ(row->accessibleName().toStdString(), parameter.label);
  }
  EXPECT_TRUE(Row("PRM_Sides")->toolTip().contains("--sides"));
  EXPECT_TRUE(Row("PRM_Sides")->toolTip().contains("Polygon: sides, 3 to 50 (default 6)"));
  EXPECT_TRUE(Row("PRM_Center_X")->toolTip().contains("--center"));
  const auto* shape = PartOf<QComboBox>("PRM_Shape", "list");
  ASSERT_EQ(shape->count(), 4);
  EXPECT_EQ(shape->itemText(2), "polygon");
  for (const char* name : {"spread", "mix", "alpha", "pixel-aspect", "shot"}) {
    EXPECT_NE(Row(name), nullptr) << name;
  }
}

// In the order of the options, group by group.
TEST_F(PagePanelRows, StandGroupByGroup) {
  ShowShape('C');
  const auto top = [&](const char* name) { return Row(name)->mapTo(&panel_, QPoint(0, 0)).y(); };
  EXPECT_LT(top("PRM_Shape"), top("PRM_RadiusX"));
  EXPECT_LT(top("PRM_RadiusX"), top("PRM_RadiusY"));
  EXPECT_LT(top("PRM_Rotation"), top("PRM_Emphasis"));
  EXPECT_LT(top("PRM_Emphasis"), top("PRM_Precision"));
  EXPECT_LT(top("PRM_Precision"), top("mix"));
}

TEST_F(PagePanelRows, AreHiddenGreyAndNotedAsTheModuleSays) {
  ShowShape('C', {{"PRM_Match_A", true}});
  EXPECT_TRUE(Row("PRM_Sides")->isVisible());
  EXPECT_FALSE(Row("PRM_RadiusPSF1")->isVisible());
  EXPECT_FALSE(Row("spread")->isVisible());
  EXPECT_FALSE(Row("PRM_RadiusY")->isEnabled());
  EXPECT_TRUE(Row("PRM_RadiusX")->isEnabled());
  EXPECT_EQ(PartOf<QLabel>("PRM_RadiusY", "note")->text(), "It is as high as it is wide");
  EXPECT_TRUE(PartOf("PRM_RadiusY", "note")->isVisible());

  ShowShape('D');
  EXPECT_FALSE(Row("PRM_Sides")->isVisible());
  EXPECT_TRUE(Row("PRM_RadiusPSF1")->isVisible());
  EXPECT_TRUE(Row("spread")->isVisible());
  ShowShape('C', {{"PRM_Match_B", true}});
  EXPECT_TRUE(Row("PRM_RadiusY")->isEnabled());
  EXPECT_FALSE(PartOf("PRM_RadiusY", "note")->isVisible());
}

TEST_F(PagePanelRows, KeepTheFocusAndTheirPlaceWhenOthersComeAndGo) {
  panel_.resize(360, 260);
  ShowShape('A');
  auto* field = PartOf<QLineEdit>("PRM_Emphasis", "field");
  auto* scroll = panel_.findChild<QScrollArea*>("pageScroll");
  field->setFocus();
  scroll->ensureWidgetVisible(field);
  QCoreApplication::processEvents();
  const int place = field->mapTo(&panel_, QPoint(0, 0)).y();

  ShowShape('C');
  EXPECT_TRUE(field->hasFocus());
  EXPECT_EQ(field->mapTo(&panel_, QPoint(0, 0)).y(), place);
  EXPECT_GT(scroll->verticalScrollBar()->value(), 0);
  ShowShape('D');
  EXPECT_TRUE(field->hasFocus());
  EXPECT_EQ(field->mapTo(&panel_, QPoint(0, 0)).y(), place);
}

TEST(PagePanelOfAnotherPage, HasARowForEveryParameterThatItDescribes) {
  const lx_test::ScratchFolder folder;
  std::ifstream known(PAGE);
  std::ofstream(folder / "page.toml")
      << std::string(std::istreambuf_iterator<char>(known), {})
      << "\n[[parameter]]\nkey = \"PRM_Haze\"\noption = \"--haze\"\nvalue = \"NUMBER\"\n"
         "group = \"Highlights\"\nhelp = \"How much haze\"\nlabel = \"Haze & glow\"\n"
         "kind = \"number\"\ndefault = 2\nrange = [0, 8]\n";
  const Page page = Page::Load(folder / "page.toml");
  LookDocument document(page, nullptr);
  PagePanel panel(page, &document, nullptr);

  auto* row = panel.findChild<QWidget*>("PRM_Haze");
  ASSERT_NE(row, nullptr);
  EXPECT_EQ(row->findChild<QLabel*>("label")->text(), "Haze & glow");
  auto* field = row->findChild<QLineEdit*>("field");
  EXPECT_EQ(field->text(), "2");
  field->selectAll();
  QTest::keyClicks(field, "3.5");
  QTest::keyClick(field, Qt::Key_Return);

  EXPECT_EQ(document.TextOf("haze"), "3.5");
  EXPECT_EQ(document.ValuesAt(1).at("PRM_Haze"), Value(3.5));
}

TEST_F(PagePanelTexts, TypedAreStoredAsTheCommandLineStoresThem) {
  ShowShape('D');
  const struct {
    const char* row;
    const char* text;
    const char* name;
  } typed[] = {{"PRM_RadiusPSF1", "40px", "radius-psf1"},
               {"PRM_RadiusPSF2", "4%", "radius-psf2"},
               {"PRM_Center_X", "100px,50px", "center"},
               {"PRM_Emphasis", "400", "emphasis"},
               {"mix", "0.5", "mix"},
               {"spread", "disc.png", "spread"},
               {"pixel-aspect", "16:15", "pixel-aspect"},
               {"shot", "1-20", "shot"}};
  Look look;
  for (const auto& one : typed) {
    Type(one.row, one.text);
    look[one.name] = one.text;
  }
  EXPECT_EQ(document_.CurrentLook(), look);
  EXPECT_EQ(document_.ValuesAt(1), StillValues(page_, {{"--", look}}, 1000, 500));
}

TEST_F(PagePanelTexts, OfHalfAPointLeaveTheOtherHalf) {
  ShowShape('D');
  Type("PRM_Center_X", "250px");
  Type("PRM_Center_Y", "20%");
  EXPECT_EQ(document_.TextOf("center"), "0.25,0.2");
  Type("PRM_Center_Y", "99px");
  EXPECT_EQ(NumberAt("PRM_Center_Y", 1), 400.0 / 500.0);
  Type("PRM_Center_Y", "middle");
  EXPECT_EQ(
      PartOf<QLabel>("PRM_Center_Y", "error")
          ->text()
          .toStdString()
          .find("center must be a fraction (0.5), a percentage (50%) or pixels from the top left "
                "(100px), or both numbers as X,Y, not middle"),
      4U);
  Type("PRM_Center_X", "1=0,0; last=1,1");
  EXPECT_EQ(document_.TextOf("center"), "1=0,0; last=1,1");
}

TEST_F(PagePanelTexts, ThatAreRefusedLeaveTheValueAndSayWhy) {
  ShowShape('C');
  Type("PRM_Sides", "5");
  Type("PRM_Sides", "2");
  auto* error = PartOf<QLabel>("PRM_Sides", "error");
  EXPECT_TRUE(error->isVisible());
  EXPECT_TRUE(error->text().contains("sides must be a whole number from 3 to 50, not 2"));
  EXPECT_EQ(TextIn("PRM_Sides"), "2");
  EXPECT_EQ(NumberAt("PRM_Sides", 1), 5.0);
  EXPECT_EQ(document_.UndoStack()->count(), 1);

  QTest::keyClick(PartOf("PRM_Sides", "field"), Qt::Key_Escape);
  EXPECT_FALSE(error->isVisible());
  EXPECT_EQ(TextIn("PRM_Sides"), "5");
  Type("PRM_Sides", "2");
  Type("PRM_Sides", "7");
  EXPECT_FALSE(error->isVisible());
  EXPECT_EQ(NumberAt("PRM_Sides", 1), 7.0);
}

TEST_F(PagePanelTexts, ThatAreBeingTypedStayWhileOthersChange) {
  const struct {
    const char* row;
    const char* name;
    const char* other;
    const char* shown;
  } typed[] = {{"PRM_Emphasis", "emphasis", "7", "7"},
               {"pixel-aspect", "pixel-aspect", "2:1", "2:1"}};
  for (const auto& one : typed) {
    auto* field = PartOf<QLineEdit>(one.row, "field");
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, "12");
    document_.SetText("sides", one.row == typed[0].row ? "5" : "6", "");
    EXPECT_EQ(field->text(), "12");
    document_.SetText(one.name, one.other, "");
    EXPECT_EQ(field->text(), one.shown);
  }
}

TEST_F(PagePanelTexts, ThatAreLeftEmptyChangeNothing) {
  Type("PRM_Emphasis", "20");
  auto* field = PartOf<QLineEdit>("PRM_Emphasis", "field");
  field->clear();
  QTest::keyClicks(field, " ");
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(field->text(), "20");
  EXPECT_EQ(document_.TextOf("emphasis"), "20");
}

TEST_F(PagePanelTexts, AreInTheUnitThatIsChosen) {
  document_.SetText("radius-x", "0.04", "");
  EXPECT_EQ(TextIn("PRM_RadiusX"), "20px");
  QTest::mouseClick(panel_.findChild<QToolButton*>("unitPercent"), Qt::LeftButton);
  EXPECT_EQ(TextIn("PRM_RadiusX"), "4%");
  QTest::mouseClick(panel_.findChild<QToolButton*>("unitPart"), Qt::LeftButton);
  EXPECT_EQ(TextIn("PRM_RadiusX"), "0.04");
  EXPECT_EQ(TextIn("PRM_Emphasis"), "1");
  panel_.SetUnit(RadiusUnit::kPixels);
  EXPECT_EQ(TextIn("PRM_RadiusX"), "20px");
  document_.SetPicture(2000, 500, {1, 11});
  EXPECT_EQ(TextIn("PRM_RadiusX"), "40px");
}

TEST_F(PagePanelTexts, OfOneThirdAreShortAndExactBesideIt) {
  document_.SetValues({{"PRM_Rotation", 1.0 / 3.0}}, 1, "", 0);
  EXPECT_EQ(TextIn("PRM_Rotation"), "0.333333");
  EXPECT_TRUE(PartOf("PRM_Rotation", "field")->toolTip().contains("0.3333333333333333"));
}

TEST_F(PagePanelTexts, ComeFromListsAndSwitches) {
  ShowShape('C');
  auto* shape = PartOf<QComboBox>("PRM_Shape", "list");
  shape->setFocus();
  QTest::keyClick(shape, Qt::Key_Down);
  QTest::keyClick(shape, Qt::Key_Down);
  EXPECT_EQ(document_.TextOf("shape"), "polygon");
  QTest::keyClick(PartOf("PRM_Match", "switch"), Qt::Key_Space);
  EXPECT_EQ(document_.TextOf("match"), "on");
  QTest::keyClick(PartOf("PRM_Precision", "switch"), Qt::Key_Space);
  EXPECT_EQ(document_.CurrentLook().set, std::vector<std::string>{"PRM_Precision=on"});
  QTest::keyClick(PartOf("alpha", "list"), Qt::Key_Down);
  EXPECT_EQ(document_.TextOf("alpha"), "as-is");

  document_.UndoStack()->setIndex(0);
  EXPECT_EQ(shape->currentText(), "circle");
  EXPECT_FALSE(PartOf<QCheckBox>("PRM_Match", "switch")->isChecked());
}

TEST_F(PagePanelTexts, AreResetOneByOneAndAllAtOnce) {
  EXPECT_FALSE(PartOf("PRM_Emphasis", "reset")->isEnabled());
  Type("PRM_Emphasis", "20");
  Type("PRM_RadiusX", "20px");
  Type("spread", "disc.png");
  QTest::mouseClick(PartOf("PRM_Emphasis", "reset"), Qt::LeftButton);
  EXPECT_EQ(document_.TextOf("emphasis"), "");
  EXPECT_EQ(TextIn("PRM_Emphasis"), "1");
  EXPECT_EQ(document_.TextOf("radius-x"), "20px");
  QTest::mouseClick(panel_.findChild<QPushButton*>("resetAll"), Qt::LeftButton);
  EXPECT_EQ(document_.CurrentLook(), Look());
  EXPECT_EQ(TextIn("spread"), "");
  document_.UndoStack()->undo();
  EXPECT_EQ(TextIn("spread"), "disc.png");
}

TEST_F(PagePanelKeyframes, AreSetAndRemovedByTheButtonBesideAValue) {
  Type("PRM_RadiusX", "20px");
  auto* button = PartOf<RowButton>("PRM_RadiusX", "keyframe");
  EXPECT_EQ(button->State(), KeyState::kNone);
  panel_.SetFrame(3);
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(document_.TextOf("radius-x"), "3=20px");
  EXPECT_EQ(button->State(), KeyState::kHere);
  panel_.SetFrame(5);
  EXPECT_EQ(button->State(), KeyState::kElsewhere);
  Type("PRM_RadiusX", "40px");
  EXPECT_EQ(document_.TextOf("radius-x"), "3=20px; 5=40px");
  EXPECT_EQ(button->State(), KeyState::kHere);
  panel_.SetFrame(4);
  EXPECT_EQ(TextIn("PRM_RadiusX"), "30px");
  panel_.SetFrame(5);
  QTest::keyClick(button, Qt::Key_Space);
  panel_.SetFrame(3);
  QTest::keyClick(button, Qt::Key_Space);
  EXPECT_EQ(document_.TextOf("radius-x"), "20px");
  EXPECT_FALSE(PartOf("spread", "keyframe")->isVisible());
}

TEST_F(PagePanelWidgets, OfTheModuleArePressedByTheirKeys) {
  dialog_.addButton(u"Close", u"KEY_Close", {}, u"Close Colour Box");
  dialog_.addColourBox(u"Box", u"KEY_Box", {}, quantel::cColour::kWhite);
  dialog_.setWidgetVisible(u"Box", false);
  ShowShape('A');
  auto* button = panel_.findChild<QPushButton*>("Close");
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(button->text(), "Close Colour Box");
  EXPECT_FALSE(panel_.findChild<QPushButton*>("Box")->isVisible());
  button->setFocus();
  QSignalSpy pressed(&panel_, &PagePanel::WidgetPressed);

  QTest::keyClick(button, Qt::Key_Space);

  ASSERT_EQ(pressed.count(), 1);
  EXPECT_EQ(pressed[0][0].toString(), "KEY_Close");
  dialog_.setWidgetVisible(u"Box", true);
  ShowShape('A');
  EXPECT_EQ(panel_.findChild<QPushButton*>("Close"), button);
  EXPECT_TRUE(button->hasFocus());
  EXPECT_TRUE(panel_.findChild<QPushButton*>("Box")->isVisible());
  dialog_.addButton(u"More", u"KEY_More", {}, u"More");
  ShowShape('A');
  EXPECT_TRUE(panel_.findChild<QPushButton*>("More")->isVisible());
  EXPECT_EQ(panel_.findChildren<QPushButton*>("Close").size(), 1);
}

}  // namespace
}  // namespace glimmerhost
