// SPDX-License-Identifier: BSD-3-Clause
// A page, a document and a panel over them, for tests of what stands in its rows.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QLineEdit>
#include <QTest>
#include <map>
#include <string>

#include "host/viewer/panels/page_panel.h"

namespace lx_test {

inline const glimmerhost::Page& ThePage() {
  static const glimmerhost::Page page = glimmerhost::Page::Load(PAGE);
  return page;
}

class PanelTest : public testing::Test {
 protected:
  explicit PanelTest(const glimmerhost::Page& page = ThePage())
      : page_(page), document_(page, nullptr), panel_(page, &document_, nullptr) {
    document_.SetPicture(1000, 500, {1, 11});
    panel_.resize(360, 700);
    panel_.show();
    panel_.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&panel_));
  }

  // The rows for a shape's letter, with the switches that a module sets for it.
  void ShowShape(char letter, std::map<std::string, glimmerhost::Value> more = {}) {
    std::map<std::string, glimmerhost::Value> store = document_.ValuesAt(1);
    store[std::string("PRM_Shape_") + letter] = true;
    store.merge(more);
    panel_.ShowRows(glimmerhost::PageRows(page_, store, dialog_), store);
    QCoreApplication::processEvents();
  }

  QWidget* Row(const char* name) { return panel_.findChild<QWidget*>(name); }

  template <class Part = QWidget>
  Part* PartOf(const char* row, const char* part) {
    return Row(row)->template findChild<Part*>(part);
  }

  // As a person does: over what stands there, and then Enter.
  void Type(const char* row, const QString& text) {
    auto* field = PartOf<QLineEdit>(row, "field");
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
  }

  QString TextIn(const char* row) { return PartOf<QLineEdit>(row, "field")->text(); }

  double NumberAt(const char* key, int frame) {
    return std::get<double>(document_.ValuesAt(frame).at(key));
  }

  const glimmerhost::Page& page_;
  glimmerhost::LookDocument document_;
  glimmerhost::PagePanel panel_;
  glimmerhost::Dialog dialog_;
};

}  // namespace lx_test
