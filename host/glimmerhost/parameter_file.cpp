#include "host/glimmerhost/parameter_file.h"

#include <algorithm>
#include <exception>
#include <vector>

#include "host/glimmerhost/nearest.h"
#include "host/glimmerhost/text.h"
#include "host/glimmerhost/toml_file.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

struct TextName {
  const char* name;
  std::string TypedValues::*value;
};

constexpr TextName kTexts[] = {
    {"shape", &TypedValues::shape},
    {"radius", &TypedValues::radius},
    {"radius-x", &TypedValues::radiusX},
    {"radius-y", &TypedValues::radiusY},
    {"sides", &TypedValues::sides},
    {"rotation", &TypedValues::rotation},
    {"emphasis", &TypedValues::emphasis},
    {"center", &TypedValues::center},
    {"radius-psf1", &TypedValues::radiusPsf1},
    {"radius-psf2", &TypedValues::radiusPsf2},
    {"match", &TypedValues::match},
    {"emph-alpha", &TypedValues::emphAlpha},
};

// As a person would have typed it on the command line.
std::string AsTyped(const std::string& name, const toml::node& node) {
  if (const auto text = node.value_exact<std::string>()) {
    return *text;
  }
  if (const auto on = node.value_exact<bool>()) {
    return *on ? "on" : "off";
  }
  if (const auto number = node.value<double>()) {
    return Shortest(*number);
  }
  throw UsageError(name + ": allowed is a text, a number, true or false");
}

[[noreturn]] void RefuseName(const std::string& file, const std::string& name) {
  std::vector<std::string> names;
  for (const TextName& known : kTexts) {
    names.emplace_back(known.name);
  }
  throw UsageError(file + ": " + name + ": there is no such parameter; the nearest is " +
                   Nearest(name, names));
}

void Read(const std::string& file, const std::string& name, const toml::node& node,
          TypedValues* values) {
  const std::string typed = AsTyped(file + ": " + name, node);
  if (name.starts_with("PRM_")) {
    values->set.push_back(name + "=" + typed);
    return;
  }
  for (const TextName& known : kTexts) {
    if (name == known.name) {
      values->*known.value = typed;
      return;
    }
  }
  RefuseName(file, name);
}

toml::table Parse(const std::filesystem::path& file) {
  try {
    return ParseTomlFile(file);
  } catch (const toml::parse_error& fault) {
    std::string place = file.string();
    if (const auto line = fault.source().begin.line; line != 0) {
      place += ':';
      place += std::to_string(line);
    }
    throw Failure(place.append(": it cannot be read as parameters: ").append(fault.description()));
  } catch (const std::exception& fault) {
    throw Failure(file.string() + ": it cannot be read as parameters: " + fault.what());
  }
}

}  // namespace

TypedValues ReadParameterFile(const std::filesystem::path& file) {
  TypedValues values;
  for (const auto& [name, node] : Parse(file)) {
    Read(file.string(), std::string(name.str()), node, &values);
  }
  return values;
}

}  // namespace glimmerhost
