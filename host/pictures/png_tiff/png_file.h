// SPDX-License-Identifier: BSD-3-Clause
// Pictures in PNG files, by libpng.
#pragma once

#include <filesystem>
#include <string>

#include "host/pictures/beyond_reader.h"
#include "host/pictures/coding.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_head.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

// Palettes, few bits and a transparent colour come out as the colours and alpha that they
// stand for. Throws Failure, which names the file, and BeyondReader.
//   metadataBeyond  as of ReadPngOrTiff
Picture ReadPng(const std::filesystem::path& file, const ReadOptions& options, Reader reader,
                std::string* metadataBeyond);

// Throws Failure, which names the file.
PictureHead ReadPngHead(const std::filesystem::path& file);

// Throws Failure with the bare reason.
//   coding  of 8 or 16 bits
void WritePng(const std::filesystem::path& file, const Picture& picture, const Coding& coding);

}  // namespace glimmerhost
