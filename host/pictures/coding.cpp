// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/coding.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>
#include <system_error>

#include "host/pictures/not_carried.h"
#include "host/pictures/picture_formats.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

using Words = std::vector<std::string>;

constexpr int kBestQuality = 100;
constexpr int kHighestLevel = 1000;

// What a format lets one choose.
struct Choices {
  const char* format;
  Words bits;
  Words compressions;
  int quality = 0;    // the highest; 0 where there is none
  Words qualityOf{};  // the compressions that have one; empty for any
};

const Choices& ChoicesOf(const std::string& format) {
  static const Choices known[] = {
      {"png", {"8", "16"}, {"none", "fast", "small"}},
      {"tiff", {"8", "16", "float"}, {"none", "lzw", "zip", "packbits"}},
      {"openexr",
       {"half", "float"},
       {"none", "rle", "zips", "zip", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"},
       kHighestLevel,
       {"dwaa", "dwab"}},
      {"dpx", {"8", "10", "12", "16"}, {}},
      {"jpeg", {"8"}, {}, kBestQuality},
      {"webp", {"8"}, {}, kBestQuality},
      {"hdr", {}, {}},
      {"bmp", {"8"}, {}},
      {"targa", {"8"}, {}},
  };
  static const Choices other{"", {"8", "16"}, {}};
  const auto* const found =
      std::find_if(std::begin(known), std::end(known),
                   [&format](const Choices& choices) { return choices.format == format; });
  return found == std::end(known) ? other : *found;
}

bool Has(const Words& words, const std::string& word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

std::string NoEffect(const std::string& option, const std::string& why) {
  return option + " has no effect: " + why;
}

void SettleBits(const OutputFormat& format, const Choices& choices, Coding* coding, Words* lines) {
  const std::string word = BitsWord(*coding);
  const std::string label = FormatLabel(format.name);
  // Whoever writes 16 means all that there is, and of floats that is half of them.
  const bool isHalf = word == "16" && Has(choices.bits, "half");
  if (coding->bits == 0 || isHalf || Has(choices.bits, word)) {
    coding->floats = coding->floats || isHalf;
    return;
  }
  if (word != "8" && word != "16") {
    const std::string allowed = choices.bits.empty() ? "left out" : JoinOr(choices.bits);
    throw MustBe("--bits", allowed + " for " + label, word);
  }
  lines->push_back(NoEffect("--bits " + word, choices.bits.empty()
                                                  ? label + " has one kind of samples"
                                                  : label + " has " + JoinOr(choices.bits)));
  coding->bits = 0;
}

void SettleCompression(const OutputFormat& format, const Choices& choices, Coding* coding,
                       Words* lines) {
  std::string& word = coding->compression;
  if (word.empty()) {
    return;
  }
  const std::string label = FormatLabel(format.name);
  if (choices.compressions.empty()) {
    lines->push_back(NoEffect("--compression " + word, label + " has no choice of compressions"));
    word.clear();
    return;
  }
  if (word == "deflate" && format.name == "tiff") {
    word = "zip";
  }
  if (!Has(choices.compressions, word)) {
    throw MustBe("--compression", JoinOr(choices.compressions) + " for " + label, word);
  }
}

void SettleQuality(const OutputFormat& format, const Choices& choices, Coding* coding,
                   Words* lines) {
  if (coding->quality == 0) {
    return;
  }
  const std::string option = "--quality " + std::to_string(coding->quality);
  const std::string label = FormatLabel(format.name);
  const bool isLossless = choices.quality == 0;
  if (isLossless || (!choices.qualityOf.empty() && !Has(choices.qualityOf, coding->compression))) {
    lines->push_back(NoEffect(
        option, isLossless ? label + " has no choice of qualities"
                           : label + " has one with --compression " + JoinOr(choices.qualityOf)));
    coding->quality = 0;
  } else if (coding->quality > choices.quality) {
    throw MustBe("--quality",
                 "a whole number from 1 to " + std::to_string(choices.quality) + " for " + label,
                 std::to_string(coding->quality));
  }
}

}  // namespace

const std::vector<std::string> kBitsChoices = {"8", "10", "12", "16", "half", "float"};
const std::vector<std::string> kCompressionChoices = {"none",  "rle",      "zips", "zip",  "piz",
                                                      "pxr24", "b44",      "b44a", "dwaa", "dwab",
                                                      "lzw",   "packbits", "fast", "small"};

std::string BitsWord(const Coding& coding) {
  return !coding.floats ? std::to_string(coding.bits) : coding.bits == 16 ? "half" : "float";
}

void ParseBits(const std::string& text, Coding* coding) {
  if (text.empty()) {
    coding->bits = 0;
    coding->floats = false;
    return;
  }
  if (!Has(kBitsChoices, text)) {
    throw MustBe("--bits", JoinOr(kBitsChoices), text);
  }
  coding->floats = text == "half" || text == "float";
  coding->bits = text == "half" ? 16 : text == "float" ? 32 : std::stoi(text);
}

int ParseQuality(const std::string& text) {
  int quality = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), quality);
  if (error != std::errc() || end != text.data() + text.size() || quality < 1 ||
      quality > kHighestLevel) {
    throw MustBe("--quality",
                 "a whole number from 1 to " + std::to_string(kBestQuality) + ", or to " +
                     std::to_string(kHighestLevel) + " as the level of dwaa and dwab",
                 text);
  }
  return quality;
}

std::vector<std::string> SettleCoding(const OutputFormat& format, Coding* coding) {
  const Choices& choices = ChoicesOf(format.name);
  Words lines;
  SettleBits(format, choices, coding, &lines);
  SettleCompression(format, choices, coding, &lines);
  SettleQuality(format, choices, coding, &lines);
  return lines;
}

}  // namespace glimmerhost
