// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/look_document.h"

#include <QUndoCommand>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <exception>
#include <iterator>

#include "host/looks/parameter_file.h"
#include "host/looks/presets.h"

namespace glimmerhost {
namespace {

// Of the pictures rather than of what is done to them.
constexpr const char* kOfPictures[] = {kSpread, kAlpha, kPixelAspect, kShot};

// The texts of a look that another has not. A shot decides what all times mean.
Look NewTexts(const Look& look, const Look& before) {
  if (look.At(kShot) != before.At(kShot)) {
    return look;
  }
  Look part;
  std::copy_if(look.texts.begin(), look.texts.end(), std::inserter(part.texts, part.texts.end()),
               [&](const auto& one) { return before.At(one.first) != one.second; });
  std::copy_if(look.set.begin(), look.set.end(), std::back_inserter(part.set),
               [&](const std::string& one) {
                 return std::find(before.set.begin(), before.set.end(), one) == before.set.end();
               });
  part[kShot] = look.At(kShot);
  return part;
}

}  // namespace

// A look as it was and as it became, and the file where it is another.
class LookDocument::Step : public QUndoCommand {
 public:
  struct State {
    EditedLook look;
    std::filesystem::path file;
  };

  Step(LookDocument* document, State before, State after, const QString& what, int gesture)
      : QUndoCommand(what),
        document_(document),
        before_(std::move(before)),
        after_(std::move(after)),
        gesture_(gesture) {}

  void undo() override { Take(before_, after_); }
  void redo() override { Take(after_, before_); }

  int id() const override { return gesture_ == 0 ? -1 : gesture_; }

  // Who drags there and back has changed nothing.
  bool mergeWith(const QUndoCommand* next) override {
    after_ = static_cast<const Step*>(next)->after_;
    setObsolete(after_.look.Texts() == before_.look.Texts());
    return true;
  }

  const EditedLook& Before() const { return before_.look; }

 private:
  // What was saved under another name since then keeps that name.
  void Take(const State& state, const State& other) {
    document_->Take(state.look);
    if (state.file != other.file) {
      document_->SetFile(state.file);
    }
  }

