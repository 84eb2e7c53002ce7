// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/output_form.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <mutex>
#include <utility>

#include "host/module/module_choice.h"
#include "host/shots/file_sequence.h"
#include "host/shots/frame_list.h"
#include "host/support/failure.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

enum FramesChoice { kAll, kShown, kListed };

QString Text(const std::string& text) { return QString::fromStdString(text); }

// The same entries again, if they can be had, leave what was chosen.
void SetEntries(const QString& first, const std::vector<std::pair<QString, QString>>& entries,
                QComboBox* box) {
  const QSignalBlocker quiet(box);
  const QVariant chosen = box->currentData();
  box->clear();
  box->addItem(first, QString());
  for (const auto& [label, word] : entries) {
    box->addItem(label, word);
  }
  box->setCurrentIndex(std::max(0, box->findData(chosen)));
  box->setEnabled(!entries.empty());
}

std::string WordOf(const QComboBox& box) { return box.currentData().toString().toStdString(); }

// Several fields in one row of a form, the first one the widest.
QWidget* InARow(std::initializer_list<QWidget*> fields) {
  auto* const row = new QWidget;
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* field : fields) {
    layout->addWidget(field, layout->count() == 0 ? 1 : 0);
  }
  return row;
}

bool IsSequence(const std::string& name) {
  try {
    return FileSequence("INPUT", name).HasFrames();
  } catch (const std::exception&) {
    return false;
  }
}

// The name with the ending of another format, where its own is none of an output.
QString WithEnding(const QString& name, const char* ending) {
  std::filesystem::path path = Utf8Path(name.toStdString());
  path.replace_extension(ending);
  return Text(path.string());
}

}  // namespace

// What the thread that asks formats puts down.
struct OutputForm::Box {
  std::mutex mutex;
  std::string output;
  std::optional<OutputChoices> choices;  // of that one
};

OutputForm::OutputForm(QWidget* parent) : QWidget(parent), box_(std::make_shared<Box>()) {
  setObjectName("outputForm");
  auto* const form = new QFormLayout(this);
  form->setContentsMargins(0, 0, 0, 0);
  form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  const auto add = [form](const QString& label, QWidget* row, QWidget* first) {
    form->addRow(label, row);
    qobject_cast<QLabel*>(form->labelForField(row))->setBuddy(first);
  };
  add(tr("&Output"), MakeOutput(), output_);
  form->addRow(QString(), format_);
  add(tr("&Samples"), MakeCoding(), bits_);
  add(tr("Co&mpression"), InARow({compression_, quality_}), compression_);
  add(tr("&Precision"), precision_, precision_);
  add(tr("E&ngine"), engine_, engine_);
  add(tr("&Frames"), MakeFrames(), frames_);
  add(tr("E&xisting"), existing_, existing_);
  form->addRow(QString(), keepGoing_);

  connect(&bell_, &Doorbell::Rung, this, &OutputForm::TakeChoices);
  asker_ = std::make_unique<NewestWorker<std::string>>(
      [box = box_, ring = bell_.Ringer()](const std::string& output) {
        OutputChoices choices = ChoicesFor(output);
        {
          const std::lock_guard lock(box->mutex);
          box->output = output;
          box->choices = std::move(choices);
        }
        ring();
      });
}

OutputForm::~OutputForm() = default;

QWidget* OutputForm::FirstWidget() const { return output_; }

void OutputForm::Tell(QWidget* field, const QString& name, const QString& help) {
  field->setAccessibleName(name);
  field->setToolTip(help);
  if (auto* const box = qobject_cast<QComboBox*>(field)) {
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(8);
    connect(box, &QComboBox::currentIndexChanged, this, &OutputForm::Changed);
  }
}

