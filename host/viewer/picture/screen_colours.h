// SPDX-License-Identifier: BSD-3-Clause
// ScreenColours: a colour configuration, and the transform that it has for the screen. Both are
// made on a thread of their own, as tables may have to be read and worked out.
#pragma once

#include <QObject>
#include <QString>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/colour_config.h"
#include "host/support/newest_worker.h"
#include "host/viewer/support/doorbell.h"

namespace glimmerhost {

// What a person has chosen of a configuration.
struct ScreenChoice {
  std::filesystem::path config;  // empty for none
  std::string space;             // that pictures are in
  std::string display;           // empty: samples are shown as they are
  std::string view;

  bool operator==(const ScreenChoice&) const = default;
};

// What a configuration has to choose from. Empty without one.
struct ScreenChoices {
  std::vector<std::string> spaces;
  std::vector<std::string> displays;                      // the usual one first
  std::map<std::string, std::vector<std::string>> views;  // of each display, likewise
};

class ScreenColours : public QObject {
  Q_OBJECT

 public:
  explicit ScreenColours(QObject* parent);

  // Settled tells when it is so.
  void Choose(const ScreenChoice& choice);

  // What was settled last.
  const ScreenChoice& Choice() const { return now_.choice; }
  const ScreenChoices& Choices() const { return now_.choices; }
  // Null where samples are shown as they are.
  const std::shared_ptr<const ColourTransform>& Transform() const { return now_.transform; }

 signals:
  void Settled();
  // What was chosen cannot be had, and all is as it was. For a person.
  void Failed(QString why);

 private:
  struct State {
    ScreenChoice choice;
    ScreenChoices choices;
    std::shared_ptr<const ColourTransform> transform;
    std::string fault;
  };

  void Make(const ScreenChoice& choice);
  void Take();

  State now_;
  Doorbell bell_;
  std::function<void()> ring_;
  // The worker's.
  std::filesystem::path loadedFile_;
  std::unique_ptr<const ColourConfig> loaded_;
  std::mutex mutex_;
  std::optional<State> made_;          // under the lock
  NewestWorker<ScreenChoice> worker_;  // the last: it uses all others
};

}  // namespace glimmerhost
