// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/help_text.h"

#include <algorithm>
#include <cstddef>
#include <sstream>

#include "host/farm/farm_engine.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kColumn = 26;

std::string Usage(const CommandEntry& entry, const OptionSet& options) {
  std::string line = std::string("Usage: glimmerhost ") + entry.name;
  for (const ListedOption& option : options.All()) {
    if (option.IsArgument()) {
      line += " " + option.name + (option.repeated ? "..." : "");
    } else if (option.required) {
      line += " " + option.letter + " " + option.text.value;
    }
  }
  const bool hasMore = std::any_of(
      options.All().begin(), options.All().end(),
      [](const ListedOption& option) { return !option.IsArgument() && !option.required; });
  return line + (hasMore ? " [options]\n" : "\n");
}

std::string NameOf(const ListedOption& option) {
  return (option.letter.empty() ? "" : option.letter + ", ") + option.name +
         (option.text.value.empty() ? "" : " " + option.text.value);
}

// In the order in which each group is first met.
std::vector<std::string> GroupsOf(const OptionSet& options) {
  std::vector<std::string> groups;
  for (const ListedOption& option : options.All()) {
    if (std::find(groups.begin(), groups.end(), option.text.group) == groups.end()) {
      groups.push_back(option.text.group);
    }
  }
  return groups;
}

}  // namespace

std::string Wrapped(const std::string& first, std::size_t column, const std::string& text) {
  std::string lines;
  std::string line = first;
  if (line.size() + 2 > column) {
    lines = line + "\n";
    line.clear();
  }
  line.resize(column, ' ');
  std::istringstream words(text);
  bool isFirst = true;
  for (std::string word; words >> word; isFirst = false) {
    if (!isFirst && line.size() + 1 + word.size() > kWidth) {
      lines += line + "\n";
      line.assign(column, ' ');
      isFirst = true;
    }
    line += (isFirst ? "" : " ") + word;
  }
  return lines + line + "\n";
}

std::string ProgramHelp() {
  const std::string quote(1, kShellQuote);
  std::string help =
      "Renders pictures through GlimmerBlur, a lens defocus.\n\n"
      "Usage: glimmerhost COMMAND [options]\n\n"
      "Commands:\n";
  for (const CommandEntry& entry : Commands()) {
    help += Wrapped(std::string("  ") + entry.name, 12, entry.summary);
  }
  help +=
      "\n  glimmerhost COMMAND --help tells the options of each; --version the version.\n\n"
      "Examples:\n"
      "  glimmerhost render night.png -o out.png --shape polygon --radius 40px\n"
      "  glimmerhost render shot.#.tif -o out.#.tif --radius " +
      quote + "first=4px; last=60px" + quote +
      "\n"
      "  glimmerhost submit shot.#.tif -o out.#.tif --radius 20px" +
      (kHasSlurm ? " --engine slurm" : "") +
      "\n"
      "  glimmerhost psf -o aperture.png --shape polygon --sides 5 --radius 60px\n"
      "  glimmerhost page night.png -o page.png --shape image\n\n"
      "Exit codes: 0 done, 1 the work failed, 2 wrong usage, 3 an input is missing.\n";
  return help;
}

std::string CommandHelp(const CommandEntry& entry, const Command& command,
                        const OptionSet& options) {
  std::string help = std::string(entry.summary) + ".\n\n" + Usage(entry, options);
  for (const std::string& group : GroupsOf(options)) {
    help += group.empty() ? "\n" : "\n" + group + ":\n";
    for (const ListedOption& option : options.All()) {
      if (option.text.group == group) {
        help += Wrapped("  " + NameOf(option), kColumn, option.text.help);
      }
    }
  }
  const std::string notes = command.Notes();
  return notes.empty() ? help : help + "\n" + notes;
}

std::string CompletionWords(const OptionSet& options) {
  std::string words;
  for (const ListedOption& option : options.All()) {
    words += option.name + " " + (option.text.value.empty() ? "-" : option.text.value);
    for (const std::string& choice : option.text.choices) {
      words += " " + choice;
    }
    words += "\n";
  }
  return words;
}

}  // namespace glimmerhost
