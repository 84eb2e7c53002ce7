// The man page and --help, of which neither may lack what the other has.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "tests/host/program.h"

namespace {

using Options = std::map<std::string, std::set<std::string>>;  // by command

std::set<std::string> Found(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern, std::regex::multiline);
  std::set<std::string> found;
  for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
       ++match) {
    found.insert((*match)[1]);
  }
  return found;
}

// "--version", which only the program itself has, stands under no command.
Options FromHelp() {
  const std::string help = host_test::RunProgram("--help").text;
  Options options;
  for (const std::string& command : Found(help.substr(help.find("Subcommands:")), "^  ([a-z]+)")) {
    options[command] =
        Found(host_test::RunProgram(command + " --help").text, "^  (?:-[a-z],)?--([a-z0-9-]+)");
    options[command].erase("help");
  }
  return options;
}

// A heading of options ends in the commands that have them: "Highlights (render, session)".
Options FromManPage(const std::string& page) {
  Options options;
  for (const std::string& command : Found(page, "^\\.It Cm ([a-z]+)")) {
    options[command];
  }
  std::istringstream lines(page);
  std::string line;
  std::set<std::string> commands;
  while (std::getline(lines, line)) {
    if (line.starts_with(".S")) {
      commands = Found(line.substr(std::min(line.find('('), line.size())), "([a-z]+)[,)]");
    }
    for (const std::string& option : Found(line, "^\\.It (?:Fl [a-z] , )?Fl -([a-z0-9-]+)")) {
      for (const std::string& command : commands) {
        options[command].insert(option);
      }
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
  EXPECT_EQ(help, FromManPage(page.str()));
}

}  // namespace
