// SPDX-License-Identifier: BSD-3-Clause
// One instance of the effect: what the host asks of it, and the library's object that does it.
//
// The host may have one thread render and another one ask at the same time. Only rendering and
// giving memory back take turns.
#pragma once

#include <memory>
#include <mutex>

#include "doors/library/glimmerblur.h"
#include "doors/openfx/host.h"
#include "doors/openfx/parameters.h"

namespace lx::openfx {

class Image;

inline constexpr char kApertureClipName[] = "Aperture";

// How canonical coordinates become the pixels of an image.
struct PixelGrid {
  ofx::PointD scale = {1.0, 1.0};  // of the render
  double aspect = 1.0;             // of a pixel at full size

  double X(double canonical) const { return canonical * scale.x / aspect; }
  double Y(double canonical) const { return canonical * scale.y; }
};

// The look of the library for these settings, and for pictures of such pixels.
glimmerblur_look LookOf(const Settings& settings, const PixelGrid& grid);

// Whether the radii of a look are too small to change anything.
bool LeavesPictures(const glimmerblur_look& look);

class Instance {
 public:
  explicit Instance(ofx::ImageEffect* effect);
  ~Instance();
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;

  void Render(const Properties& in);

  // False where it has to be rendered.
  bool IsIdentity(const Properties& in, const Properties& out) const;

  // False where they leave the host's own answer.
  bool GiveRegionOfDefinition(const Properties& in, const Properties& out) const;
  bool GiveRegionsOfInterest(const Properties& in, const Properties& out) const;
  bool GiveClipPreferences(const Properties& out) const;

  void HearOfChange(const Properties& in) const;

  // Gives back what the next render makes anew.
  void PurgeCaches();

  // Says what has failed, once.
  void Tell(const std::string& text);

  const Parameters& Values() const { return parameters_; }
  bool HasAperture() const { return aperture_ != nullptr; }
  ofx::ImageClip* Source() const { return source_; }

  // The clip to which the aperture's picture is connected; null where none is.
  ofx::ImageClip* ConnectedAperture() const;

 private:
  struct ObjectEnd {
    void operator()(glimmerblur* object) const { glimmerblur_destroy(object); }
  };

  PixelGrid GridOf(const Properties& in) const;
  void TakeLook(const Settings& settings, const PixelGrid& grid, int channels);
  void TakeAperture(const Settings& settings, const PixelGrid& grid, ofx::Time time);
  void Blur(const Image& source, const Image& output, const ofx::RectI& part);
  void CheckObject(glimmerblur_status status) const;

  ofx::ImageEffect* effect_;
  ofx::ImageClip* source_ = nullptr;
  ofx::ImageClip* output_ = nullptr;
  ofx::ImageClip* aperture_ = nullptr;  // null in a context without
  Parameters parameters_;

  std::mutex rendering_;  // for what follows
  std::unique_ptr<glimmerblur, ObjectEnd> object_;
  bool hasTold_ = false;
};

}  // namespace lx::openfx
