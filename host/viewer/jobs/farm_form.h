// SPDX-License-Identifier: BSD-3-Clause
// FarmForm: by which processes a shot is rendered: one, several on this machine, or Slurm's.
#pragma once

#include <QWidget>
#include <optional>

#include "host/viewer/jobs/render_words.h"

class QComboBox;
class QFormLayout;
class QLineEdit;
class QSpinBox;

namespace glimmerhost {

class FarmForm : public QWidget {
  Q_OBJECT

 public:
  explicit FarmForm(QWidget* parent = nullptr);

  // None for one process.
  std::optional<FarmTarget> Farm() const;

 signals:
  void Changed();

 private:
  QSpinBox* AddCount(const char* name, const QString& label, const QString& usual, int highest,
                     const QString& help);
  void ShowRows();

  QFormLayout* form_;
  QComboBox* by_;
  QSpinBox* processes_;
  QSpinBox* threads_;
  QSpinBox* chunk_;
  QLineEdit* sbatch_;
};

}  // namespace glimmerhost
