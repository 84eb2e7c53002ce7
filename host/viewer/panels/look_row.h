// SPDX-License-Identifier: BSD-3-Clause
// LookRow: one row of the page's panel: a label, what sets the value, a keyframe button, a reset
// button, and below them a note of the page and the words in which a typed text was refused.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <string>

#include "host/looks/page.h"
#include "host/viewer/panels/look_document.h"
#include "host/viewer/panels/row_button.h"

class QBoxLayout;
class QLabel;

namespace glimmerhost {

// What all rows of a panel show.
struct RowFrame {
  int frame = 1;
  FrameValues values;
};

class LookRow : public QWidget {
  Q_OBJECT

 public:
  // The row's objectName is its key, or its name where it has none; those of its parts are label,
  // keyframe, reset, note and error.
  //   key   of the store, or kMix; empty for what is no value
  //   name  of what has no key; else empty
  //   help  shown for all parts of the row, as rich text
  LookRow(LookDocument* document, std::string key, const std::string& name, const QString& label,
          const QString& help, QWidget* parent);

  // Shows the look as it is now.
  void Show(const RowFrame& frame);

  void ShowNote(const QString& note);
  void ShowLabel(const QString& label);

 protected:
  // Called by Show.
  virtual void ShowValue(const RowFrame& frame) = 0;

  // What the row edits now, in the texts of the look.
  std::string Name() const;
  const std::string& Key() const { return key_; }
  LookDocument* Document() const { return document_; }
  int Frame() const { return frame_; }
  const QString& Help() const { return help_; }
  QString What() const;

  // Edits the look. Where it is refused, the row says so, and false is returned.
  bool Try(const std::function<void()>& edit);
  void ClearError();

  // Puts what sets the value between the label and the buttons. With a label in it, of a check box,
  // the row has none of its own.
  void AddControl(QWidget* control, int stretch);
  void HideLabel();

  // Names a part for tests, and for who does not see it.
  void NamePart(QWidget* part, const char* name, const QString& accessibleName);

 private:
  void AddButtons();
  void ShowKeyframes();
  void ToggleKeyframe();

  LookDocument* document_;
  std::string key_;
  std::string name_;
  QString help_;
  int frame_ = 1;
  QLabel* label_;
  QBoxLayout* controls_;
  RowButton* keyframe_;
  RowButton* reset_;
  QLabel* note_;
  QLabel* error_;
};

// An option's help, as rich text: its name and what --help says of it.
QString HelpOf(const PageOption& option);

}  // namespace glimmerhost
