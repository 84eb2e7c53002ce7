// SPDX-License-Identifier: BSD-3-Clause
// The whole window, as a person has it before them: on no screen, with a hand that presses and
// types.
#pragma once

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTest>
#include <memory>
#include <string>

#include "host/viewer/picture/picture_view.h"
#include "host/viewer/window/main_window.h"
#include "tests/host/viewer/window/viewing_stage.h"

namespace viewer_test {

class WindowStage {
 public:
  explicit WindowStage(glimmerhost::Trace* trace = nullptr)
      : module(std::make_shared<const glimmerhost::EffectModule>(
            glimmerhost::ModuleChoice{fs::path(MODULE_FOLDER) / "fast" / MODULE_NAME,
                                      lx::FindFootprint("fast")},
            trace)) {
    window = std::make_unique<glimmerhost::MainWindow>(
        page, module, glimmerhost::WindowPlaces{PROGRAM, scratch / "state"});
    window->resize(1700, 1000);
    window->show();
    view = window->findChild<glimmerhost::PictureView*>();
    document = window->Document();
    viewing = window->Shown();
  }

  // Until the true frame of what is set is on the screen.
  bool Settle() {
    return WaitUntil(viewing, &glimmerhost::Viewing::StateChanged,
                     [this] { return viewing->Loaded() && viewing->IsSettled(); });
  }

  bool Open(const std::string& name) {
    QSignalSpy opened(viewing, &glimmerhost::Viewing::Opened);
    window->Open(QString::fromStdString(name));
    return (opened.count() > 0 || opened.wait(60000)) && Settle();
  }

  // A part of a row of the page: "field" of "PRM_Emphasis".
  template <class Part>
  Part* PartOf(const std::string& row, const char* part) {
    auto* const widget = window->findChild<QWidget*>(QString::fromStdString(row));
    return widget == nullptr ? nullptr : widget->findChild<Part*>(part);
  }

  // Types a number, or chooses an entry.
  void TypeInto(const std::string& row, const std::string& text) {
    const QString wanted = QString::fromStdString(text);
    if (auto* const list = PartOf<QComboBox>(row, "list")) {
      const int entry = list->findText(wanted);
      ASSERT_GE(entry, 0) << text;
      list->setFocus();
      // Its first letter goes straight to the entry, where arrow keys would try those on the way.
      QTest::keyClick(list, text.front());
      ASSERT_EQ(list->currentIndex(), entry) << text;
      return;
    }
    auto* const field = PartOf<QLineEdit>(row, "field");
    ASSERT_NE(field, nullptr) << row;
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, wanted);
    QTest::keyClick(field, Qt::Key_Return);
  }

  // The mouse, in pixels of the screen from the picture's corner. A point between two is given as
  // it is: tests of sessions have such.
  void Mouse(QEvent::Type type, QPointF fromCorner, Qt::MouseButton button = Qt::LeftButton) {
    const QPointF at = fromCorner + QPointF(view->Corner());
    const bool isHeld = type != QEvent::MouseButtonRelease;
    QMouseEvent event(type, at, view->mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : button,
                      isHeld ? Qt::MouseButtons(button) : Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &event);
  }

  glimmerhost::Page page = glimmerhost::Page::Load(PAGE);
  lx_test::ScratchFolder scratch;
  std::shared_ptr<const glimmerhost::EffectModule> module;
  std::unique_ptr<glimmerhost::MainWindow> window;
  glimmerhost::PictureView* view;
  glimmerhost::LookDocument* document;
  glimmerhost::Viewing* viewing;
};

}  // namespace viewer_test
