// SPDX-License-Identifier: BSD-3-Clause
// ColourConfig: colour spaces by their names, from a configuration of OpenColorIO.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/colour_path.h"

namespace glimmerhost {

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
};

}  // namespace glimmerhost
