// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/man_page.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "host/glimmerhost/command.h"

namespace glimmerhost {
namespace {

// An option that commands tell of alike, and these commands.
struct SharedOption {
  ListedOption option;
  std::vector<std::string> commands;
};

bool AreAlike(const ListedOption& a, const ListedOption& b) {
  return a.name == b.name && a.letter == b.letter && a.text.value == b.text.value &&
         a.text.help == b.text.help && a.text.group == b.text.group;
}

std::vector<SharedOption> AllOptions() {
  std::vector<SharedOption> all;
  for (const CommandEntry& entry : Commands()) {
    CLI::App parser;
    const std::unique_ptr<Command> command = entry.make();
    OptionSet options(&parser);
    command->AddOptions(&options);
    for (const ListedOption& option : options.All()) {
      const auto known = std::find_if(all.begin(), all.end(), [&](const SharedOption& other) {
        return AreAlike(option, other.option);
      });
      if (known != all.end()) {
        known->commands.emplace_back(entry.name);
      } else {
        all.push_back({option, {entry.name}});
      }
    }
  }
  return all;
}

// What a line would otherwise be taken for.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    escaped += c == '\\' ? "\\e" : c == '-' ? "\\-" : std::string(1, c);
  }
  return escaped.starts_with('.') || escaped.starts_with('\'') ? "\\&" + escaped : escaped;
}

std::string Heading(const SharedOption& shared) {
  std::string heading = shared.option.text.group.empty() ? "Arguments" : shared.option.text.group;
  heading += " (";
  for (const std::string& command : shared.commands) {
    heading += (heading.ends_with('(') ? "" : ", ") + command;
  }
  return heading + ")";
}

std::string Item(const ListedOption& option) {
  std::string item = ".It ";
  if (option.IsArgument()) {
    item += "Ar " + option.name + (option.repeated ? " ..." : "");
  } else {
    item += option.letter.empty() ? "" : "Fl " + option.letter.substr(1) + " , ";
    item += "Fl " + Escaped(option.name.substr(1));
    item += option.text.value.empty() ? "" : " Ar " + option.text.value;
  }
  return item + "\n" + Escaped(option.text.help) + ".\n";
}

// Options of one heading stand together, in the order in which headings are first met.
std::string Options() {
  const std::vector<SharedOption> all = AllOptions();
  std::vector<std::string> headings;
  for (const SharedOption& shared : all) {
    const std::string heading = Heading(shared);
    if (std::find(headings.begin(), headings.end(), heading) == headings.end()) {
      headings.push_back(heading);
    }
  }
  std::string text;
  for (const std::string& heading : headings) {
    text += ".Ss " + heading + "\n.Bl -tag -width Ds\n";
    for (const SharedOption& shared : all) {
      if (Heading(shared) == heading) {
        text += Item(shared.option);
      }
    }
    text += ".El\n";
  }
  return text;
}

std::string CommandList() {
  std::string text = ".Bl -tag -width presets\n";
  for (const CommandEntry& entry : Commands()) {
    text += std::string(".It Cm ") + entry.name + "\n" + Escaped(entry.summary) + ".\n";
  }
  return text + ".El\n";
}

void Fill(const std::string& mark, const std::string& by, std::string* text) {
  const std::size_t at = text->find(mark);
  if (at != std::string::npos) {
    text->replace(at, mark.size(), by);
  }
}

}  // namespace

std::string ManPage(std::string frame) {
  Fill("@COMMANDS@\n", CommandList(), &frame);
  Fill("@OPTIONS@\n", Options(), &frame);
  return frame;
}

}  // namespace glimmerhost
