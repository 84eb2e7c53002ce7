// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/page_view.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace {

using glimmerhost::Page;
using glimmerhost::PageRow;
using glimmerhost::RowKind;
using glimmerhost::Value;

// The page after the module has set its switches for a shape (0 circle to 3 image) and for
// match.
class PageView : public testing::Test {
 public:
  std::vector<PageRow> Rows(int shape, bool match) {
    auto values = page.Defaults();
    values["PRM_Shape"] = shape;
    values["PRM_Match"] = match;
    for (int letter = 0; letter < 4; ++letter) {
      values[std::string("PRM_Shape_") + static_cast<char>('A' + letter)] = letter == shape;
    }
    values["PRM_Match_A"] = match;
    values["PRM_Match_B"] = !match;
    return PageRows(page, values, dialog);
  }

  static std::set<std::string> Names(const std::vector<PageRow>& rows, bool PageRow::*state) {
    std::set<std::string> names;
    for (const PageRow& row : rows) {
      if (row.*state) {
        names.insert(row.name.substr(4));
      }
    }
    return names;
  }

  const Page page = Page::Load(PAGE);
  glimmerhost::Dialog dialog;
};

using Set = std::set<std::string>;

TEST_F(PageView, ShowsWhatBelongsToTheShape) {
  const Set always = {"Shape", "Emphasis", "EmphAlpha", "Precision"};
  const auto with = [&](Set more) {
    more.insert(always.begin(), always.end());
    return more;
  };

  EXPECT_EQ(with({"RadiusX"}), Names(Rows(0, false), &PageRow::shown));
  EXPECT_EQ(with({"RadiusX", "RadiusY", "Rotation"}), Names(Rows(1, false), &PageRow::shown));
  EXPECT_EQ(with({"RadiusX", "RadiusY", "Rotation", "Sides", "Match"}),
            Names(Rows(2, false), &PageRow::shown));
  EXPECT_EQ(with({"Center_X", "Center_Y", "RadiusPSF1", "RadiusPSF2"}),
            Names(Rows(3, false), &PageRow::shown));
}

TEST_F(PageView, LocksTheHeightOfAMatchedPolygonAndSaysWhy) {
  struct Case {
    int shape;
    bool match;
    bool enabled;
    const char* note;
  };
  for (const Case& c : {Case{1, false, true, ""}, Case{1, true, true, ""}, Case{2, false, true, ""},
                        Case{2, true, false, "It is as high as it is wide"}}) {
    const PageRow row = Rows(c.shape, c.match)[3];
    ASSERT_EQ("PRM_RadiusY", row.name);
    EXPECT_EQ(c.enabled, row.enabled) << c.shape << c.match;
    EXPECT_EQ(c.note, row.note) << c.shape << c.match;
  }
}

TEST_F(PageView, GivesValuesWithTheirOfferedRange) {
  const auto rows = Rows(2, true);

  EXPECT_EQ("polygon", rows[0].value);
  EXPECT_EQ("circle, ellipse, polygon or image", rows[0].range);
  EXPECT_EQ("on", rows[1].value);
  EXPECT_EQ("on or off", rows[1].range);
  EXPECT_EQ("6", rows[4].value);
  EXPECT_EQ("3 to 50", rows[4].range);
}

TEST_F(PageView, RoundsWhatWasAFloat) {
  auto values = page.Defaults();
  values["PRM_RadiusX"] = static_cast<double>(0.1F);

  EXPECT_EQ("0.1", PageRows(page, values, dialog)[2].value);
}

TEST_F(PageView, EndsWithTheModulesWidgets) {
  dialog.addButton(u"W1", u"K1", {}, u"Press me");
  dialog.addColourBox(u"W2", u"K2", {}, quantel::cColour::kWhite);
  dialog.setWidgetVisible(u"W1", false);
  dialog.addColourBox(u"W2", u"K2", {}, quantel::cColour::kWhite);  // once more

  const auto rows = Rows(0, false);

  ASSERT_EQ(15U, rows.size());
  EXPECT_EQ("W1", rows[13].name);
  EXPECT_EQ("Press me", rows[13].label);
  EXPECT_FALSE(rows[13].shown);
  EXPECT_EQ("Colour box", rows[14].label);
  EXPECT_TRUE(rows[14].shown);
}

// By the name alone nobody could press a button: the module knows its key.
TEST_F(PageView, TellsWhatEachRowIsAndWhatTheModuleIsToldOf) {
  dialog.addButton(u"W1", u"K1", {}, u"Press me");
  dialog.addColourBox(u"W2", u"K2", {}, quantel::cColour::kWhite);

  const auto rows = Rows(0, false);

  ASSERT_EQ(15U, rows.size());
  EXPECT_EQ(RowKind::kParameter, rows[0].kind);
  EXPECT_EQ("PRM_Shape", rows[0].key);
  EXPECT_EQ(RowKind::kButton, rows[13].kind);
  EXPECT_EQ("K1", rows[13].key);
  EXPECT_EQ(RowKind::kColourBox, rows[14].kind);
  EXPECT_EQ("K2", rows[14].key);
}

TEST_F(PageView, GivesTheTextOfAValueBeforeItIsInTheStore) {
  EXPECT_EQ("0.333333", PageText(page.Find("PRM_RadiusX"), 1.0 / 3.0));
  EXPECT_EQ("polygon", PageText(page.Find("PRM_Shape"), 2));
  EXPECT_EQ("off", PageText(page.Find("PRM_Match"), false));
}

TEST_F(PageView, PrintsRowsInColumns) {
  std::ostringstream out;

  glimmerhost::PrintPage({{"A", "Long label", "1", "0 to 10", true, false, "a note", "A"},
                          {"B", "B", "22", "", false, true, "", "B"},
                          {"C", "Press me", "", "", true, true, "", "K", RowKind::kButton}},
                         out);

  EXPECT_EQ(
      "Long label  1   0 to 10  shown   disabled\n"
      "  a note\n"
      "B           22           hidden  enabled\n"
      "[Press me]               shown   enabled\n",
      out.str());
}

}  // namespace
