// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/jobs_panel.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QStandardPaths>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "host/support/utf8_path.h"
#include "host/viewer/jobs/farm_form.h"
#include "host/viewer/jobs/host_program.h"
#include "host/viewer/jobs/output_form.h"
#include "host/viewer/jobs/render_words.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// What a process says is kept to so many lines.
constexpr int kMostLines = 2000;

QString Clock(double seconds) {
  const auto whole = static_cast<qint64>(std::lround(std::min(seconds, 1e9)));
  const QString rest = QString("%1:%2")
                           .arg(whole / 60 % 60, whole < 3600 ? 1 : 2, 10, QChar('0'))
                           .arg(whole % 60, 2, 10, QChar('0'));
  return whole < 3600 ? rest : QString("%1:%2").arg(whole / 3600).arg(rest);
}

// As a person calls it in a terminal: by its name, where that leads to this very file.
std::string CalledAs(const fs::path& program) {
  const QString found =
      QStandardPaths::findExecutable(QString::fromStdString(program.stem().string()));
  std::error_code error;
  const bool isThis =
      !found.isEmpty() && fs::equivalent(Utf8Path(found.toStdString()), program, error);
  return isThis ? program.stem().string() : program.string();
}

}  // namespace

JobsPanel::JobsPanel(const Page& page, std::function<JobInput()> input, fs::path program,
                     QWidget* parent)
    : QWidget(parent),
      page_(page),
      input_(std::move(input)),
      program_(std::move(program)),
      output_(new OutputForm),
      farm_(new FarmForm),
      start_(new QPushButton(tr("&Render"))),
      cancel_(new QPushButton(tr("&Cancel"))),
      copy_(new QPushButton(tr("Cop&y command"))),
      bar_(new QProgressBar),
      pace_(new QLabel),
      message_(new QLabel),
      view_(new QTableView),
      lines_(new QPlainTextEdit),
      table_(this),
      job_(this),
      watch_(page, this) {
  setObjectName("jobsPanel");
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(output_);
  layout->addWidget(farm_);
  MakeButtons();
  auto* const buttons = new QHBoxLayout;
  buttons->addWidget(start_);
  buttons->addWidget(cancel_);
  buttons->addStretch(1);
  buttons->addWidget(copy_);
  layout->addLayout(buttons);
  layout->addWidget(bar_);
  layout->addWidget(pace_);
  layout->addWidget(message_);
  layout->addWidget(MakeTold(), 1);
  AlignLabels();
  setFocusProxy(output_->FirstWidget());

  connect(output_, &OutputForm::Changed, this, &JobsPanel::Refresh);
  connect(farm_, &FarmForm::Changed, this,
          [this] { start_->setText(farm_->Farm() ? tr("Submi&t") : tr("&Render")); });
  connect(&job_, &RenderJob::FrameTold, this, &JobsPanel::TakeFrame);
  connect(&job_, &RenderJob::LineSaid, lines_, &QPlainTextEdit::appendPlainText);
  connect(&job_, &RenderJob::Ended, this, &JobsPanel::TakeEnd);
  connect(&watch_, &StandingWatch::Found, &table_, &FrameTable::SetStanding);
  ShowRunning();
}

JobsPanel::~JobsPanel() = default;

// The two forms look like one.
void JobsPanel::AlignLabels() {
  int widest = 0;
  QList<QLabel*> labels;
  for (QLabel* label : findChildren<QLabel*>()) {
    if (label->buddy() != nullptr) {
      labels.append(label);
      widest = std::max(widest, label->sizeHint().width());
    }
  }
  for (QLabel* label : labels) {
    label->setMinimumWidth(widest);
  }
}

