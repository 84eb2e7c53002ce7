// SPDX-License-Identifier: BSD-3-Clause
// SessionPlayer: carries out the steps of a session.
#pragma once

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "host/looks/look_layers.h"
#include "host/session/page_session.h"
#include "host/session/page_view.h"
#include "host/support/failure.h"
#include "host/support/progress.h"

namespace glimmerhost {

// Another value, row or picture than a step expects.
class Unexpected : public Failure {
 public:
  using Failure::Failure;
};

// What a session begins with.
struct SessionSettings {
  std::vector<LookLayer> layers;
  std::filesystem::path spread;  // of the second clip; empty for none
  std::string pixelAspect;       // A:B; empty for that of each picture's file
  bool overwrite = false;        // whether files may be replaced
};

// What looks say of a session.
SessionSettings SettingsOf(const Page& page, const std::vector<LookLayer>& layers, bool overwrite);

// Every operation throws Failure. Load comes first, and Render before the result is shown.
class SessionPlayer {
 public:
  //   module, page  must outlive the player
  //   keptFor       what pictures are saved as, as among ReadOptions
  //   out           takes what the session prints
  SessionPlayer(const EffectModule& module, const Page& page, SessionSettings settings,
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
  SessionSettings settings_;
  std::string keptFor_;
  std::ostream& out_;
  Progress* progress_;
  std::unique_ptr<PageSession> session_;
  Alpha alpha_ = Alpha::kNone;  // of the picture's file
  quantel::cSize2 pixelAspect_{1, 1};
  Picture result_;
  bool showsResult_ = false;
};

}  // namespace glimmerhost
