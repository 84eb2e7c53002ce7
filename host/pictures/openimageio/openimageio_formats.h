// SPDX-License-Identifier: BSD-3-Clause
// Pictures in all formats that OpenImageIO reads and writes. As the functions of picture_formats.h
// are, and by their kinds of exceptions.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "host/pictures/file_bytes.h"
#include "host/pictures/picture_formats.h"

namespace glimmerhost {

std::optional<OutputFormat> OpenImageIoFormatOf(const std::filesystem::path& file);

Picture ReadByOpenImageIo(const std::filesystem::path& file, const ReadOptions& options,
                          ReadReport* report);

PictureHead ReadHeadByOpenImageIo(const std::filesystem::path& file);

void CompleteByOpenImageIo(const std::filesystem::path& file, const ReadOptions& options,
                           Picture* picture, ReadReport* report);

//   bytes  the file, just made; closed when all is written
void WriteByOpenImageIo(const OutputFile& file, FileBytes* bytes, const OutputFormat& format,
                        const Picture& picture, const Coding& coding,
                        std::vector<NotCarried>* lost);

}  // namespace glimmerhost