void JobsPanel::MakeButtons() {
  start_->setObjectName("startButton");
  cancel_->setObjectName("cancelButton");
  copy_->setObjectName("copyCommandButton");
  start_->setToolTip(tr("Render the frames to disk, as they are seen"));
  cancel_->setToolTip(tr("End the render; what is written is whole, and starting again goes on"));
  copy_->setToolTip(tr("Copy the command that does the same in a terminal"));
  connect(start_, &QPushButton::clicked, this, &JobsPanel::Start);
  connect(cancel_, &QPushButton::clicked, this, &JobsPanel::Cancel);
  connect(copy_, &QPushButton::clicked, this, &JobsPanel::CopyCommandLine);
  bar_->setObjectName("jobProgress");
  bar_->setAccessibleName(tr("Frames that are done"));
  bar_->setFormat(tr("%v of %m"));
  bar_->hide();
  pace_->setObjectName("jobPace");
  pace_->hide();
  message_->hide();
  message_->setObjectName("jobMessage");
  message_->setWordWrap(true);
  message_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void JobsPanel::MakeTable() {
  view_->setObjectName("jobFrames");
  view_->setAccessibleName(tr("Frames and what became of them"));
  view_->setModel(&table_);
  view_->setSelectionBehavior(QAbstractItemView::SelectRows);
  view_->setSelectionMode(QAbstractItemView::SingleSelection);
  view_->setTabKeyNavigation(false);
  view_->setShowGrid(false);
  view_->setAlternatingRowColors(true);
  view_->setWordWrap(false);
  view_->setTextElideMode(Qt::ElideMiddle);
  view_->verticalHeader()->hide();
  view_->verticalHeader()->setDefaultSectionSize(view_->fontMetrics().height() + 4);
  view_->horizontalHeader()->setStretchLastSection(true);
  view_->horizontalHeader()->setHighlightSections(false);
  const int letter = view_->fontMetrics().averageCharWidth();
  view_->setColumnWidth(FrameTable::kFrame, 9 * letter);
  view_->setColumnWidth(FrameTable::kState, 13 * letter);
  view_->setColumnWidth(FrameTable::kSeconds, 10 * letter);
  connect(view_, &QTableView::activated, this,
          [this](const QModelIndex& index) { emit FrameChosen(table_.FrameAt(index.row())); });
}

QWidget* JobsPanel::MakeTold() {
  MakeTable();
  lines_->setObjectName("jobLines");
  lines_->setAccessibleName(tr("What the program says"));
  lines_->setPlaceholderText(tr("What the program says stands here."));
  lines_->setReadOnly(true);
  lines_->setTabChangesFocus(true);
  lines_->setMaximumBlockCount(kMostLines);
  lines_->setLineWrapMode(QPlainTextEdit::NoWrap);
  lines_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  auto* const told = new QSplitter(Qt::Vertical);
  told->addWidget(view_);
  told->addWidget(lines_);
  told->setStretchFactor(0, 3);
  told->setStretchFactor(1, 1);
  return told;
}

fs::path JobsPanel::Program() const { return program_.empty() ? HostProgram() : program_; }

JobsPanel::Command JobsPanel::MakeCommand(const JobInput& input) const {
  Command command;
  command.target = output_->Target();
  const std::optional<FarmTarget> farm = farm_->Farm();
  command.isSlurm = farm && farm->isSlurm;
  command.words = farm ? SubmitWords(page_, input, command.target, *farm)
                       : RenderWords(page_, input, command.target);
  return command;
}

// What goes wrong is told in the panel. False for that.
bool JobsPanel::Try(const std::function<void()>& act) {
  try {
    act();
    return true;
  } catch (const std::exception& fault) {
    Say(QString::fromUtf8(fault.what()), true);
    return false;
  }
}

void JobsPanel::Start() {
  if (IsRunning()) {
    return;
  }
  Try([this] {
    const JobInput input = input_();
    const fs::path program = Program();
    const Command command = MakeCommand(input);
    isSlurm_ = command.isSlurm;
    table_.SetFrames(command.target.frames);
    table_.Begin();
    lines_->clear();
    bar_->setRange(0, static_cast<int>(command.target.frames.size()));
    bar_->setValue(0);
    bar_->show();
    pace_->hide();
    Say(tr("The program starts."), false);
    // The program itself tells more, and sooner.
    watch_.Forget();
    watch_.SetPolls(false);
    job_.Start(program, command.words);
    ShowRunning();
  });
}

void JobsPanel::Cancel() {
  if (IsRunning()) {
    Say(tr("The program is ending."), false);
    job_.Cancel();
  }
}

QString JobsPanel::CommandLine() {
  QString line;
  Try([&] {
    std::vector<std::string> words = MakeCommand(input_()).words;
    words.insert(words.begin(), CalledAs(Program()));
    line = QString::fromStdString(CommandText(words));
  });
  return line;
}

void JobsPanel::CopyCommandLine() {
  const QString line = CommandLine();
  if (!line.isEmpty()) {
    QGuiApplication::clipboard()->setText(line);
    if (!IsRunning()) {
      Say(tr("The command is on the clipboard."), false);
    }
  }
}

void JobsPanel::InputChanged() {
  Try([this] { output_->SetInput(input_()); });
  Refresh();
}

void JobsPanel::SetFrame(int frame) { output_->SetFrame(frame); }

// Nobody looks at a panel that is hidden; it looks for itself when it is shown. A list of frames
// that is being typed is none for a while.
void JobsPanel::Refresh() {
  if (!isVisible() || IsRunning()) {
    return;
  }
  try {
    const JobInput input = input_();
    const RenderTarget target = output_->Target();
    table_.SetFrames(target.frames);
    watch_.Watch(input, target);
  } catch (const std::exception&) {
    watch_.Forget();
  }
}

void JobsPanel::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  Refresh();
}

