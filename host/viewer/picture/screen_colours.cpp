// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/screen_colours.h"

#include <exception>
#include <utility>

namespace glimmerhost {
namespace {

ScreenChoices ChoicesOf(const ColourConfig& config) {
  ScreenChoices choices{config.Names(), config.Displays(), {}};
  for (const std::string& display : choices.displays) {
    choices.views[display] = config.Views(display);
  }
  return choices;
}

}  // namespace

ScreenColours::ScreenColours(QObject* parent)
    : QObject(parent),
      ring_(bell_.Ringer()),
      worker_([this](const ScreenChoice& choice) { Make(choice); }) {
  connect(&bell_, &Doorbell::Rung, this, &ScreenColours::Take);
}

void ScreenColours::Choose(const ScreenChoice& choice) { worker_.Ask(choice); }

void ScreenColours::Make(const ScreenChoice& choice) {
  State state;
  state.choice = choice;
  try {
    if (choice.config != loadedFile_) {
      loaded_ = choice.config.empty() ? nullptr : ColourConfig::Load(choice.config);
      loadedFile_ = choice.config;
    }
    if (loaded_) {
      state.choices = ChoicesOf(*loaded_);
      if (!choice.display.empty()) {
        state.transform = loaded_->DisplayPath(choice.space, choice.display, choice.view);
      }
    }
  } catch (const std::exception& fault) {
    state.fault = fault.what();
  }
  {
    const std::lock_guard lock(mutex_);
    made_ = std::move(state);
  }
  ring_();
}

void ScreenColours::Take() {
  std::optional<State> made;
  {
    const std::lock_guard lock(mutex_);
    made.swap(made_);
  }
  if (!made) {
    return;
  }
  if (made->fault.empty()) {
    now_ = std::move(*made);
    emit Settled();
  } else {
    emit Failed(QString::fromStdString(made->fault));
  }
}

}  // namespace glimmerhost
