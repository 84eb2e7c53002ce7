// SPDX-License-Identifier: BSD-3-Clause
// Coding: how an output file keeps its samples, as far as somebody chose.
#pragma once

#include <string>
#include <vector>

namespace glimmerhost {

struct OutputFormat;

struct Coding {
  Coding() = default;
  // Whole numbers of so many bits, and all else as usual.
  // NOLINTNEXTLINE(google-explicit-constructor): a depth is all that most callers choose.
  Coding(int count) : bits(count) {}

  int bits = 0;             // of a sample: 8, 10, 12, 16 or 32; 0 for the input's
  bool floats = false;      // of 16 bits or of 32
  std::string compression;  // a word of SettleCoding's; empty for the input's or the usual one
  int quality = 0;          // 0 for the usual one

  bool operator==(const Coding&) const = default;
};

// The depth of the samples that a picture is written with.
//   usual  the picture's own
inline int BitsOf(const Coding& coding, int usual) {
  return coding.bits == 0 ? usual : coding.bits;
}

// How hard deflated files are tried to be made smaller, 0 to 9. The libraries' own 6 takes longer
// than the effect itself; the usual 1 makes files of footage a tenth larger in a quarter of the
// time.
inline int DeflateLevel(const Coding& coding) {
  return coding.compression == "none" ? 0 : coding.compression == "small" ? 9 : 1;
}

// Puts what --bits says into the coding: a count of bits, "half" or "float". Throws UsageError.
void ParseBits(const std::string& text, Coding* coding);

// What --bits said, where it was given.
std::string BitsWord(const Coding& coding);

// What --quality says. Throws UsageError.
int ParseQuality(const std::string& text);

// Fits what was chosen to a format. What it cannot have in any file is taken out, and a line a
// piece tells it: 8 and 16 bits where it has no such samples, and a compression or a quality where
// it has no choice of them. Throws UsageError for any other depth that the format does not have,
// and for a compression that it does not know; the message lists those that it has.
std::vector<std::string> SettleCoding(const OutputFormat& format, Coding* coding);

// For completion and help: what --bits and --compression may be in one format or another.
extern const std::vector<std::string> kBitsChoices;
extern const std::vector<std::string> kCompressionChoices;

}  // namespace glimmerhost