void JobsPanel::TakeFrame(const FrameReport& report) {
  table_.Take(report);
  const QString name = tr("frame %1: %2").arg(report.frame);
  if (!report.fault.empty()) {
    lines_->appendPlainText(name.arg(QString::fromStdString(report.fault)));
  }
  for (const std::string& remark : report.remarks) {
    lines_->appendPlainText(name.arg(QString::fromStdString(remark)));
  }
  ShowProgress();
}

void JobsPanel::ShowProgress() {
  const JobProgress& progress = job_.Progress();
  bar_->setRange(0, static_cast<int>(std::max(progress.count, progress.Seen())));
  bar_->setValue(static_cast<int>(progress.Seen()));
  ShowPace();
  Say(tr("Rendering."), false);
}

// What is left is of interest while it runs.
void JobsPanel::ShowPace() {
  const JobProgress& progress = job_.Progress();
  QStringList words;
  if (const auto rate = progress.Rate()) {
    words.append(*rate >= 1.0
                     ? tr("%1 frames a second").arg(QLocale().toString(*rate, 'f', 1))
                     : tr("%1 seconds a frame").arg(QLocale().toString(1.0 / *rate, 'f', 1)));
  }
  if (const auto left = progress.SecondsLeft(); left && IsRunning()) {
    words.append(tr("%1 left").arg(Clock(*left)));
  }
  if (progress.failed > 0) {
    words.append(tr("%1 failed").arg(progress.failed));
  }
  pace_->setText(words.join(", "));
  pace_->setVisible(!words.isEmpty());
}

void JobsPanel::TakeEnd(const JobEnd& end) {
  const bool isHandedOver = isSlurm_ && end.isDone;
  watch_.SetPolls(isHandedOver);
  ShowPace();
  Say(isHandedOver ? tr("Handed over to Slurm. The table follows what its jobs write.") : end.words,
      !end.isDone && !end.isCancelled);
  ShowRunning();
  Refresh();
}

void JobsPanel::Say(const QString& words, bool isBad) {
  QFont font = message_->font();
  font.setBold(isBad);
  message_->setFont(font);
  message_->setText(words);
  message_->show();
}

void JobsPanel::ShowRunning() {
  const bool isRunning = IsRunning();
  const bool hasChanged = start_->isEnabled() == isRunning;
  const bool hadFocus = start_->hasFocus() || cancel_->hasFocus();
  output_->setEnabled(!isRunning);
  farm_->setEnabled(!isRunning);
  start_->setEnabled(!isRunning);
  cancel_->setEnabled(isRunning);
  if (hadFocus) {
    (isRunning ? cancel_ : start_)->setFocus();
  }
  if (hasChanged) {
    emit RunningChanged(isRunning);
  }
}

}  // namespace glimmerhost
