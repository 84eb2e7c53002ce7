// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/parameter_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <set>
#include <system_error>
#include <vector>

#include "host/looks/keys.h"
#include "host/looks/parameter_entries.h"
#include "host/looks/shot_span.h"
#include "host/looks/units.h"
#include "host/pictures/alpha.h"
#include "host/support/failure.h"
#include "host/support/input_file.h"
#include "host/support/nearest.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVersion = "version";

std::string ReadText(const fs::path& file) {
  constexpr std::uintmax_t kLargest = 1 << 20;
  RequireFile(file);
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  if (size == 0) {
    throw UsageError(file.string() + ": empty");
  }
  if (error || size > kLargest) {
    throw UsageError(file.string() + ": not a parameter file: larger than a million bytes");
  }
  std::string text(static_cast<std::size_t>(size), '\0');
  std::ifstream in(file, std::ios::binary);
  if (!in.read(text.data(), static_cast<std::streamsize>(size))) {
    throw Failure(file.string() + ": cannot be read");
  }
  return text;
}

void CheckText(const ParameterEntry& entry) {
  const std::string name = entry.place + OneLine(entry.name);
  if (entry.text.empty() || OneLine(entry.text, entry.text.size()) != entry.text) {
    throw UsageError(name + " must be a text of one line that is not empty");
  }
  if (entry.name == kAlpha) {
    ParsePremultiplied(name, entry.text);
  } else if (entry.name == kPixelAspect) {
    ParseRatio(name, entry.text);
  } else if (entry.name == kShot) {
    ParseShotSpan(name, entry.text);
  }
}

void CheckVersion(const ParameterEntry& entry) {
  if (!entry.wholeNumber || entry.text != "1") {
    throw MustBe(entry.place + kVersion, "the whole number 1", OneLine(entry.text));
  }
}

void Put(const Page& page, const ParameterEntry& entry, Look* look) {
  if (entry.name == kVersion) {
    CheckVersion(entry);
    return;
  }
  CheckText(entry);
  if (entry.name.starts_with(kKeyBeginning)) {
    look->set.push_back(entry.name + "=" + entry.text);
    return;
  }
  std::vector<std::string> names = {kVersion};
  for (const LookName& known : LookNames(page)) {
    names.push_back(known.name);
  }
  if (std::find(names.begin(), names.end(), entry.name) == names.end()) {
    throw UsageError(entry.place + UnknownName("parameter", entry.name, names).what());
  }
  (*look)[entry.name] = entry.text;
}

}  // namespace

bool IsJson(const fs::path& file) { return file.extension() == ".json"; }

Look ReadParameterFile(const Page& page, const fs::path& file) {
  return ParseParameters(page, file, ReadText(file));
}

Look ParseParameters(const Page& page, const fs::path& file, const std::string& text) {
  const bool isJson = IsJson(file);
  const auto entries = isJson ? JsonEntries(file.string(), text) : TomlEntries(file.string(), text);
  Look look;
  std::set<std::string> seen;
  for (const ParameterEntry& entry : entries) {
    if (!seen.insert(entry.name).second) {
      throw UsageError(entry.place + OneLine(entry.name) + ": given twice");
    }
    Put(page, entry, &look);
  }
  if (isJson && !seen.contains(kVersion)) {
    throw UsageError(file.string() + ": version is missing; \"version\": 1 must be there");
  }
  if (const std::string& spread = look.At(kSpread); !spread.empty()) {
    look[kSpread] = (file.parent_path() / Utf8Path(spread)).lexically_normal().string();
  }
  return look;
}

}  // namespace glimmerhost
