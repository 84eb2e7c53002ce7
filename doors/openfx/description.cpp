// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/description.h"

#include "doors/openfx/instance.h"
#include "doors/openfx/overlay.h"
#include "doors/openfx/parameters.h"

namespace lx::openfx {
namespace {

constexpr char kName[] = "GlimmerBlur";
constexpr char kGrouping[] = "Filter";
constexpr char kDescription[] =
    "Lens defocus. Every point of the picture spreads over an aperture: a circle, an ellipse, a "
    "polygon or a picture. Highlights can outweigh the rest: bright points open into images of the "
    "aperture.";

Properties DefineClip(ofx::ImageEffect* effect, const char* name, const char* label) {
  ofx::PropertySet* made = nullptr;
  Check(HostSuites().effects->clipDefine(effect, name, &made));
  const Properties clip(made);
  clip.Offer(ofx::kPropLabel, label);
  clip.Set(ofx::kImageEffectPropSupportedComponents, ofx::kImageComponentRgba, 0);
  clip.Set(ofx::kImageEffectPropSupportedComponents, ofx::kImageComponentAlpha, 1);
  clip.Offer(ofx::kImageEffectPropSupportsTiles, 0);
  clip.Offer(ofx::kImageEffectPropTemporalClipAccess, 0);
  return clip;
}

// The host's draw suite where it has one: OpenGL may be of a kind there that draws nothing.
void OfferOverlay(const Properties& effect) {
  const Suites& suites = HostSuites();
  if (suites.interacts == nullptr) {
    return;
  }
  const bool taken =
      suites.drawing != nullptr && effect.Offer(ofx::kImageEffectPluginPropOverlayInteractV2,
                                                reinterpret_cast<void*>(OverlayOfDrawSuite));
  if (!taken) {
    effect.Offer(ofx::kImageEffectPluginPropOverlayInteractV1,
                 reinterpret_cast<void*>(OverlayOfOpenGl));
  }
}

}  // namespace

void Describe(ofx::ImageEffect* effect) {
  const Properties made = PropertiesOf(effect);
  made.Set(ofx::kPropLabel, kName);
  made.Offer(ofx::kPropShortLabel, kName);
  made.Offer(ofx::kPropLongLabel, kName);
  made.Offer(ofx::kPropPluginDescription, kDescription);
  made.Offer(ofx::kImageEffectPluginPropGrouping, kGrouping);
  made.Set(ofx::kImageEffectPropSupportedContexts, ofx::kImageEffectContextFilter, 0);
  made.Set(ofx::kImageEffectPropSupportedContexts, ofx::kImageEffectContextGeneral, 1);
  made.Set(ofx::kImageEffectPropSupportedPixelDepths, ofx::kBitDepthByte, 0);
  made.Set(ofx::kImageEffectPropSupportedPixelDepths, ofx::kBitDepthShort, 1);
  made.Set(ofx::kImageEffectPropSupportedPixelDepths, ofx::kBitDepthFloat, 2);
  made.Offer(ofx::kImageEffectPluginPropSingleInstance, 0);
  made.Offer(ofx::kImageEffectPluginPropHostFrameThreading, 0);
  made.Offer(ofx::kImageEffectPropSupportsMultiResolution, 1);
  made.Set(ofx::kImageEffectPropSupportsTiles, 0);
  made.Offer(ofx::kImageEffectPropTemporalClipAccess, 0);
  // Intended: once for both fields. An aperture spreads over frames; there is no half of one.
  made.Offer(ofx::kImageEffectPluginPropFieldRenderTwiceAlways, 0);
  made.Offer(ofx::kImageEffectPropSupportsMultipleClipDepths, 0);
  made.Offer(ofx::kImageEffectPropSupportsMultipleClipPars, 0);
  made.Set(ofx::kImageEffectPluginRenderThreadSafety, ofx::kImageEffectRenderInstanceSafe);
  OfferOverlay(made);
}

void DescribeInContext(ofx::ImageEffect* effect, const std::string& context) {
  const bool general = context == ofx::kImageEffectContextGeneral;
  if (!general && context != ofx::kImageEffectContextFilter) {
    throw Failure{ofx::kErrUnsupported, {}};
  }
  const Properties source = DefineClip(effect, ofx::kSourceClipName, "Source");
  source.Offer(ofx::kImageClipPropFieldExtraction, ofx::kImageFieldBoth);
  if (general) {
    const Properties aperture = DefineClip(effect, kApertureClipName, "Aperture");
    aperture.Set(ofx::kImageClipPropOptional, 1);
    aperture.Offer(ofx::kImageClipPropFieldExtraction, ofx::kImageFieldBoth);
  }
  DefineClip(effect, ofx::kOutputClipName, "Output");
  ofx::ParameterSet* parameters = nullptr;
  Check(HostSuites().effects->getParamSet(effect, &parameters));
  DefineParameters(parameters, general);
}

}  // namespace lx::openfx
