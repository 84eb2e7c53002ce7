// SPDX-License-Identifier: BSD-3-Clause
// Between straight and premultiplied alpha.
#pragma once

#include <cstdint>
#include <string>

#include "host/pictures/picture.h"
#include "host/pictures/picture_formats.h"

namespace glimmerhost {

// colour * alpha, with 65535 as one, to the nearest.
std::uint16_t Multiplied(std::uint16_t colour, std::uint16_t alpha);

// colour / alpha, to the nearest and at most 65535. Alpha 0 gives 0.
std::uint16_t Divided(std::uint16_t colour, std::uint16_t alpha);

// Whether files with straight alpha are to be premultiplied, by "premultiplied" or "as-is".
//   name  how the text's origin is called in an error
// Throws UsageError.
bool ParsePremultiplied(const std::string& name, const std::string& text);

// Pictures that are not straight, or not premultiplied, are left as they are.
void Premultiply(Picture* picture);
void Unpremultiply(Picture* picture);

// Alpha of a picture that was premultiplied for the effect, as the output's format has it, or
// as it was before.
void SettleAlpha(const OutputFormat& format, Alpha before, Picture* picture);

}  // namespace glimmerhost
