// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/instance.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "doors/openfx/image.h"

namespace lx::openfx {
namespace {

// Beyond it a side of a region counts as infinite.
constexpr double kInfinite = 1e9;

// Up to it a centred aperture covers no more than its own pixel.
constexpr double kOwnPixel = 0.5;

Properties PropertiesOfClip(ofx::ImageClip* clip) {
  ofx::PropertySet* properties = nullptr;
  Check(HostSuites().effects->clipGetPropertySet(clip, &properties));
  return Properties(properties);
}

ofx::ImageClip* ClipOf(ofx::ImageEffect* effect, const char* name) {
  ofx::ImageClip* clip = nullptr;
  Check(HostSuites().effects->clipGetHandle(effect, name, &clip, nullptr));
  return clip;
}

// False where the clip has none, as one that is not connected.
bool RegionOf(ofx::ImageClip* clip, ofx::Time time, ofx::RectD* region) {
  const ofx::Status status = HostSuites().effects->clipGetRegionOfDefinition(clip, time, region);
  if (status == ofx::kFailed) {
    return false;
  }
  Check(status);
  return true;
}

bool IsFinite(const ofx::RectD& region) {
  return region.x1 > -kInfinite && region.y1 > -kInfinite && region.x2 < kInfinite &&
         region.y2 < kInfinite;
}

std::int32_t AskWhetherToAbort(void* effect, double /*done*/) {
  return HostSuites().effects->abort(static_cast<ofx::ImageEffect*>(effect));
}

// What of a part lies beside another rectangle is black and transparent.
void ClearOutside(const Image& image, const ofx::RectI& part, const ofx::RectI& inside) {
  if (IsEmpty(inside)) {
    image.Clear(part);
    return;
  }
  image.Clear({part.x1, part.y1, part.x2, inside.y1});
  image.Clear({part.x1, inside.y2, part.x2, part.y2});
  image.Clear({part.x1, inside.y1, inside.x1, inside.y2});
  image.Clear({inside.x2, inside.y1, part.x2, inside.y2});
}

}  // namespace

glimmerblur_look LookOf(const Settings& settings, const PixelGrid& grid) {
  glimmerblur_look look;
  glimmerblur_look_init(&look);
  look.shape = settings.shape;
  const bool matched = settings.shape == GLIMMERBLUR_POLYGON && settings.matchRadii;
  const double radiusY = matched ? settings.radiusX : settings.radiusY;
  // The library counts radii in heights of a pixel, and makes them so many of its widths as the
  // aspect says.
  look.radius_x = grid.Y(settings.radiusX);
  look.radius_y = grid.Y(radiusY);
  look.sides = settings.sides;
  look.rotation = settings.rotation;
  look.pixel_aspect = grid.aspect * grid.scale.y / grid.scale.x;
  look.emphasis = settings.emphasis;
  look.blur_alpha = settings.blurAlpha ? 1 : 0;
  look.emphasis_alpha = settings.emphasisAlpha ? 1 : 0;
  look.edge = settings.edge;
  look.centred = settings.centred ? 1 : 0;
  return look;
}

bool LeavesPictures(const glimmerblur_look& look) {
  if (look.centred == 0 || look.shape == GLIMMERBLUR_PICTURE) {
    return false;
  }
  const double radiusY = look.shape == GLIMMERBLUR_CIRCLE ? look.radius_x : look.radius_y;
  return std::max(look.radius_x, radiusY) * std::max(1.0, 1.0 / look.pixel_aspect) <= kOwnPixel;
}

Instance::Instance(ofx::ImageEffect* effect)
    : effect_(effect),
      source_(ClipOf(effect, ofx::kSourceClipName)),
      output_(ClipOf(effect, ofx::kOutputClipName)),
      aperture_(PropertiesOf(effect).String(ofx::kImageEffectPropContext) ==
                        ofx::kImageEffectContextGeneral
                    ? ClipOf(effect, kApertureClipName)
                    : nullptr),
      parameters_(effect, aperture_ != nullptr) {
  parameters_.Enable(parameters_.At(0.0));
}

Instance::~Instance() = default;

ofx::ImageClip* Instance::ConnectedAperture() const {
  if (aperture_ == nullptr ||
      PropertiesOfClip(aperture_).IntOr(ofx::kImageClipPropConnected, 1) == 0) {
    return nullptr;
  }
  return aperture_;
}

PixelGrid Instance::GridOf(const Properties& in) const {
  PixelGrid grid;
  grid.scale = {in.DoubleOr(ofx::kImageEffectPropRenderScale, 0, 1.0),
                in.DoubleOr(ofx::kImageEffectPropRenderScale, 1, 1.0)};
  grid.aspect = PropertiesOfClip(source_).DoubleOr(ofx::kImagePropPixelAspectRatio, 0, 1.0);
  if (!(grid.scale.x > 0.0 && grid.scale.y > 0.0 && grid.aspect > 0.0)) {
    throw Failure{ofx::kFailed, "The host gave a scale or a pixel aspect that is not above 0."};
  }
  return grid;
}

void Instance::Render(const Properties& in) {
  const std::lock_guard lock(rendering_);
  const ofx::Time time = in.Double(ofx::kPropTime);
  const ofx::RectI window = in.RectI(ofx::kImageEffectPropRenderWindow);
  const PixelGrid grid = GridOf(in);
  const Settings settings = parameters_.At(time);
  Image output(output_, time, grid.scale);
  if (!output.Exists()) {
    throw Failure{ofx::kFailed, {}};
  }
  Image source(source_, time, grid.scale);
  const ofx::RectI part = Intersection(window, output.Bounds());
  ofx::RectI inside{};
  if (source.Exists()) {
    if (source.Kind() != output.Kind()) {
      throw Failure{ofx::kErrImageFormat, "The output has pixels of another kind than the source."};
    }
    inside = Intersection(part, source.Bounds());
  }
  if (!IsEmpty(inside)) {
    TakeLook(settings, grid, source.Kind().channels);
    if (settings.shape == GLIMMERBLUR_PICTURE) {
      TakeAperture(settings, grid, time);
    }
    Blur(source, output, inside);
  }
  // Not before: a frame that cannot be blurred leaves the output as it was.
  ClearOutside(output, part, inside);
  source.Release();
  output.Release();
  if (hasTold_) {
    HideMessage(effect_);
    hasTold_ = false;
  }
}

void Instance::CheckObject(glimmerblur_status status) const {
  if (status == GLIMMERBLUR_OK) {
    return;
  }
  const std::string text =
      object_ != nullptr ? glimmerblur_message(object_.get()) : glimmerblur_status_text(status);
  throw Failure{status == GLIMMERBLUR_NO_MEMORY ? ofx::kErrMemory : ofx::kFailed, text};
}

void Instance::TakeLook(const Settings& settings, const PixelGrid& grid, int channels) {
  if (object_ == nullptr) {
    glimmerblur* made = nullptr;
    CheckObject(glimmerblur_create(nullptr, &made));
    object_.reset(made);
    glimmerblur_set_progress(made, AskWhetherToAbort, effect_);
  }
  glimmerblur_look look = LookOf(settings, grid);
  if (channels == 1 && !settings.emphasisAlpha) {
    look.emphasis = 1.0;
  }
  CheckObject(glimmerblur_set_look(object_.get(), &look));
}

void Instance::TakeAperture(const Settings& settings, const PixelGrid& grid, ofx::Time time) {
  ofx::ImageClip* clip = ConnectedAperture();
  if (clip == nullptr) {
    throw Failure{ofx::kFailed, "The shape is a picture, but none is connected to Aperture."};
  }
  Image picture(clip, time, grid.scale);
  if (!picture.Exists()) {
    throw Failure{ofx::kFailed, "The shape is a picture, but Aperture has none at this time."};
  }
  const ofx::RectI& bounds = picture.Bounds();
  const glimmerblur_frame frame = picture.Frame(bounds);
  double inner = -1.0;
  double outer = -1.0;
  // The pixel in the middle, or the upper right one of the four there.
  const std::int32_t middleX = frame.rect.width / 2;
  const std::int32_t middleY = frame.rect.height - frame.rect.height / 2;
  ofx::PointD centre{static_cast<double>(middleX), static_cast<double>(middleY)};
  if (!settings.wholePicture) {
    inner = grid.Y(settings.innerRadius);
    outer = grid.Y(settings.outerRadius);
    centre = {centre.x + grid.X(settings.centre.x), centre.y - grid.Y(settings.centre.y)};
  }
  CheckObject(glimmerblur_set_aperture(object_.get(), &frame, centre.x, centre.y, inner, outer));
  picture.Release();
}

void Instance::Blur(const Image& source, const Image& output, const ofx::RectI& part) {
  glimmerblur_frame from = source.Frame(source.Bounds());
  glimmerblur_frame to = output.Frame(part);
  const std::string alpha = PropertiesOfClip(source_).StringOr(
      ofx::kImageEffectPropPreMultiplication, ofx::kImagePreMultiplied);
  from.alpha =
      alpha == ofx::kImageUnPreMultiplied ? GLIMMERBLUR_STRAIGHT : GLIMMERBLUR_PREMULTIPLIED;
  to.alpha = from.alpha;
  const glimmerblur_status status = glimmerblur_render(object_.get(), &from, &to, nullptr);
  // Intended: a frame that the host has given up ends well. It throws the picture away, which kept
  // what it held, and would show any other answer as an error.
  if (status != GLIMMERBLUR_CANCELLED) {
    CheckObject(status);
  }
}

bool Instance::IsIdentity(const Properties& in, const Properties& out) const {
  const ofx::Time time = in.Double(ofx::kPropTime);
  if (!LeavesPictures(LookOf(parameters_.At(time), GridOf(in)))) {
    return false;
  }
  out.Set(ofx::kPropName, ofx::kSourceClipName);
  out.Set(ofx::kPropTime, time);
  return true;
}

bool Instance::GiveRegionOfDefinition(const Properties& in, const Properties& out) const {
  ofx::RectD region{};
  if (!RegionOf(source_, in.Double(ofx::kPropTime), &region)) {
    return false;
  }
  out.Set(ofx::kImageEffectPropRegionOfDefinition, region);
  return true;
}

bool Instance::GiveRegionsOfInterest(const Properties& in, const Properties& out) const {
  const ofx::Time time = in.Double(ofx::kPropTime);
  bool given = false;
  for (ofx::ImageClip* clip : {source_, aperture_}) {
    ofx::RectD region{};
    // Of an endless picture there is no whole: the host's own choice has to do.
    if (clip == nullptr || !RegionOf(clip, time, &region) || !IsFinite(region)) {
      continue;
    }
    const char* name = clip == source_ ? ofx::kSourceClipName : kApertureClipName;
    out.Set((std::string(ofx::kClipRegionOfInterestPrefix) + name).c_str(), region);
    given = true;
  }
  return given;
}

// In the general context the output would be coloured as soon as an aperture is.
bool Instance::GiveClipPreferences(const Properties& out) const {
  const Properties source = PropertiesOfClip(source_);
  bool given = false;
  if (aperture_ != nullptr) {
    const std::string components = source.StringOr(ofx::kImageEffectPropComponents, "");
    if (components == ofx::kImageComponentRgba || components == ofx::kImageComponentAlpha) {
      out.Set((std::string(ofx::kClipComponentsPrefix) + ofx::kOutputClipName).c_str(),
              components.c_str());
      given = true;
    }
  }
  const std::string alpha = source.StringOr(ofx::kImageEffectPropPreMultiplication, "");
  if (!alpha.empty()) {
    given = out.Offer(ofx::kImageEffectPropPreMultiplication, alpha.c_str()) || given;
  }
  return given;
}

void Instance::HearOfChange(const Properties& in) const {
  if (Parameters::DecidesOthers(in.String(ofx::kPropName))) {
    parameters_.Enable(parameters_.At(in.DoubleOr(ofx::kPropTime, 0, 0.0)));
  }
}

void Instance::PurgeCaches() {
  const std::lock_guard lock(rendering_);
  object_.reset();
}

void Instance::Tell(const std::string& text) {
  const std::lock_guard lock(rendering_);
  ShowMessage(effect_, text);
  hasTold_ = true;
}

}  // namespace lx::openfx
