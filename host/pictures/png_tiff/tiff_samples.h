// SPDX-License-Identifier: BSD-3-Clause
// The samples of a TIFF file's blocks, of whatever width, as whole rows of words or floats.
#pragma once

#include <cstddef>
#include <cstdint>

namespace glimmerhost {

// What one row of a block, in the machine's byte order, becomes.
//   from    packed from the high bit on if bits is below 8
//   count   samples
//   stride  samples from one in to to the next

//   bits  1, 2, 4, 8 or 16, which come out as the numbers that they are; or 32, rounded to 16
void UnpackWords(const std::uint8_t* from, std::size_t count, int bits, std::size_t stride,
                 std::uint16_t* to);

// A row of whole pixels as four samples of 16 bits each: grey three times, and 65535 for alpha
// where there is none. More than four channels are passed over, up to alpha at its place.
//   bits      8 or 16
//   channels  of a pixel of the file
//   alpha     its place, or -1
void UnpackPixels(const std::uint8_t* from, std::size_t count, int bits, int channels, int alpha,
                  std::uint16_t* to);

// Exchanges the two bytes of each sample.
void SwapWords(std::uint8_t* words, std::size_t count);

//   bits  16, 32 or 64
void UnpackFloats(const std::uint8_t* from, std::size_t count, int bits, std::size_t stride,
                  float* to);

// What a whole number of so many bits is multiplied with for 0 to 65535; exact for all of the
// above.
std::uint16_t WordScale(int bits);

}  // namespace glimmerhost
