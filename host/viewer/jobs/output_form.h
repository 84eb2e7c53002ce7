// SPDX-License-Identifier: BSD-3-Clause
// OutputForm: what is rendered to disk, where, and how it is kept.
#pragma once

#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/support/newest_worker.h"
#include "host/viewer/jobs/job_input.h"
#include "host/viewer/jobs/output_choices.h"
#include "host/viewer/jobs/render_words.h"
#include "host/viewer/support/doorbell.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QToolButton;

namespace glimmerhost {

class OutputForm : public QWidget {
  Q_OBJECT

 public:
  explicit OutputForm(QWidget* parent = nullptr);
  ~OutputForm() override;

  // Another input: its frames can be chosen, and a name for the output is proposed where nobody has
  // typed one.
  void SetInput(const JobInput& input);

  // The frame that is shown.
  void SetFrame(int frame);

  // What is chosen. Throws UsageError for a list of frames that is none and for an output without a
  // name.
  RenderTarget Target() const;

  // The first widget of the keyboard's order.
  QWidget* FirstWidget() const;

 signals:
  void Changed();

  // What can be chosen is that of the output's ending now.
  void ChoicesKnown();

 private:
  struct Box;

  QWidget* MakeOutput();
  QWidget* MakeCoding();
  QWidget* MakeFrames();
  void Propose();
  void Browse();
  void AskChoices();
  void TakeChoices();
  void ShowQuality();
  void ShowFrames();
  std::vector<int> Frames() const;
  void Tell(QWidget* field, const QString& name, const QString& help);

  QLineEdit* output_ = nullptr;
  QToolButton* browse_ = nullptr;
  QLabel* format_ = nullptr;
  QComboBox* bits_ = nullptr;
  QComboBox* compression_ = nullptr;
  QSpinBox* quality_ = nullptr;
  QComboBox* precision_ = nullptr;
  QComboBox* engine_ = nullptr;
  QComboBox* frames_ = nullptr;
  QLineEdit* list_ = nullptr;
  QComboBox* existing_ = nullptr;
  QCheckBox* keepGoing_ = nullptr;

  JobInput input_;
  bool isShot_ = false;
  int frame_ = 1;
  bool isTyped_ = false;  // the output's name, by a person
  OutputChoices choices_;

  Doorbell bell_;
  std::shared_ptr<Box> box_;
  std::unique_ptr<NewestWorker<std::string>> asker_;
};

}  // namespace glimmerhost
