// SPDX-License-Identifier: BSD-3-Clause
// What the plug-ins of this folder have in common: a table of parameters, and instances that hold
// their values and an object of libglimmerblur each.
//
// A program may use instances on several threads at once, but each of them on one at a time. So
// nothing is shared here that anybody writes.
//
// Frames are packed RGBA, 8 bits a sample, top row first, of the size that the instance was made
// for. Programs that know this format hold alpha straight.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "doors/library/glimmerblur.h"

namespace glimmerblur_frei0r {

// All values are numbers from 0 to 1; an on-off parameter is on from 0.5.
struct Parameter {
  const char* name;
  bool isSwitch;
  double initial;
  const char* explanation;
};

class Instance {
 public:
  // Null where the library makes no object, or for an empty frame.
  static std::unique_ptr<Instance> Make(unsigned int width, unsigned int height,
                                        std::span<const Parameter> parameters);

  // What lies outside 0 to 1 is brought to its nearer end. A value that is not a number, and one
  // for a parameter that there is none of, change nothing.
  void Set(int parameter, double value);

  // 0 for a parameter that there is none of.
  double Get(int parameter) const;
  bool IsOn(int parameter) const { return Get(parameter) >= 0.5; }

  std::int32_t Width() const { return width_; }
  std::int32_t Height() const { return height_; }

  // Has a frame's red be the aperture; see glimmerblur_set_aperture. The same one once more costs a
  // comparison alone. Null takes it away. False where that fails.
  bool SetAperture(const std::uint32_t* frame, double centreX, double centreY, double inner,
                   double outer);

  // Blurs a frame into another. Where that fails, the frame is left as it is.
  void Render(const glimmerblur_look& look, bool isPremultiplied, const std::uint32_t* in,
              std::uint32_t* out);

  // For a frame that cannot be blurred: copies it. The instance's first failure is told on the
  // standard error stream, as the format has no word for it.
  void Leave(const std::uint32_t* in, std::uint32_t* out);

 private:
  struct Aperture {
    double centreX;
    double centreY;
    double inner;
    double outer;
    std::vector<std::uint32_t> pixels;
  };
  struct Destroy {
    void operator()(glimmerblur* object) const { glimmerblur_destroy(object); }
  };

  Instance() = default;
  std::size_t PixelCount() const;
  glimmerblur_frame Frame(const std::uint32_t* pixels) const;

  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  std::vector<double> values_;
  std::unique_ptr<glimmerblur, Destroy> object_;
  std::unique_ptr<Aperture> aperture_;
  bool hasComplained_ = false;
};

// One plug-in: each file of the format holds one, and its source defines kPlugin.
struct Plugin {
  const char* name;
  int type;  // a plug-in type of the format
  const char* explanation;
  std::span<const Parameter> parameters;
  // A filter has no second frame.
  void (*update)(Instance* instance, const std::uint32_t* in, const std::uint32_t* second,
                 std::uint32_t* out);
};
extern const Plugin kPlugin;

// A radius of 1 is this part of the frame's width. Parts of the width, so that a preview in another
// size looks the same; a tenth, as sliders in hundredths then are fine enough.
inline constexpr double kRadiusRange = 0.1;

// What an emphasis of 1 stands for; the library goes to 500. Light is pressed together by its
// curve, and the steps of 8 bits come out of it larger than they went in. Against a blur in float,
// at a radius of 38 pixels and an emphasis of 10, 20, 30, 50:
//   a soft glow on black                0.3   1.7   4.1   9.7 steps
//   a bright horizon, slowly dimmer       5    20    43    90 steps along its edge
// Up to 20 a glow is as smooth as it was; above that it has rings.
inline constexpr double kEmphasisRange = 20.0;

}  // namespace glimmerblur_frei0r
