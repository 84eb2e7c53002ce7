// SPDX-License-Identifier: BSD-3-Clause
// OpenFX: image effects, their clips and images.
//
// Pixels count from the bottom left, and so do rows in memory. Canonical coordinates are those of
// square pixels at full size; an image's pixels are as many times wider as its aspect says, and as
// many times fewer as the render scale says.
#pragma once

#include <cstddef>

#include "doors/openfx/ofx/core.h"

namespace ofx {

struct ImageEffect;
struct ImageClip;
struct ImageMemory;
struct ParameterSet;

extern "C" {

struct ImageEffectSuite {
  Status (*getPropertySet)(ImageEffect*, PropertySet** properties);
  Status (*getParamSet)(ImageEffect*, ParameterSet** parameters);
  Status (*clipDefine)(ImageEffect*, const char* name, PropertySet** properties);
  Status (*clipGetHandle)(ImageEffect*, const char* name, ImageClip** clip,
                          PropertySet** properties);
  Status (*clipGetPropertySet)(ImageClip*, PropertySet** properties);
  // kFailed: there is no image, which counts as a black and transparent one.
  Status (*clipGetImage)(ImageClip*, Time time, const RectD* region, PropertySet** image);
  Status (*clipReleaseImage)(PropertySet* image);
  Status (*clipGetRegionOfDefinition)(ImageClip*, Time time, RectD* bounds);
  int (*abort)(ImageEffect*);  // 1: give up
  Status (*imageMemoryAlloc)(ImageEffect*, std::size_t bytes, ImageMemory** memory);
  Status (*imageMemoryFree)(ImageMemory*);
  Status (*imageMemoryLock)(ImageMemory*, void** data);
  Status (*imageMemoryUnlock)(ImageMemory*);
};

}  // extern "C"

inline constexpr char kImageEffectSuite[] = "OfxImageEffectSuite";
inline constexpr char kImageEffectPluginApi[] = "OfxImageEffectPluginAPI";
inline constexpr int kImageEffectPluginApiVersion = 1;

inline constexpr char kOutputClipName[] = "Output";
inline constexpr char kSourceClipName[] = "Source";

inline constexpr char kImageComponentRgba[] = "OfxImageComponentRGBA";
inline constexpr char kImageComponentAlpha[] = "OfxImageComponentAlpha";

inline constexpr char kImageEffectContextFilter[] = "OfxImageEffectContextFilter";
inline constexpr char kImageEffectContextGeneral[] = "OfxImageEffectContextGeneral";

inline constexpr char kImageEffectActionDescribeInContext[] =
    "OfxImageEffectActionDescribeInContext";
inline constexpr char kImageEffectActionGetRegionOfDefinition[] =
    "OfxImageEffectActionGetRegionOfDefinition";
inline constexpr char kImageEffectActionGetRegionsOfInterest[] =
    "OfxImageEffectActionGetRegionsOfInterest";
inline constexpr char kImageEffectActionGetClipPreferences[] =
    "OfxImageEffectActionGetClipPreferences";
inline constexpr char kImageEffectActionIsIdentity[] = "OfxImageEffectActionIsIdentity";
inline constexpr char kImageEffectActionRender[] = "OfxImageEffectActionRender";

// Of an effect.
inline constexpr char kImageEffectPropContext[] = "OfxImageEffectPropContext";
inline constexpr char kImageEffectPropSupportedContexts[] = "OfxImageEffectPropSupportedContexts";
inline constexpr char kImageEffectPropSupportedPixelDepths[] =
    "OfxImageEffectPropSupportedPixelDepths";
inline constexpr char kImageEffectPropSupportsMultiResolution[] =
    "OfxImageEffectPropSupportsMultiResolution";
inline constexpr char kImageEffectPropSupportsTiles[] = "OfxImageEffectPropSupportsTiles";
inline constexpr char kImageEffectPropTemporalClipAccess[] = "OfxImageEffectPropTemporalClipAccess";
inline constexpr char kImageEffectPropSupportsMultipleClipDepths[] =
    "OfxImageEffectPropMultipleClipDepths";
inline constexpr char kImageEffectPropSupportsMultipleClipPars[] =
    "OfxImageEffectPropSupportsMultipleClipPARs";
inline constexpr char kImageEffectPluginPropGrouping[] = "OfxImageEffectPluginPropGrouping";
inline constexpr char kImageEffectPluginPropSingleInstance[] =
    "OfxImageEffectPluginPropSingleInstance";
inline constexpr char kImageEffectPluginRenderThreadSafety[] =
    "OfxImageEffectPluginRenderThreadSafety";
inline constexpr char kImageEffectRenderInstanceSafe[] = "OfxImageEffectRenderInstanceSafe";
inline constexpr char kImageEffectPluginPropHostFrameThreading[] =
    "OfxImageEffectPluginPropHostFrameThreading";
inline constexpr char kImageEffectPluginPropFieldRenderTwiceAlways[] =
    "OfxImageEffectPluginPropFieldRenderTwiceAlways";
inline constexpr char kImageEffectPluginPropOverlayInteractV1[] =
    "OfxImageEffectPluginPropOverlayInteractV1";  // draws by OpenGL
inline constexpr char kImageEffectPluginPropOverlayInteractV2[] =
    "OfxImageEffectPluginPropOverlayInteractV2";  // draws by the draw suite

// Of a clip.
inline constexpr char kImageEffectPropSupportedComponents[] =
    "OfxImageEffectPropSupportedComponents";
inline constexpr char kImageClipPropOptional[] = "OfxImageClipPropOptional";
inline constexpr char kImageClipPropConnected[] = "OfxImageClipPropConnected";
inline constexpr char kImageClipPropFieldExtraction[] = "OfxImageClipPropFieldExtraction";
inline constexpr char kImageFieldBoth[] = "OfxFieldBoth";

// Of clips and images.
inline constexpr char kImageEffectPropPixelDepth[] = "OfxImageEffectPropPixelDepth";
inline constexpr char kImageEffectPropComponents[] = "OfxImageEffectPropComponents";
inline constexpr char kImageEffectPropPreMultiplication[] = "OfxImageEffectPropPreMultiplication";
inline constexpr char kImagePreMultiplied[] = "OfxImageAlphaPremultiplied";
inline constexpr char kImageUnPreMultiplied[] = "OfxImageAlphaUnPremultiplied";
inline constexpr char kImagePropPixelAspectRatio[] = "OfxImagePropPixelAspectRatio";

// Of an image.
inline constexpr char kImagePropData[] = "OfxImagePropData";
inline constexpr char kImagePropBounds[] = "OfxImagePropBounds";
inline constexpr char kImagePropRowBytes[] = "OfxImagePropRowBytes";

// Of actions.
inline constexpr char kImageEffectPropRenderScale[] = "OfxImageEffectPropRenderScale";
inline constexpr char kImageEffectPropRenderWindow[] = "OfxImageEffectPropRenderWindow";
inline constexpr char kImageEffectPropRegionOfDefinition[] = "OfxImageEffectPropRegionOfDefinition";

// Each goes before the name of a clip.
inline constexpr char kClipRegionOfInterestPrefix[] = "OfxImageClipPropRoI_";
inline constexpr char kClipComponentsPrefix[] = "OfxImageClipPropComponents_";

}  // namespace ofx
