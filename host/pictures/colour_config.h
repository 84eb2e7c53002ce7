// SPDX-License-Identifier: BSD-3-Clause
// ColourConfig: colour spaces by their names, from a configuration of OpenColorIO.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/colour_path.h"

namespace glimmerhost {

// The role of the space that the effect works in.
inline constexpr const char* kWorkingSpace = "scene_linear";

// Whether this build can have one.
extern const bool kHasColourManagement;

class ColourConfig {
 public:
  // Throws MissingInput or Failure, which name the file.
  static std::unique_ptr<const ColourConfig> Load(const std::filesystem::path& file);

  ColourConfig() = default;
  virtual ~ColourConfig() = default;
  ColourConfig(const ColourConfig&) = delete;
  ColourConfig& operator=(const ColourConfig&) = delete;

  // Of spaces, and of roles, which are other names for some.
  virtual std::vector<std::string> Names() const = 0;

  // Whether that is a name, in large or small letters.
  virtual bool Knows(const std::string& name) const = 0;

  // From one known space into scene_linear, and from there to another.
  // Throws Failure if the configuration cannot do it.
  virtual std::shared_ptr<const ColourPath> Path(const std::string& in,
                                                 const std::string& out) const = 0;

  // Screens that pictures can be shown on, the usual one first.
  virtual std::vector<std::string> Displays() const = 0;

  // The ways to show them there, the usual one first; none for a display that is not there.
  virtual std::vector<std::string> Views(const std::string& display) const = 0;

  // From a known space to what such a screen is given. Null where that is the same.
  // Throws Failure if the configuration cannot do it.
  virtual std::shared_ptr<const ColourTransform> DisplayPath(const std::string& in,
                                                             const std::string& display,
                                                             const std::string& view) const = 0;
};

}  // namespace glimmerhost
