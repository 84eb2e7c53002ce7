// SPDX-License-Identifier: BSD-3-Clause
// JobsPanel: what the window shows, rendered to disk by other processes, with what becomes of each
// frame.
#pragma once

#include <QString>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/looks/page.h"
#include "host/viewer/jobs/frame_table.h"
#include "host/viewer/jobs/job_input.h"
#include "host/viewer/jobs/render_job.h"
#include "host/viewer/jobs/standing_watch.h"

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QTableView;

namespace glimmerhost {

class FarmForm;
class OutputForm;

class JobsPanel : public QWidget {
  Q_OBJECT

 public:
  //   page     must outlive it
  //   input    says what the window shows now; it is asked when a render begins
  //   program  glimmerhost; empty to look for it beside this program
  JobsPanel(const Page& page, std::function<JobInput()> input, std::filesystem::path program = {},
            QWidget* parent = nullptr);
  ~JobsPanel() override;

  // Call when a file has been opened, and when the look has changed.
  void InputChanged();

  // The frame that is shown.
  void SetFrame(int frame);

  bool IsRunning() const { return job_.IsRunning(); }

  // The command that renders what is shown, as it is set here. Empty where it cannot be said, which
  // the panel tells then.
  QString CommandLine();

 public slots:
  void Start();
  void Cancel();

  // Onto the clipboard.
  void CopyCommandLine();

 signals:
  void RunningChanged(bool isRunning);

  // A person wants to see that frame.
  void FrameChosen(int frame);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  struct Command {
    RenderTarget target;
    std::vector<std::string> words;
    bool isSlurm = false;
  };

  void AlignLabels();
  void MakeButtons();
  void MakeTable();
  QWidget* MakeTold();
  std::filesystem::path Program() const;
  Command MakeCommand(const JobInput& input) const;
  bool Try(const std::function<void()>& act);
  void Refresh();
  void TakeFrame(const FrameReport& report);
  void ShowProgress();
  void ShowPace();
  void TakeEnd(const JobEnd& end);
  void Say(const QString& words, bool isBad);
  void ShowRunning();

  const Page& page_;
  std::function<JobInput()> input_;
  std::filesystem::path program_;
  OutputForm* output_;
  FarmForm* farm_;
  QPushButton* start_;
  QPushButton* cancel_;
  QPushButton* copy_;
  QProgressBar* bar_;
  QLabel* pace_;
  QLabel* message_;
  QTableView* view_;
  QPlainTextEdit* lines_;
  FrameTable table_;
  RenderJob job_;
  StandingWatch watch_;
  bool isSlurm_ = false;  // the job that runs, or ran last
};

}  // namespace glimmerhost