QWidget* OutputForm::MakeOutput() {
  output_ = new QLineEdit;
  output_->setObjectName("outputName");
  Tell(output_, tr("Output"),
       tr("The file to write; of a sequence #### stands for the frame's number. The ending says "
          "the format."));
  browse_ = new QToolButton;
  browse_->setObjectName("outputBrowse");
  browse_->setText(tr("…"));
  Tell(browse_, tr("Choose the output"), tr("Choose the folder and the name of the output"));
  format_ = new QLabel;
  format_->setObjectName("outputFormat");
  format_->setWordWrap(true);
  format_->hide();
  connect(browse_, &QToolButton::clicked, this, &OutputForm::Browse);
  connect(output_, &QLineEdit::textEdited, this, [this] { isTyped_ = true; });
  connect(output_, &QLineEdit::textChanged, this, &OutputForm::AskChoices);
  connect(output_, &QLineEdit::textChanged, this, &OutputForm::Changed);
  return InARow({output_, browse_});
}

QWidget* OutputForm::MakeCoding() {
  const auto make = [](const char* name) {
    auto* const box = new QComboBox;
    box->setObjectName(name);
    return box;
  };
  bits_ = make("outputBits");
  SetEntries(tr("As the input"), {}, bits_);
  Tell(bits_, tr("Samples"), tr("How many bits a sample has in the output"));
  compression_ = make("outputCompression");
  SetEntries(tr("As usual"), {}, compression_);
  Tell(compression_, tr("Compression"), tr("How the output is made smaller"));
  quality_ = new QSpinBox;
  quality_->setObjectName("outputQuality");
  quality_->setRange(0, 100);
  quality_->setSpecialValueText(tr("usual quality"));
  quality_->hide();
  Tell(quality_, tr("Quality"),
       tr("1 to 100 for JPEG and WebP, more is better; for dwaa and dwab their level, more is "
          "smaller"));
  connect(compression_, &QComboBox::currentIndexChanged, this, &OutputForm::ShowQuality);
  connect(quality_, &QSpinBox::valueChanged, this, &OutputForm::Changed);
  precision_ = make("outputPrecision");
  SetEntries(tr("As the input has it"), {{tr("Floating point"), "float"}, {tr("16 bits"), "16"}},
             precision_);
  Tell(precision_, tr("Precision"),
       tr("What the effect works in: floating point keeps what is brighter than white"));
  engine_ = make("outputEngine");
  std::vector<std::pair<QString, QString>> engines;
  for (const std::string& engine : EngineList()) {
    if (engine != kDefaultEngine) {
      engines.emplace_back(Text(engine), Text(engine));
    }
  }
  SetEntries(Text(kDefaultEngine), engines, engine_);
  Tell(engine_, tr("Engine"), tr("What the effect transforms by; fast is what the window shows"));
  return bits_;
}

QWidget* OutputForm::MakeFrames() {
  frames_ = new QComboBox;
  frames_->setObjectName("framesChoice");
  frames_->addItems({tr("All"), tr("This frame"), tr("List")});
  Tell(frames_, tr("Frames"), tr("Which frames are rendered"));
  list_ = new QLineEdit;
  list_->setObjectName("framesList");
  list_->setPlaceholderText(tr("1-10,20-30 or 1-100x5"));
  list_->hide();
  Tell(list_, tr("List of frames"), tr("1-10,20-30, or 1-100x5 for every fifth"));
  connect(frames_, &QComboBox::currentIndexChanged, this,
          [this](int choice) { list_->setVisible(choice == kListed); });
  connect(list_, &QLineEdit::textChanged, this, &OutputForm::Changed);
  existing_ = new QComboBox;
  existing_->setObjectName("existingChoice");
  existing_->addItem(tr("Keep what is up to date"));
  existing_->addItem(tr("Replace all"));
  Tell(existing_, tr("Existing files"),
       tr("Whether frames that were rendered earlier, and would come out the same, are rendered "
          "again"));
  keepGoing_ = new QCheckBox(tr("&Go on where a frame fails"));
  keepGoing_->setObjectName("keepGoing");
  Tell(keepGoing_, tr("Go on where a frame fails"),
       tr("Render the rest all the same; the render still fails in the end"));
  return InARow({frames_, list_});
}

void OutputForm::SetInput(const JobInput& input) {
  const bool isAnother = input.input != input_.input;
  const bool wasShot = isShot_;
  input_ = input;
  isShot_ = IsSequence(input.input) || input.frames.size() > 1;
  if (isAnother || (isShot_ != wasShot && !isTyped_)) {
    Propose();
  }
  ShowFrames();
}

