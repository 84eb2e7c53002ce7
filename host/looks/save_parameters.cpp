// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <nlohmann/json.hpp>
#include <string>

#include "host/looks/parameter_file.h"
#include "host/support/failure.h"
#include "host/support/temporary_file.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// A number or a switch where reading it gives the same text, a text otherwise.
Json ValueOf(const std::string& text) {
  if (text == "on" || text == "off") {
    return text == "on";
  }
  double number = 0.0;
  if (!ParseNumber(text, &number) || Shortest(number) != text) {
    return text;
  }
  const auto whole = static_cast<std::int64_t>(std::clamp(number, -1e9, 1e9));
  return std::to_string(whole) == text ? Json(whole) : Json(number);
}

// Relative where the picture lies in the file's folder or below, so that both can be moved.
std::string SpreadFrom(const fs::path& folder, const std::string& spread) {
  const fs::path picture = fs::absolute(Utf8Path(spread)).lexically_normal();
  const fs::path relative = picture.lexically_relative(folder);
  const bool isBelow = !relative.empty() && *relative.begin() != "..";
  return (isBelow ? relative : picture).generic_string();
}

Json EntriesOf(const Page& page, const fs::path& folder, Look look) {
  if (const std::string& spread = look.At(kSpread); !spread.empty()) {
    look[kSpread] = SpreadFrom(folder, spread);
  }
  Json entries;
  entries["version"] = 1;
  for (const LookName& name : LookNames(page)) {
    if (const std::string& text = look.At(name.name); !text.empty()) {
      entries[name.name] = ValueOf(text);
    }
  }
  for (const std::string& assignment : look.set) {
    const std::size_t equals = assignment.find('=');
    entries[assignment.substr(0, equals)] = ValueOf(assignment.substr(equals + 1));
  }
  return entries;
}

// A name and a value are written alike in both formats: the texts of JSON are texts of TOML, too.
std::string InToml(const Json& entries) {
  std::string text = "# What glimmerhost --params reads.\n";
  for (const auto& [name, value] : entries.items()) {
    text += name;
    text += " = ";
    text += value.dump();
    text += '\n';
  }
  return text;
}

// What two looks are compared by: the same picture has one name, and the order of assignments to
// several keys means nothing.
Look Comparable(Look look) {
  if (const std::string& spread = look.At(kSpread); !spread.empty()) {
    look[kSpread] = fs::absolute(Utf8Path(spread)).lexically_normal().string();
  }
  std::sort(look.set.begin(), look.set.end());
  return look;
}

void SaveInto(const Page& page, const fs::path& file, const Look& used, bool replace) {
  if (fs::is_directory(file)) {
    throw Failure("a folder of that name is there");
  }
  if (!replace && fs::exists(file)) {
    throw Failure("exists already; --overwrite replaces it");
  }
  const Json entries = EntriesOf(page, fs::absolute(file).lexically_normal().parent_path(), used);
  TemporaryFile part(file);
  part.Write(IsJson(file) ? entries.dump(2) + "\n" : InToml(entries));
  if (Comparable(ReadParameterFile(page, part.Path())) != Comparable(used)) {
    throw Failure("what is in use would not read back the same");
  }
  part.MoveIn(replace);
}

}  // namespace

void SaveParameters(const Page& page, const fs::path& file, const Look& used, bool replace) {
  if (!IsJson(file) && file.extension() != ".toml") {
    throw MustBe("--save-params", "a name that ends in .toml or .json", file.string());
  }
  try {
    SaveInto(page, file, used, replace);
  } catch (const std::exception& fault) {
    throw Failure(file.string() + ": the parameters cannot be saved: " + fault.what());
  }
}

}  // namespace glimmerhost
