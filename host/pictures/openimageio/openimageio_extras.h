// SPDX-License-Identifier: BSD-3-Clause
// What an EXR holds beside the picture: channels of its first part, and further parts. They go on
// into an EXR as they are, but for channels that are blurred.
#pragma once

#include <OpenImageIO/imageio.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/pictures/channels.h"
#include "host/pictures/picture.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

// Samples are those of the file, bit for bit, in rows without a gap.
struct FileExtras {
  struct Channel {
    std::string name;
    OIIO::TypeDesc type;
    std::vector<std::byte> samples;
  };
  struct Part {
    OIIO::ImageSpec spec;
    std::vector<std::byte> samples;  // of all its channels, each of its own type
  };

  std::vector<Channel> channels;
  std::vector<Part> parts;
};

// Whether a file's extras can be in the output that it is read for.
bool KeepsExtras(const OIIO::ImageInput& input, const ReadOptions& options);

// Reads all but the picture's own channels. Null where there is nothing else.
//   input   at its first part
//   report  receives what is not kept
// Throws Failure, which names the file.
std::shared_ptr<const FileExtras> ReadExtras(const std::filesystem::path& file,
                                             const ChannelMap& map, OIIO::ImageInput* input,
                                             ReadReport* report);

// What of the extras is to be blurred. Of a layer with red, green and blue, all of which are asked
// for, these are a picture, and its alpha goes with them; any other channel is one of its own.
//   spec    of the first part: a pattern may also mean the picture's own channels
//   extras  may be null
// Throws Failure, which names the file, for a pattern that no channel has.
std::vector<PictureLayer> TakeLayers(const std::filesystem::path& file, const OIIO::ImageSpec& spec,
                                     const FileExtras* extras, const ReadOptions& options,
                                     const Picture& picture, ReadReport* report);

// Adds the extras' channels to the picture's in a part that is to be written.
void AddExtraChannels(const Picture& picture, OIIO::ImageSpec* spec);

// Gives a part behind the first what all parts of a file must have alike.
//   first  as it will be written
void ShareWithParts(const OIIO::ImageSpec& first, OIIO::ImageSpec* part);

// The samples of that part, each of its channel's type.
//   own     the picture's, as floats
//   spec    with all channels
//   cut     counts those of blurred channels that half floats do not hold, and that are cut to them
std::vector<std::byte> WithExtraChannels(const Picture& picture, const std::vector<float>& own,
                                         const OIIO::ImageSpec& spec, std::uint64_t* cut);

}  // namespace glimmerhost
