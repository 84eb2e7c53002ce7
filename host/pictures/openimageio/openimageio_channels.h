// SPDX-License-Identifier: BSD-3-Clause
// Which of the channels and parts of a file that OpenImageIO reads are the picture's.
#pragma once

#include <OpenImageIO/imageio.h>

#include <filesystem>
#include <optional>
#include <string>

#include "host/pictures/channels.h"
#include "host/pictures/not_carried.h"

namespace glimmerhost {

// By their names if there are four or more, or if the format names all channels; by their places
// otherwise.
// Throws Failure, which names the file, where colours cannot be told.
ChannelMap MapChannels(const std::filesystem::path& file, const std::string& format,
                       const OIIO::ImageSpec& spec);

// The channels that are not in the map.
std::optional<NotCarried> ChannelsLeft(const ChannelMap& map, const OIIO::ImageSpec& spec);

// The parts or pages behind the first. Moves the input on, so that nothing else can be read.
std::optional<NotCarried> PartsLeft(OIIO::ImageInput* input);

}  // namespace glimmerhost
