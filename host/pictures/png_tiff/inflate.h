// SPDX-License-Identifier: BSD-3-Clause
// Deflated bytes of a file, with their check sum looked at: what a file says of their length may be
// wrong of good bytes, and right of broken ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace glimmerhost {

// Undoes deflate, in the form with a check sum of 32 bits behind it.
//   to    receives the first so many bytes
//   size  how many there must be at least; those behind them only have to agree with the sum
// False if the bytes end early, if there are fewer, or if they don't agree with their sum. What is
// in to then is of no use.
bool Inflate(const std::vector<std::uint8_t>& deflated, std::uint8_t* to, std::size_t size);

// The same by zlib alone, which is slower.
bool InflateSlowly(const std::vector<std::uint8_t>& deflated, std::uint8_t* to, std::size_t size);

// Where the system has a faster library: exactly that many bytes. False says nothing.
bool InflateFast(const std::vector<std::uint8_t>& deflated, std::uint8_t* to, std::size_t size);

}  // namespace glimmerhost