void OutputForm::SetFrame(int frame) {
  frame_ = frame;
  ShowFrames();
}

void OutputForm::ShowFrames() {
  const QSignalBlocker quiet(frames_);
  const auto listed = std::min<std::size_t>(input_.frames.size(), 1);
  frames_->setItemText(kAll, listed == 0 || !isShot_
                                 ? tr("All")
                                 : tr("All: %1").arg(Text(glimmerhost::ShowFrames(input_.frames))));
  frames_->setItemText(kShown, tr("This frame: %1").arg(frame_));
  frames_->setEnabled(isShot_);
  list_->setEnabled(isShot_);
}

void OutputForm::Propose() {
  isTyped_ = false;
  try {
    output_->setText(input_.input.empty() ? QString()
                                          : Text(ProposedOutput(input_.input, isShot_)));
  } catch (const std::exception&) {
    output_->clear();
  }
  output_->setCursorPosition(static_cast<int>(output_->text().size()));
}

void OutputForm::Browse() {
  const QString name =
      QFileDialog::getSaveFileName(this, tr("Render to"), output_->text(), QString(), nullptr,
                                   QFileDialog::DontConfirmOverwrite);
  if (!name.isEmpty()) {
    isTyped_ = true;
    output_->setText(name);
  }
}

void OutputForm::AskChoices() { asker_->Ask(output_->text().toStdString()); }

void OutputForm::TakeChoices() {
  std::optional<OutputChoices> taken;
  {
    const std::lock_guard lock(box_->mutex);
    if (box_->output == output_->text().toStdString()) {
      taken.swap(box_->choices);
    }
  }
  if (!taken) {
    return;
  }
  choices_ = std::move(*taken);
  const bool isNone = choices_.format.empty() && !output_->text().isEmpty();
  if (isNone && !isTyped_ && !output_->text().endsWith(".png")) {
    // Not every format that can be read can be written.
    output_->setText(WithEnding(output_->text(), ".png"));
    return;
  }
  format_->setVisible(isNone);
  format_->setText(tr("No format has that ending."));
  std::vector<std::pair<QString, QString>> bits;
  for (const std::string& word : choices_.bits) {
    bits.emplace_back(word == "half"    ? tr("Half float")
                      : word == "float" ? tr("Float")
                                        : tr("%1 bits").arg(Text(word)),
                      Text(word));
  }
  SetEntries(tr("As the input"), bits, bits_);
  std::vector<std::pair<QString, QString>> compressions;
  for (const std::string& word : choices_.compressions) {
    compressions.emplace_back(Text(word), Text(word));
  }
  SetEntries(tr("As usual"), compressions, compression_);
  ShowQuality();
  emit Changed();
  emit ChoicesKnown();
}

void OutputForm::ShowQuality() {
  const std::string compression = WordOf(*compression_);
  quality_->setVisible(choices_.hasQuality ||
                       std::find(choices_.qualityOf.begin(), choices_.qualityOf.end(),
                                 compression) != choices_.qualityOf.end());
  quality_->setMaximum(choices_.hasQuality ? 100 : 1000);
}

std::vector<int> OutputForm::Frames() const {
  if (!isShot_) {
    return input_.frames;
  }
  if (frames_->currentIndex() == kShown) {
    return {frame_};
  }
  return frames_->currentIndex() == kAll
             ? input_.frames
             : ParseFrames(tr("Frames").toStdString(), list_->text().trimmed().toStdString());
}

RenderTarget OutputForm::Target() const {
  RenderTarget target;
  target.output = output_->text().trimmed().toStdString();
  if (target.output.empty()) {
    throw UsageError(tr("The output needs a name.").toStdString());
  }
  target.bits = WordOf(*bits_);
  target.compression = WordOf(*compression_);
  if (quality_->isVisibleTo(this) && quality_->value() > 0) {
    target.quality = std::to_string(quality_->value());
  }
  target.precision = WordOf(*precision_);
  target.engine = WordOf(*engine_);
  target.frames = Frames();
  target.manifest = ManifestBeside(target.output);
  target.replaces = existing_->currentIndex() == 1;
  target.keepsGoing = keepGoing_->isChecked();
  return target;
}

}  // namespace glimmerhost
