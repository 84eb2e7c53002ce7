// SPDX-License-Identifier: BSD-3-Clause
// The man page and --help, of which neither may lack what the other has.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/host/glimmerhost/program.h"

namespace {

using Options = std::map<std::string, std::set<std::string>>;  // by command

constexpr const char* kLetters = "abcdefghijklmnopqrstuvwxyz0123456789-";

// The name that a line has behind a beginning; empty if it begins otherwise.
std::string NameBehind(std::string_view line, std::string_view beginning) {
  if (!line.starts_with(beginning)) {
    return "";
  }
  line.remove_prefix(beginning.size());
  return std::string(line.substr(0, line.find_first_not_of(kLetters)));
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

void Insert(const std::string& name, std::set<std::string>* names) {
  if (!name.empty()) {
    names->insert(name);
  }
}

// Of lines such as "  -o, --output FILE" and "  --radius RADIUS".
std::set<std::string> OptionsOfHelp(const std::string& command) {
  std::set<std::string> options;
  for (const std::string& line : Lines(host_test::RunProgram(command + " --help").text)) {
    Insert(NameBehind(line, "  --"), &options);
    if (line.starts_with("  -") && line.find(", --") == 4) {
      Insert(NameBehind(line.substr(4), ", --"), &options);
    }
  }
  return options;
}

// The commands stand between a title and an empty line.
Options FromHelp() {
  const std::string help = host_test::RunProgram("--help").text;
  Options options;
  const std::size_t commands = help.find("Commands:\n");
  for (const std::string& line :
       Lines(help.substr(commands, help.find("\n\n", commands) - commands))) {
    const std::string command = NameBehind(line, "  ");
    if (!command.empty()) {
      options[command] = OptionsOfHelp(command);
    }
  }
  return options;
}

// The words between the parentheses of a heading: "Highlights (render, session)".
std::set<std::string> CommandsOfHeading(const std::string& line) {
  std::set<std::string> commands;
  std::size_t at = line.find('(');
  while (at != std::string::npos && (at = line.find_first_of(kLetters, at)) != std::string::npos) {
    const std::size_t end = std::min(line.find_first_not_of(kLetters, at), line.size());
    commands.insert(line.substr(at, end - at));
    at = end;
  }
  return commands;
}

// A heading of options ends in the commands that have them.
Options FromManPage(const std::string& page) {
  Options options;
  std::set<std::string> commands;
  for (std::string line : Lines(page)) {
    // A minus sign of its own, which the language would else turn into a hyphen.
    for (std::size_t at = 0; (at = line.find("\\-", at)) != std::string::npos;) {
      line.erase(at, 1);
    }
    if (const std::string command = NameBehind(line, ".It Cm "); !command.empty()) {
      options[command];
    }
    if (line.starts_with(".Sh ") || line.starts_with(".Ss ")) {
      commands = CommandsOfHeading(line);
    }
    std::set<std::string> found;
    Insert(NameBehind(line, ".It Fl -"), &found);
    if (line.starts_with(".It Fl ") && line.find(" , Fl -") == 8) {
      Insert(NameBehind(line.substr(8), " , Fl -"), &found);
    }
    for (const std::string& command : commands) {
      options[command].insert(found.begin(), found.end());
    }
  }
  return options;
}

TEST(ManPage, HasTheOptionsOfEveryCommandAndNoOther) {
  std::ostringstream page;
  page << std::ifstream(MAN_PAGE).rdbuf();

  const Options help = FromHelp();

  EXPECT_EQ(9U, help.size());
  EXPECT_TRUE(help.at("render").contains("emphasis"));
  EXPECT_TRUE(help.at("render").contains("output"));
  EXPECT_EQ(help, FromManPage(page.str()));
}

}  // namespace
