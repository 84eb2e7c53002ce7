// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/pam_stream.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <system_error>
#include <vector>

#include "host/pictures/channels.h"
#include "host/support/failure.h"

namespace glimmerhost {

struct PamReader::Header {
  int width = 0;
  int height = 0;
  int depth = 0;
  int maxval = 0;
  std::string kind;  // empty where the stream does not say
};

namespace {

// Longer ones are no headers, but what a stream of something else begins with.
constexpr std::size_t kLongestLine = 1024;
constexpr int kMostLines = 64;

constexpr int kLargestSide = 65535;
constexpr int kLargestSample = 65535;

struct Kind {
  const char* name;
  int depth;
};

constexpr Kind kKinds[] = {
    {"GRAYSCALE", 1},           {"BLACKANDWHITE", 1}, {"GRAYSCALE_ALPHA", 2},
    {"BLACKANDWHITE_ALPHA", 2}, {"RGB", 3},           {"RGB_ALPHA", 4},
};

std::string_view Trimmed(std::string_view text) {
  constexpr const char* kBlanks = " \t\r";
  const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(first);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// The start of something unknown, as one line of plain letters can show it.
std::string Shown(std::string_view text) {
  constexpr std::size_t kMost = 40;
  std::string shown(text.substr(0, kMost));
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
  return shown;
}

// Samples of 0 to maxval, to the nearest of 16 bits.
std::uint16_t Widened(unsigned sample, unsigned maxval) {
  return static_cast<std::uint16_t>((std::min(sample, maxval) * 65535U + maxval / 2U) / maxval);
}

}  // namespace

void PamReader::Fail(const std::string& why) const {
  throw Failure(name_ + ": picture " + std::to_string(number_) + ": " + why);
}

// Without its end. False at the stream's, if nothing stood before it.
bool PamReader::TakeLine(std::string* line) {
  line->clear();
  for (int c = 0; (c = std::getc(from_)) != '\n';) {
    if (c == EOF) {
      return !line->empty();
    }
    if (line->size() == kLongestLine) {
      Fail("its header has a line that does not end");
    }
    line->push_back(static_cast<char>(c));
  }
  return true;
}

void PamReader::TakeField(const std::string& line, Header* header) const {
  const std::size_t gap = std::min(line.find_first_of(" \t"), line.size());
  const std::string_view name = std::string_view(line).substr(0, gap);
  const std::string_view value = Trimmed(std::string_view(line).substr(gap));
  if (name == "TUPLTYPE") {
    header->kind += (header->kind.empty() ? "" : " ") + std::string(value);
    return;
  }
  const struct {
    std::string_view name;
    int* field;
    int most;
  } numbers[] = {{"WIDTH", &header->width, kLargestSide},
                 {"HEIGHT", &header->height, kLargestSide},
                 {"DEPTH", &header->depth, 4},
                 {"MAXVAL", &header->maxval, kLargestSample}};
  for (const auto& number : numbers) {
    if (number.name == name) {
      const auto [end, error] =
          std::from_chars(value.data(), value.data() + value.size(), *number.field);
      if (error != std::errc() || end != value.data() + value.size() || *number.field < 1 ||
          *number.field > number.most) {
        Fail("its header says " + Shown(line) + ", which must be a whole number from 1 to " +
             std::to_string(number.most));
      }
      return;
    }
  }
  Fail("its header says " + Shown(line) +
       "; it must have WIDTH, HEIGHT, DEPTH, MAXVAL, TUPLTYPE and ENDHDR alone");
}

void PamReader::CheckHeader(const Header& header) const {
  if (header.width == 0 || header.height == 0 || header.depth == 0 || header.maxval == 0) {
    Fail("its header lacks one of WIDTH, HEIGHT, DEPTH and MAXVAL");
  }
  if (header.kind.empty()) {
    return;
  }
  const bool known = std::any_of(std::begin(kKinds), std::end(kKinds), [&](const Kind& kind) {
    return header.kind == kind.name && header.depth == kind.depth;
  });
  if (!known) {
    Fail("its samples are " + Shown(header.kind) + " of depth " + std::to_string(header.depth) +
         "; they must be GRAYSCALE (1), GRAYSCALE_ALPHA (2), RGB (3) or RGB_ALPHA (4)");
  }
}

PamReader::Header PamReader::TakeHeader() {
  Header header;
  std::string line;
  for (int lines = 0; lines < kMostLines; ++lines) {
    if (!TakeLine(&line)) {
      Fail("the stream ends in its header");
    }
    line = Trimmed(line);
    if (line == "ENDHDR") {
      CheckHeader(header);
      return header;
    }
    if (!line.empty() && line[0] != '#') {
      TakeField(line, &header);
    }
  }
  Fail("its header has no ENDHDR");
}

Picture PamReader::TakeSamples(const Header& header) {
  Picture picture;
  picture.width = header.width;
  picture.height = header.height;
  picture.bits = header.maxval > 255 ? 16 : 8;
  const ChannelMap map = MapPlainChannels(header.depth);
  picture.grey = map.grey;
  picture.alpha = map.alpha < 0 ? Alpha::kNone : Alpha::kStraight;

  const std::size_t rowSamples =
      static_cast<std::size_t>(header.width) * static_cast<std::size_t>(header.depth);
  const std::size_t bytes = header.maxval > 255 ? 2 : 1;
  const auto maxval = static_cast<unsigned>(header.maxval);
  std::vector<unsigned char> row(rowSamples * bytes);
  // Grown as rows arrive: a header may claim more than the stream ever holds.
  std::vector<std::uint16_t> samples;
  for (int y = 0; y < header.height; ++y) {
    if (std::fread(row.data(), 1, row.size(), from_) != row.size()) {
      Fail("cut short in row " + std::to_string(y + 1) + " of " + std::to_string(header.height));
    }
    for (std::size_t i = 0; i < rowSamples; ++i) {
      const unsigned sample =
          bytes == 1 ? row[i] : static_cast<unsigned>(row[2 * i] << 8U) | row[2 * i + 1];
      samples.push_back(Widened(sample, maxval));
    }
  }
  SpreadChannels(samples, header.depth, map, &picture);
  return picture;
}

std::optional<Picture> PamReader::Next() {
  ++number_;
  std::string line;
  if (!TakeLine(&line)) {
    if (std::ferror(from_) != 0) {
      Fail("the stream cannot be read");
    }
    return std::nullopt;
  }
  if (Trimmed(line) != "P7") {
    Fail("it begins with \"" + Shown(Trimmed(line)) + "\", and a PAM picture with P7");
  }
  return TakeSamples(TakeHeader());
}

bool PamReader::IsAtEnd() { return std::ungetc(std::getc(from_), from_) == EOF; }

void WritePam(const Picture& picture, std::FILE* to, const std::string& name) {
  const std::string header = "P7\nWIDTH " + std::to_string(picture.width) + "\nHEIGHT " +
                             std::to_string(picture.height) +
                             "\nDEPTH 4\nMAXVAL 65535\nTUPLTYPE RGB_ALPHA\nENDHDR\n";
  std::vector<unsigned char> bytes(picture.samples.size() * 2);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    bytes[2 * i] = static_cast<unsigned char>(picture.samples[i] >> 8U);
    bytes[2 * i + 1] = static_cast<unsigned char>(picture.samples[i] & 0xFFU);
  }
  errno = 0;
  const bool written = std::fwrite(header.data(), 1, header.size(), to) == header.size() &&
                       std::fwrite(bytes.data(), 1, bytes.size(), to) == bytes.size() &&
                       std::fflush(to) == 0;
  if (!written) {
    throw Failure(name + ": cannot be written: " +
                  (errno != 0 ? std::strerror(errno) : "the system does not take all of it"));
  }
}

}  // namespace glimmerhost