  LookDocument* document_;
  State before_;
  State after_;
  int gesture_;
};

LookDocument::LookDocument(const Page& page, QObject* parent)
    : QObject(parent), page_(page), look_(page), values_(page, look_.Texts(), picture_) {}

void LookDocument::SetPicture(int width, int height, const ShotSpan& span) {
  const LookPicture picture{width, height, span};
  if (!(picture == picture_)) {
    picture_ = picture;
    Take(EditedLook(look_));
  }
}

QString LookDocument::Fault() const { return QString::fromStdString(values_.Fault()); }

std::map<std::string, Value> LookDocument::ValuesAt(int frame) const {
  std::map<std::string, Value> values = values_.At(frame);
  values.erase(kMix);
  return values;
}

int LookDocument::NewGesture() {
  static std::atomic<int> last{0};
  return ++last;
}

void LookDocument::SetValues(const std::map<std::string, Value>& byKey, int frame,
                             const QString& what, int gesture) {
  Edit(what, gesture,
       [&](EditedLook* look) { look->SetValues(byKey, frame, values_.At(frame), Span()); });
}

void LookDocument::SetText(const std::string& name, const std::string& text, const QString& what) {
  Edit(what, 0, [&](EditedLook* look) { look->SetText(name, text); });
}

void LookDocument::SetTextAt(const std::string& name, int frame, const std::string& text,
                             const QString& what, int gesture) {
  Edit(what, gesture, [&](EditedLook* look) { look->SetTextAt(name, frame, text, Span()); });
}

std::vector<PlacedKeyframe> LookDocument::Keyframes(const std::string& name) const {
  try {
    return look_.Keyframes(name, Span()).InTime();
  } catch (const std::exception&) {
    return {};
  }
}

void LookDocument::SetKeyframe(const std::string& name, int frame) {
  Edit(tr("Set a keyframe of %1").arg(QString::fromStdString(name)), 0,
       [&](EditedLook* look) { look->SetKeyframe(name, frame, values_.At(frame), Span()); });
}

void LookDocument::RemoveKeyframe(const std::string& name, double frame) {
  RemoveKeyframes({{name, {frame}}});
}

void LookDocument::RemoveKeyframes(const std::map<std::string, std::vector<double>>& byName) {
  Edit(tr("Remove keyframes"), 0, [&](EditedLook* look) {
    for (const auto& [name, frames] : byName) {
      for (const double frame : frames) {
        look->RemoveKeyframe(name, frame, Span());
      }
    }
  });
}

void LookDocument::MoveKeyframe(const std::string& name, double from, int to) {
  MoveKeyframes({{name, {from}}}, to - static_cast<int>(std::lround(from)), 0);
}

void LookDocument::MoveKeyframes(const std::map<std::string, std::vector<double>>& byName, int by,
                                 int gesture) {
  Edit(tr("Move keyframes"), gesture, [&](EditedLook* look) {
    *look = BeforeGesture(gesture);
    for (const auto& [name, frames] : byName) {
      look->MoveKeyframes(name, frames, by, Span());
    }
  });
}

void LookDocument::SetCourse(const std::string& name, double frame, Course course) {
  SetCourses({{name, {frame}}}, course);
}

void LookDocument::SetCourses(const std::map<std::string, std::vector<double>>& byName,
                              Course course) {
  Edit(tr("Change how keyframes go on"), 0, [&](EditedLook* look) {
    for (const auto& [name, frames] : byName) {
      for (const double frame : frames) {
        look->SetCourse(name, frame, course, Span());
      }
    }
  });
}

void LookDocument::Reset(const std::string& name) {
  SetText(name, "", tr("Reset %1").arg(QString::fromStdString(name)));
}

void LookDocument::ResetAll() { UseLook({}, tr("Reset all")); }

void LookDocument::UsePreset(const std::string& name) {
  Look preset = ReadParameterFile(page_, PresetFile(name));
  for (const char* kept : kOfPictures) {
    if (preset.At(kept).empty()) {
      preset[kept] = look_.TextOf(kept);
    }
  }
  UseLook(preset, tr("Use the preset %1").arg(QString::fromStdString(name)),
          "preset " + name + ": ");
}

// As it came, and not as it is normalised: a key takes no units, an option does.
void LookDocument::UseLook(const Look& look, const QString& what, const std::string& origin) {
  CheckLook(page_, look, picture_, origin);
  TakeUp(look, what);
}

void LookDocument::TakeUp(const Look& look, const QString& what) {
  EditedLook used(page_);
  used.Use(look);
  Put(used, file_, what, 0);
}

void LookDocument::Load(const std::filesystem::path& file) {
  const Look look = ReadParameterFile(page_, file);
  CheckLook(page_, look, picture_, file.string() + ": ");
  EditedLook used(page_);
  used.Use(look);
  Put(used, file, tr("Load %1").arg(QString::fromStdString(file.filename().string())), 0);
  undo_.setClean();
}

void LookDocument::Save(const std::filesystem::path& file) {
  SaveParameters(page_, file, look_.Texts(), true);
  SetFile(file);
  undo_.setClean();
}

void LookDocument::Edit(const QString& what, int gesture, const Change& change) {
  EditedLook edited = look_;
  change(&edited);
  CheckLook(page_, NewTexts(edited.Texts(), look_.Texts()), picture_);
  Put(edited, file_, what, gesture);
}

void LookDocument::Put(const EditedLook& look, const std::filesystem::path& file,
                       const QString& what, int gesture) {
  if (look.Texts() != look_.Texts() || file != file_) {
    undo_.push(new Step(this, {look_, file_}, {look, file}, what, gesture));
  }
}

void LookDocument::Take(const EditedLook& look) {
  look_ = look;
  values_ = LookValues(page_, look_.Texts(), picture_);
  emit Changed();
}

void LookDocument::SetFile(const std::filesystem::path& file) {
  file_ = file;
  emit FileChanged();
}

const EditedLook& LookDocument::BeforeGesture(int gesture) const {
  const int last = undo_.index() - 1;
  const auto* step = last >= 0 && last + 1 == undo_.count()
                         ? static_cast<const Step*>(undo_.command(last))
                         : nullptr;
  return gesture != 0 && step != nullptr && step->id() == gesture ? step->Before() : look_;
}

}  // namespace glimmerhost
