// SPDX-License-Identifier: BSD-3-Clause
// Between the channels of a file and the four of a Picture.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/pictures/picture.h"

namespace glimmerhost {

// Which of a file's channels are the picture's. Grey uses one for all three colours; -1 is
// no alpha.
struct ChannelMap {
  int red;
  int green;
  int blue;
  int alpha;
  bool grey;
};

// Of the 1 to 4 channels that files have without names.
//   count  1 grey, 2 with alpha, 3 colours, 4 with alpha
ChannelMap MapPlainChannels(int count);

// Copies the mapped channels of a file's samples, pixel after pixel, into the picture, whose
// size is set.
//   channels  of a pixel of the file
void SpreadChannels(const std::vector<std::uint16_t>& from, int channels, const ChannelMap& map,
                    Picture* picture);

// Of a file that can hold them all: 1 to 4.
int ChannelsToWrite(const Picture& picture);

// The samples that go into a file of 1 to 4 channels: one colour is the mean of three.
std::vector<std::uint16_t> GatherChannels(const Picture& picture, int channels);

// The same of some rows.
//   to  room for as many rows of the picture's width
void GatherRows(const Picture& picture, int channels, int firstRow, int rows, std::uint16_t* to);

// 16 bits to the nearest of 8.
std::vector<std::uint8_t> ToBytes(const std::vector<std::uint16_t>& samples);

// 16 bits to the nearest that so many bits have, as 16 bits again: whoever drops the low ones then
// drops nothing that matters.
//   bits  8 to 16
void RoundToBits(int bits, std::vector<std::uint16_t>* samples);

// Throws Failure "FILE: why" in one line.
[[noreturn]] void ReadFailure(const std::filesystem::path& file, const std::string& why);

// The sides that memory and the effect's sizes can stand at all; a broken header may claim
// anything. Throws Failure, which names the file.
void CheckSides(const std::filesystem::path& file, std::int64_t width, std::int64_t height);

}  // namespace glimmerhost
