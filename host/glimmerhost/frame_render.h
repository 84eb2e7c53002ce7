// One frame through the effect's border.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/glimmerhost/border_pictures.h"
#include "host/glimmerhost/effect_module.h"
#include "host/glimmerhost/page.h"
#include "host/glimmerhost/progress.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_file.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// Reads the samples of a picture.
//   remarks  receives a line if something of it was lost
Picture ReadNoting(const std::filesystem::path& file, std::vector<std::string>* remarks);

// The same, with a warning at once.
//   keptFor  as among ReadOptions
Picture ReadWithWarning(const std::filesystem::path& file, const std::string& keptFor,
                        Progress* progress);

// The frame of the second clip, which the image shape takes its aperture from; null for no file.
// The effect wants it as large as the frame: a smaller picture is centred on black, a larger one
// loses its edges, and neither is scaled.
//   premultiplied  whether straight alpha is multiplied in, as it is for the frame
quantel::cPtr<FrameImage> OpenSpread(const std::filesystem::path& file, int width, int height,
                                     bool premultiplied, std::vector<std::string>* remarks);

// Replaces the picture by what the effect makes of it, by an instance of its own, so that
// none depends on the one before. Throws Failure.
void RenderPicture(const EffectModule& module, const std::map<std::string, Value>& values,
                   const quantel::cPtr<FrameImage>& spread, quantel::cSize2 pixelAspect,
                   Picture* picture);

// Alpha of a picture that was premultiplied for the effect, as the output's format has it, or
// as it was before.
void SettleAlpha(const OutputFormat& format, Alpha before, Picture* picture);

}  // namespace glimmerhost
