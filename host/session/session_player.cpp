// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/session_player.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <utility>
#include <variant>

#include "host/looks/keyframed_values.h"
#include "host/looks/units.h"
#include "host/module/second_clip.h"
#include "host/pictures/alpha.h"
#include "host/pictures/picture_file.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

bool IsNear(const Value& have, const Value& expected, double tolerance) {
  const double* number = std::get_if<double>(&have);
  const double* wanted = std::get_if<double>(&expected);
  if (number == nullptr || wanted == nullptr) {
    return have == expected;
  }
  return std::abs(*number - *wanted) <= tolerance;
}

bool LooksLike(const Picture& a, const Picture& b, int step) {
  if (a.width != b.width || a.height != b.height) {
    return false;
  }
  return std::equal(
      a.samples.begin(), a.samples.end(), b.samples.begin(),
      [step](std::uint16_t one, std::uint16_t other) { return std::abs(one - other) <= step; });
}

// Warns of what is lost of the picture.
//   keptFor  as among ReadOptions
Picture ReadWithWarning(const std::filesystem::path& file, const std::string& keptFor,
                        Progress* progress) {
  std::string warning;
  Picture picture = ReadPicture(file, keptFor, &warning);
  if (!warning.empty()) {
    progress->Warn(warning);
  }
  return picture;
}

}  // namespace

SessionSettings SettingsOf(const Page& page, const std::vector<LookLayer>& layers, bool overwrite) {
  const PictureLook look = PictureLookOf(page, layers);
  return {layers, Utf8Path(look.spread), look.pixelAspect, overwrite};
}

SessionPlayer::SessionPlayer(const EffectModule& module, const Page& page, SessionSettings settings,
                             std::string keptFor, std::ostream& out, Progress* progress)
    : module_(module),
      page_(page),
      settings_(std::move(settings)),
      keptFor_(std::move(keptFor)),
      out_(out),
      progress_(progress) {}

void SessionPlayer::Load(const std::filesystem::path& file) {
  progress_->Show("Reading " + file.string());
  Picture picture = ReadWithWarning(file, keptFor_, progress_);
  alpha_ = picture.alpha;
  Premultiply(&picture);
  pixelAspect_ = settings_.pixelAspect.empty()
                     ? picture.pixelAspect
                     : ParseRatio("--pixel-aspect", settings_.pixelAspect);
  const auto spread = OpenSpreadFor(picture);
  if (session_) {
    session_->Connect(picture, spread, pixelAspect_);
  } else {
    session_ = std::make_unique<PageSession>(
        module_, StillValues(page_, settings_.layers, picture.width, picture.height), picture,
        spread, pixelAspect_);
  }
  showsResult_ = false;
}

quantel::cPtr<FrameImage> SessionPlayer::OpenSpreadFor(const Picture& picture) {
  std::vector<std::string> remarks;
  const auto spread = OpenSpread(settings_.spread, picture.width, picture.height, true, &remarks);
  progress_->WarnAll(remarks);
  return spread;
}

void SessionPlayer::Spread(const std::filesystem::path& file) {
  settings_.spread = file;
  const Picture& picture = session_->Source();
  session_->Connect(Picture(picture), OpenSpreadFor(picture), pixelAspect_);
}

void SessionPlayer::Render() {
  progress_->Show("Rendering");
  result_ = session_->Render();
  showsResult_ = true;
}

void SessionPlayer::Save(const std::filesystem::path& file, bool withHandles) {
  PictureOutput output(file, settings_.overwrite);
  Picture picture = Shown();
  SettleAlpha(output.Format(), alpha_, &picture);
  if (withHandles) {
    session_->PaintHandles(&picture);
  }
  output.Write(picture, picture.bits);
}

void SessionPlayer::PrintPage() {
  glimmerhost::PrintPage(PageRows(page_, session_->Values(), session_->PageDialog()), out_);
}

void SessionPlayer::ExpectValue(const Parameter& parameter, const Value& value,
                                double tolerance) const {
  const Value& have = session_->Values().at(parameter.key);
  if (!IsNear(have, value, tolerance)) {
    throw Unexpected("it is " + parameter.Show(have));
  }
}

void SessionPlayer::ExpectRow(const std::string& name, bool PageRow::*state, bool expected) const {
  for (const PageRow& row : PageRows(page_, session_->Values(), session_->PageDialog())) {
    if (row.name == name) {
      if (row.*state != expected) {
        throw Unexpected(state == &PageRow::shown
                             ? (expected ? "it is hidden" : "it is shown")
                             : (expected ? "it is disabled" : "it is enabled"));
      }
      return;
    }
  }
  throw Unexpected("the page has no such row");
}

void SessionPlayer::ExpectPicture(const std::filesystem::path& file, bool same) const {
  Picture picture = ReadWithWarning(file, kNoFormat, progress_);
  Premultiply(&picture);
  constexpr int kByteStep = 257;
  if (LooksLike(Shown(), picture, picture.bits == 8 ? kByteStep : 1) != same) {
    throw Unexpected(same ? "the picture is another" : "the picture is the same");
  }
}

}  // namespace glimmerhost
