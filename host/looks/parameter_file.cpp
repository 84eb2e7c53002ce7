#include "host/looks/parameter_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <set>
#include <system_error>
#include <vector>

#include "host/looks/parameter_entries.h"
#include "host/looks/units.h"
#include "host/pictures/alpha.h"
#include "host/support/failure.h"
#include "host/support/nearest.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* kVersion = "version";

std::string ReadText(const fs::path& file) {
  constexpr std::uintmax_t kLargest = 1 << 20;
  const auto fail = [&](const std::string& why) { throw Failure(file.string() + ": " + why); };
  std::error_code error;
  if (!fs::exists(file, error)) {
    throw MissingInput(file.string() + ": there is no such file");
  }
  if (!fs::is_regular_file(file, error)) {
    fail("it is not a file");
  }
  const std::uintmax_t size = fs::file_size(file, error);
  if (size == 0) {
    fail("it is empty");
  }
  if (error || size > kLargest) {
    fail("it is no parameter file: it has more than a million bytes");
  }
  std::string text(static_cast<std::size_t>(size), '\0');
  std::ifstream in(file, std::ios::binary);
  if (!in.read(text.data(), static_cast<std::streamsize>(size))) {
    fail("it cannot be read");
  }
  return text;
}

[[noreturn]] void RefuseName(const ParameterEntry& entry) {
  std::vector<std::string> names = {kVersion};
  for (const LookName& known : LookNames()) {
    names.emplace_back(known.name);
  }
  const std::string name = OneLine(entry.name);
  throw UsageError(entry.place + name + ": there is no such parameter; the nearest is " +
                   Nearest(name, names));
}

void CheckText(const ParameterEntry& entry) {
  const std::string name = entry.place + OneLine(entry.name);
  if (entry.text.empty() || OneLine(entry.text, entry.text.size()) != entry.text) {
    throw UsageError(name + ": allowed is a text of one line that is not empty");
  }
  if (entry.name == "alpha") {
    ParsePremultiplied(name, entry.text);
  } else if (entry.name == "pixel-aspect") {
    ParseRatio(name, entry.text);
  }
}

void CheckVersion(const ParameterEntry& entry) {
  if (!entry.wholeNumber || entry.text != "1") {
    throw UsageError(entry.place + kVersion + " " + OneLine(entry.text) +
                     ": allowed is the whole number 1");
  }
}

void Put(const ParameterEntry& entry, Look* look) {
  if (entry.name == kVersion) {
    CheckVersion(entry);
    return;
  }
  CheckText(entry);
  if (entry.name.starts_with("PRM_")) {
    look->values.set.push_back(entry.name + "=" + entry.text);
    return;
  }
  const auto names = LookNames();
  const auto known = std::find_if(names.begin(), names.end(),
                                  [&](const LookName& name) { return name.name == entry.name; });
  if (known == names.end()) {
    RefuseName(entry);
  }
  TextOf(*known, look) = entry.text;
}

}  // namespace

bool IsJson(const fs::path& file) { return file.extension() == ".json"; }

Look ReadParameterFile(const fs::path& file) { return ParseParameters(file, ReadText(file)); }

Look ParseParameters(const fs::path& file, const std::string& text) {
  const bool isJson = IsJson(file);
  const auto entries = isJson ? JsonEntries(file.string(), text) : TomlEntries(file.string(), text);
  Look look;
  std::set<std::string> seen;
  for (const ParameterEntry& entry : entries) {
    if (!seen.insert(entry.name).second) {
      throw UsageError(entry.place + OneLine(entry.name) + ": allowed is each name once");
    }
    Put(entry, &look);
  }
  if (isJson && !seen.contains(kVersion)) {
    throw UsageError(file.string() + ": version is missing; allowed is \"version\": 1");
  }
  if (!look.spread.empty()) {
    look.spread = (file.parent_path() / Utf8Path(look.spread)).lexically_normal().string();
  }
  return look;
}

}  // namespace glimmerhost
