// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/farm_form.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QStringList>
#include <utility>

#include "host/farm/farm_engine.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

enum By { kOneProcess, kProcesses, kSlurm };

constexpr int kMostFrames = 1000000;

}  // namespace

FarmForm::FarmForm(QWidget* parent)
    : QWidget(parent), form_(new QFormLayout(this)), by_(new QComboBox) {
  form_->setContentsMargins(0, 0, 0, 0);
  form_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  by_->setObjectName("renderBy");
  by_->addItem(tr("One process"));
  by_->addItem(tr("Several processes"));
  if (kHasSlurm) {
    by_->addItem(tr("Slurm jobs"));
  }
  by_->setAccessibleName(tr("Render by"));
  by_->setToolTip(
      tr("A frame takes all processors. Several processes are quicker where there are "
         "many processors and frames are small"));
  form_->addRow(tr("Render &by"), by_);
  const int processors = AllowedProcessors();
  processes_ = AddCount("farmProcesses", tr("Processes &at once"), QString(), 256,
                        tr("How many frames are in work at the same time"));
  processes_->setMinimum(1);
  processes_->setValue(2);
  threads_ =
      AddCount("farmThreads", tr("Processors &each"), tr("all"), processors > 0 ? processors : 256,
               tr("How many processors each process works on"));
  chunk_ = AddCount("farmChunk", tr("Frames in a c&hunk"), tr("as usual"), kMostFrames,
                    tr("The most frames that a process renders, one after the other"));
  sbatch_ = new QLineEdit;
  sbatch_->setObjectName("farmSbatch");
  sbatch_->setPlaceholderText("--partition=long --time=60");
  sbatch_->setAccessibleName(tr("Options of sbatch"));
  sbatch_->setToolTip(tr("Options of sbatch, with blanks between them"));
  form_->addRow(tr("sbatch opt&ions"), sbatch_);
  connect(sbatch_, &QLineEdit::textChanged, this, &FarmForm::Changed);
  connect(by_, &QComboBox::currentIndexChanged, this, &FarmForm::ShowRows);
  ShowRows();
}

QSpinBox* FarmForm::AddCount(const char* name, const QString& label, const QString& usual,
                             int highest, const QString& help) {
  auto* const box = new QSpinBox;
  box->setObjectName(name);
  box->setRange(0, highest);
  box->setSpecialValueText(usual);
  box->setAccessibleName(QString(label).remove('&'));
  box->setToolTip(help);
  form_->addRow(label, box);
  connect(box, &QSpinBox::valueChanged, this, &FarmForm::Changed);
  return box;
}

void FarmForm::ShowRows() {
  const int by = by_->currentIndex();
  const std::pair<QWidget*, bool> rows[] = {{processes_, by == kProcesses},
                                            {threads_, by != kOneProcess},
                                            {chunk_, by != kOneProcess},
                                            {sbatch_, by == kSlurm}};
  for (const auto& [field, isShown] : rows) {
    field->setVisible(isShown);
    form_->labelForField(field)->setVisible(isShown);
  }
  emit Changed();
}

std::optional<FarmTarget> FarmForm::Farm() const {
  if (by_->currentIndex() == kOneProcess) {
    return std::nullopt;
  }
  FarmTarget farm;
  farm.isSlurm = by_->currentIndex() == kSlurm;
  farm.processes = processes_->value();
  farm.threads = threads_->value();
  farm.chunk = chunk_->value();
  if (farm.isSlurm) {
    for (const QString& option : sbatch_->text().split(' ', Qt::SkipEmptyParts)) {
      farm.sbatch.push_back(option.toStdString());
    }
  }
  return farm;
}

}  // namespace glimmerhost
