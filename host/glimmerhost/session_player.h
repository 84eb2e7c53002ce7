// SessionPlayer: carries out the steps of a session.
#pragma once

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include "host/glimmerhost/page_session.h"
#include "host/glimmerhost/page_view.h"
#include "host/glimmerhost/progress.h"
#include "host/glimmerhost/run_options.h"
#include "host/support/failure.h"

namespace glimmerhost {

// Another value, row or picture than a step expects.
class Unexpected : public Failure {
 public:
  using Failure::Failure;
};

// Every operation throws Failure. Load comes first, and Render before the result is shown.
class SessionPlayer {
 public:
  //   module, page  must outlive the player
  //   options       the values to begin with, the second clip, the pixel aspect, --overwrite
  //   keptFor       what pictures are saved as, as among ReadOptions
  //   out           takes what the session prints
  SessionPlayer(const EffectModule& module, const Page& page, const RunOptions& options,
                std::string keptFor, std::ostream& out, Progress* progress);

  void Load(const std::filesystem::path& file);
  void Spread(const std::filesystem::path& file);
  void Set(const std::string& key, const Value& value) { session_->Set(key, value); }
  void Notify(const std::string& key) { session_->Notify(key); }
  void Press(quantel::cPoint2 point) { session_->Press(point); }
  void Move(quantel::cPoint2 point) { session_->Move(point); }
  void Release(quantel::cPoint2 point) { session_->Release(point); }
  void Draw() { session_->Draw(); }
  bool HasHandles() const { return session_->HasHandles(); }
  void RequestColour() { session_->RequestColour(); }

  // Renders the frame; from now on the result is shown.
  void Render();
  void Show(bool result) { showsResult_ = result; }

  // Writes the picture that is shown, with the handles or without.
  void Save(const std::filesystem::path& file, bool withHandles);

  void PrintPage();

  // Numbers may be away from the value by the tolerance. Each throws Unexpected.
  void ExpectValue(const Parameter& parameter, const Value& value, double tolerance) const;
  void ExpectRow(const std::string& name, bool PageRow::*state, bool expected) const;
  // Whether a file holds the picture that is shown, up to one step of its depth.
  void ExpectPicture(const std::filesystem::path& file, bool same) const;

 private:
  quantel::cPtr<FrameImage> OpenSpreadFor(const Picture& picture);

  const Picture& Shown() const { return showsResult_ ? result_ : session_->Source(); }

  const EffectModule& module_;
  const Page& page_;
  const RunOptions& options_;
  std::string keptFor_;
  std::ostream& out_;
  Progress* progress_;
  std::unique_ptr<PageSession> session_;
  Alpha alpha_ = Alpha::kNone;  // of the picture's file
  quantel::cSize2 pixelAspect_{1, 1};
  std::filesystem::path spread_;
  Picture result_;
  bool showsResult_ = false;
};

}  // namespace glimmerhost
