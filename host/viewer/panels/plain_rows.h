// SPDX-License-Identifier: BSD-3-Clause
// Rows for what is no number: one of some entries, a switch, a text.
#pragma once

#include <string>
#include <vector>

#include "host/viewer/panels/look_row.h"

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace glimmerhost {

// Its part is list.
class ListRow : public LookRow {
  Q_OBJECT

 public:
  ListRow(LookDocument* document, const Parameter& parameter, const QString& help, QWidget* parent);

  // Of a name that is no value; the first entry is what it has without a text.
  ListRow(LookDocument* document, const std::string& name, const QString& label,
          const std::vector<std::string>& entries, const QString& help, QWidget* parent);

 protected:
  void ShowValue(const RowFrame& frame) override;

 private:
  void AddList(const std::vector<std::string>& entries, const QString& label);

  QComboBox* list_;
};

// Its part is switch.
class SwitchRow : public LookRow {
  Q_OBJECT

 public:
  SwitchRow(LookDocument* document, const Parameter& parameter, const QString& help,
            QWidget* parent);

 protected:
  void ShowValue(const RowFrame& frame) override;

 private:
  QCheckBox* switch_;
};

// A text of the look: a file, a ratio. Its part is field, and choose where files can be chosen.
class TextRow : public LookRow {
  Q_OBJECT

 public:
  //   otherwise   what is said where there is no text: "that of the file"
  //   takesFiles  whether it is a picture's name
  TextRow(LookDocument* document, const std::string& name, const QString& label,
          const QString& otherwise, bool takesFiles, const QString& help, QWidget* parent);

 protected:
  void ShowValue(const RowFrame& frame) override;

 private:
  void Commit();
  void Choose();

  QString shown_;
  QLineEdit* field_;
};

}  // namespace glimmerhost
