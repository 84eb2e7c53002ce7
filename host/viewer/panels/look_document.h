// SPDX-License-Identifier: BSD-3-Clause
// LookDocument: the one place where the look changes. Everything that changes it can be undone,
// also a file that was loaded.
//
// An edit is taken as a whole or not at all: what the page, the picture or the shot does not allow
// throws UsageError, which names the text, and changes nothing. Edits of one gesture, a drag say,
// are one step of undo.
#pragma once

#include <QObject>
#include <QString>
#include <QUndoStack>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/viewer/look/edited_look.h"
#include "host/viewer/look/look_values.h"

namespace glimmerhost {

class LookDocument : public QObject {
  Q_OBJECT

 public:
  //   page  must outlive this
  LookDocument(const Page& page, QObject* parent);

  // What is saved, and what a command line says.
  const Look& CurrentLook() const { return look_.Texts(); }
  const EditedLook& Edited() const { return look_; }
  const Page& ThePage() const { return page_; }

  // What percent, pixels and times mean from now on. No edit, and never refused: what does not go
  // with the picture has its default, and Fault tells of it.
  void SetPicture(int width, int height, const ShotSpan& span);
  const LookPicture& Picture() const { return picture_; }
  QString Fault() const;

  // The shot that times are counted in: the picture's, or the look's own.
  const ShotSpan& Span() const { return values_.Span(); }

  // Of the store; and how much of the effect is seen, 0 to 1.
  std::map<std::string, Value> ValuesAt(int frame) const;
  double MixAt(int frame) const { return values_.MixAt(frame); }
  bool IsAnimated() const { return values_.IsAnimated(); }

  // Both together, under the mix's own name.
  FrameValues AllAt(int frame) const { return values_.At(frame); }

  // A number for a new gesture.
  static int NewGesture();

  // Values by keys of the store; that of the mix is kMix. A text with keyframes gets one at that
  // frame, or another value for the one that is there; any other becomes the value. A value that is
  // there already leaves its text alone.
  //   what     for people, in the list of what can be undone: "Move the crosshair"
  //   gesture  0 for none
  void SetValues(const std::map<std::string, Value>& byKey, int frame, const QString& what,
                 int gesture);

  // As it is typed on the command line. An option's name, a key, or spread, mix, alpha,
  // pixel-aspect, shot; an empty text resets it.
  void SetText(const std::string& name, const std::string& text, const QString& what);

  // The same for one frame of what has keyframes; a text that is keyframes itself replaces them.
  void SetTextAt(const std::string& name, int frame, const std::string& text, const QString& what,
                 int gesture);
  std::string TextOf(const std::string& name) const { return look_.TextOf(name); }

  bool IsKeyframed(const std::string& name) const { return look_.IsKeyframed(name); }

  // In order of time. Empty too where their times do not go with the shot.
  std::vector<PlacedKeyframe> Keyframes(const std::string& name) const;
  void SetKeyframe(const std::string& name, int frame);
  void RemoveKeyframe(const std::string& name, double frame);
  void RemoveKeyframes(const std::map<std::string, std::vector<double>>& byName);
  void MoveKeyframe(const std::string& name, double from, int to);
  void SetCourse(const std::string& name, double frame, Course course);
  void SetCourses(const std::map<std::string, std::vector<double>>& byName, Course course);

  // Moves keyframes by so many frames. Within a gesture it is counted from where the gesture began:
  // a keyframe that others were moved across is there again.
  void MoveKeyframes(const std::map<std::string, std::vector<double>>& byName, int by, int gesture);

  void Reset(const std::string& name);
  void ResetAll();

  // Takes the place of the look as a whole, but for what it says of the pictures: the second clip,
  // alpha, pixel aspect and shot stay. Throws UsageError and Failure.
  void UsePreset(const std::string& name);

  // Takes the place of the look as a whole.
  //   origin  what an error begins with
  void UseLook(const Look& look, const QString& what, const std::string& origin = "");

  // The same for a picture that is not open yet: not refused, as SetPicture would not refuse it.
  void TakeUp(const Look& look, const QString& what);

  // Throw what reading and writing files does; the look is clean then.
  void Load(const std::filesystem::path& file);
  void Save(const std::filesystem::path& file);

  // Where the look was loaded from or saved to last; empty for nowhere.
  const std::filesystem::path& File() const { return file_; }
  bool IsClean() const { return undo_.isClean(); }

  QUndoStack* UndoStack() { return &undo_; }

 signals:
  void Changed();
  void FileChanged();

 private:
  class Step;
  using Change = std::function<void(EditedLook* look)>;

  void Edit(const QString& what, int gesture, const Change& change);
  void Put(const EditedLook& look, const std::filesystem::path& file, const QString& what,
           int gesture);
  void Take(const EditedLook& look);
  void SetFile(const std::filesystem::path& file);
  const EditedLook& BeforeGesture(int gesture) const;

  const Page& page_;
  LookPicture picture_;
  EditedLook look_;
  LookValues values_;
  std::filesystem::path file_;
  QUndoStack undo_;
};

}  // namespace glimmerhost
