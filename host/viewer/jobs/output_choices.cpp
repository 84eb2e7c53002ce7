// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/output_choices.h"

#include <exception>
#include <optional>

#include "host/pictures/coding.h"
#include "host/pictures/not_carried.h"
#include "host/pictures/picture_formats.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

// Whether a format takes that without a word, and means by it what was said.
bool Takes(const OutputFormat& format, const Coding& chosen) {
  try {
    Coding coding = chosen;
    return SettleCoding(format, &coding).empty() && coding.floats == chosen.floats;
  } catch (const std::exception&) {
    return false;
  }
}

OutputChoices ChoicesOf(const OutputFormat& format) {
  OutputChoices choices;
  choices.format = FormatLabel(format.name);
  for (const std::string& word : kBitsChoices) {
    Coding coding;
    ParseBits(word, &coding);
    if (Takes(format, coding)) {
      choices.bits.push_back(word);
    }
  }
  Coding quality;
  quality.quality = 1;
  choices.hasQuality = Takes(format, quality);
  for (const std::string& word : kCompressionChoices) {
    Coding coding;
    coding.compression = word;
    if (Takes(format, coding)) {
      choices.compressions.push_back(word);
      coding.quality = 1;
      if (Takes(format, coding)) {
        choices.qualityOf.push_back(word);
      }
    }
  }
  return choices;
}

}  // namespace

OutputChoices ChoicesFor(const std::string& output) {
  try {
    const std::optional<OutputFormat> format = FormatOf(Utf8Path(output));
    return format ? ChoicesOf(*format) : OutputChoices();
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace glimmerhost
