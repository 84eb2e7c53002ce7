// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/viewing.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <numeric>
#include <utility>

#include "host/looks/look_layers.h"
#include "host/looks/units.h"
#include "host/pictures/alpha.h"
#include "host/support/failure.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {
namespace {

using std::chrono::milliseconds;

// A hand that has not moved for so long rests.
constexpr milliseconds kRest{150};

// How often it is looked whether a render hangs.
constexpr milliseconds kWatch{500};
constexpr milliseconds kPatience{15000};

// Of a still. Each is a number in a list.
constexpr int kMostFrames = 100000;

constexpr std::uint64_t kCacheBytes = std::uint64_t{1} << 30U;

Doorbell* MakeBell(Viewing* viewing, void (Viewing::*answer)()) {
  auto* const bell = new Doorbell(viewing);
  QObject::connect(bell, &Doorbell::Rung, viewing, answer);
  return bell;
}

QString FromUtf8(const std::string& text) {
  return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

}  // namespace

Viewing::Viewing(const Page& page, std::shared_ptr<const EffectModule> module,
                 LookDocument* document, QObject* parent)
    : QObject(parent),
      page_(page),
      document_(document),
      livePage_(new LivePage(*module, page, document, this)),
      patience_(kPatience),
      live_(std::move(module), MakeBell(this, &Viewing::TakeRendered)->Ringer()),
      opener_(MakeBell(this, &Viewing::TakeClip)->Ringer()),
      loader_(std::make_unique<FrameLoader>(kCacheBytes,
                                            MakeBell(this, &Viewing::TakeFrame)->Ringer())) {
  rest_.setSingleShot(true);
  rest_.setInterval(kRest);
  connect(&rest_, &QTimer::timeout, this, [this] {
    if (rendered_.isProxy || rendered_.serial != asked_) {
      AskForRender(false);
    }
  });
  watch_.setInterval(kWatch);
  connect(&watch_, &QTimer::timeout, this, &Viewing::Watch);
  connect(document_, &LookDocument::Changed, this, &Viewing::Look);
  connect(livePage_, &LivePage::Failed, this, &Viewing::Told);
}

Viewing::~Viewing() = default;

void Viewing::Open(const QString& name) {
  opening_ = opener_.Ask(name.toStdString());
  emit Loading(tr("Opening %1").arg(name));
  emit StateChanged();
}

void Viewing::TakeClip() {
  const std::optional<OpenedClip> opened = opener_.Fetch();
  if (!opened || opened->serial != opening_) {
    return;
  }
  opening_ = 0;
  if (!opened->clip) {
    emit Loading({});
    emit Told(FromUtf8(opened->fault));
    emit StateChanged();
    return;
  }
  clip_ = opened->clip;
  loader_->Forget();
  frames_.clear();
  SettleFrames();
  frame_ = frames_.front();
  // Of the new one nothing is known yet; percent and pixels go by the old one until it is.
  emit Opened();
  emit FrameChanged(frame_);
  if (!opened->sequence.empty()) {
    emit BelongsTo(FromUtf8(opened->sequence));
  }
  AskForFrame();
}

void Viewing::SetFrame(int frame) {
  if (!clip_) {
    return;
  }
  const int nearest = *std::min_element(frames_.begin(), frames_.end(), [frame](int a, int b) {
    return std::abs(static_cast<long long>(a) - frame) <
           std::abs(static_cast<long long>(b) - frame);
  });
  if (nearest == frame_) {
    return;
  }
  direction_ = nearest > frame_ ? 1 : -1;
  frame_ = nearest;
  emit FrameChanged(frame_);
  AskForFrame();
}

void Viewing::SetCacheLimit(std::uint64_t bytes) { loader_->SetCacheLimit(bytes); }

void Viewing::SetPatience(milliseconds patience) {
  patience_ = patience;
  watch_.setInterval(std::min(patience / 4 + milliseconds(1), kWatch));
}

// What the look says of reading; a text that is no ratio stays what it was, and its row says why.
void Viewing::Look() {
  try {
    const PictureLook look = PictureLookOf(page_, {{"", document_->CurrentLook()}});
    FrameReading reading;
    reading.spread = look.spread;
    reading.premultiplied = ParsePremultiplied(kAlpha, look.alpha);
    if (!look.pixelAspect.empty()) {
      reading.pixelAspect = ParseRatio(kPixelAspect, look.pixelAspect);
    }
    if (clip_) {
      SettleFrames();
    }
    if (!(reading == reading_)) {
      reading_ = reading;
      AskForFrame();
    }
  } catch (const std::exception& fault) {
    emit Told(QString::fromUtf8(fault.what()));
  }
  AskForRender(true);
}

// A still has one file for all frames of the shot.
void Viewing::SettleFrames() {
  std::vector<int> frames = clip_->Frames();
  const std::string shot = document_->TextOf(kShot);
  if (!clip_->IsSequence() && !shot.empty()) {
    const ShotSpan span = ParseShotSpan(kShot, shot);
    if (*span.last - *span.first >= kMostFrames) {
      throw MustBe(kShot, "one of at most " + std::to_string(kMostFrames) + " frames here", shot);
    }
    frames.resize(static_cast<std::size_t>(*span.last - *span.first) + 1);
    std::iota(frames.begin(), frames.end(), *span.first);
  }
  if (frames == frames_) {
    return;
  }
  frames_ = std::move(frames);
  emit FramesChanged();
  SetFrame(frame_);
}

int Viewing::FileFrame() const { return clip_->IsSequence() ? frame_ : clip_->Frames().front(); }

void Viewing::AskForFrame() {
  if (!clip_) {
    return;
  }
  isLoading_ = true;
  loader_->Ask({clip_, reading_, FileFrame(), clip_->IsSequence() ? direction_ : 0});
  emit StateChanged();
  TakeFrame();
}

void Viewing::TakeFrame() {
  emit Loading(FromUtf8(loader_->Stage()));
  const std::optional<FrameAnswer> answer = loader_->Fetch();
  if (!answer || answer->request.clip != clip_ || answer->request.frame != FileFrame() ||
      !(answer->request.reading == reading_)) {
    return;
  }
  isLoading_ = false;
  if (!answer->loaded) {
    TellFault(answer->fault);
    DropFrame();
    return;
  }
  loaded_ = answer->loaded;
  if (loaded_->frame != frame_) {
    auto still = std::make_shared<LoadedFrame>(*loaded_);
    still->frame = frame_;
    loaded_ = std::move(still);
  }
  TakeFaultBack();
  QStringList remarks;
  for (const std::string& remark : loaded_->remarks) {
    remarks += FromUtf8(remark);
  }
  if (!remarks.isEmpty()) {
    emit Told(remarks.join('\n'));
  }
  document_->SetPicture(loaded_->picture->width, loaded_->picture->height, clip_->Span());
  livePage_->Show(loaded_, static_cast<int>(frames_.size()));
  emit Shown();
  AskForRender(true);
}

void Viewing::TellFault(const std::string& fault) {
  isFaultTold_ = true;
  emit Told(FromUtf8(fault));
}

// What was wrong with one frame is not said of the next.
void Viewing::TakeFaultBack() {
  if (std::exchange(isFaultTold_, false)) {
    emit Told({});
  }
}

// A frame before would be taken for the one that could not be read.
void Viewing::DropFrame() {
  rest_.stop();
  watch_.stop();
  loaded_ = nullptr;
  rendered_ = {};
  rendered_.serial = ++asked_;
  emit Shown();
  emit StateChanged();
}

void Viewing::AskForRender(bool mayBeProxy) {
  if (!loaded_) {
    return;
  }
  try {
    // By the look and not by the module's store, which holds floats: a render goes by the look.
    live_.Ask({++asked_, loaded_, document_->ValuesAt(loaded_->frame),
               document_->MixAt(loaded_->frame), mayBeProxy});
  } catch (const std::exception& fault) {
    emit Told(QString::fromUtf8(fault.what()));
    return;
  }
  if (mayBeProxy) {
    rest_.start();
  }
  if (!watch_.isActive()) {
    watch_.start();
  }
  emit StateChanged();
}

void Viewing::TakeRendered() {
  std::optional<RenderedFrame> rendered = live_.Take();
  if (!rendered || !loaded_) {
    return;
  }
  isHangTold_ = false;
  if (rendered->fault.empty()) {
    TakeFaultBack();
  } else {
    TellFault(rendered->fault);
  }
  rendered_ = std::move(*rendered);
  if (rendered_.serial == asked_ && !rendered_.isProxy) {
    rest_.stop();
    watch_.stop();
  } else if (rendered_.serial == asked_ && !rest_.isActive()) {
    AskForRender(false);
  }
  emit Shown();
  emit StateChanged();
}

void Viewing::Watch() {
  const auto busy = live_.Busy();
  if (busy && *busy > patience_ && !isHangTold_) {
    isHangTold_ = true;
    emit Hangs();
  }
}

void Viewing::GiveUp() {
  try {
    live_.Abandon();
  } catch (const std::exception& fault) {
    emit Told(QString::fromUtf8(fault.what()));
  }
  isHangTold_ = false;
  // Not asked for again by itself: it might hang again.
  rest_.stop();
  watch_.stop();
  rendered_ = {};
  rendered_.serial = asked_;
  rendered_.frame = loaded_;
  emit Shown();
  emit StateChanged();
}

ShownState Viewing::State() const {
  if (opening_ != 0 || isLoading_ || (loaded_ && rendered_.serial != asked_)) {
    return ShownState::kWorking;
  }
  if (!rendered_.picture) {
    return ShownState::kNothing;
  }
  return rendered_.isProxy ? ShownState::kProxy : ShownState::kTrueFrame;
}

bool Viewing::IsSettled() const {
  const ShownState state = State();
  return !rest_.isActive() && state != ShownState::kWorking && state != ShownState::kProxy;
}

}  // namespace glimmerhost
