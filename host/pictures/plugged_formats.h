// SPDX-License-Identifier: BSD-3-Clause
// Formats that the program has not itself, by a plug-in where the system has one.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/picture_formats.h"

namespace glimmerhost {

// Whether this build has one. Without it there are no formats but the program's own, and none of
// the functions below is to be called.
extern const bool kHasPicturePlugin;

// Each opens the plug-in if none has before, and it stays open until the program ends. All do what
// those of picture_formats.h do, and throw Failure as well if the plug-in does not open.

std::optional<OutputFormat> PluggedFormatOf(const std::filesystem::path& file);

//   why  what the plug-in is needed for, as in "its colours are CMYK"
Picture ReadPlugged(const std::filesystem::path& file, const std::string& why,
                    const ReadOptions& options, ReadReport* report);

//   why  as of ReadPlugged
PictureHead ReadPluggedHead(const std::filesystem::path& file, const std::string& why);

// Gives a picture of whole numbers, or of floats without colours to transform, whose samples are
// read already, what only the plug-in knows of its file: the options' colours, and all that the
// file says beside its samples.
void CompletePlugged(const std::filesystem::path& file, const std::string& why,
                     const ReadOptions& options, Picture* picture, ReadReport* report);

void WritePlugged(const OutputFile& file, const OutputFormat& format, const Picture& picture,
                  const Coding& coding, std::vector<NotCarried>* lost);

}  // namespace glimmerhost
