// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <new>

#include "host/glimmerhost/command.h"
#include "host/glimmerhost/help_text.h"
#include "host/support/failure.h"
#include "host/support/nearest.h"
#include "host/support/system.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

constexpr const char* kVersion = "glimmerhost, reference host of GlimmerBlur " GLIMMERHOST_VERSION;

int Complain(const std::string& what, int code) {
  std::cerr << "glimmerhost: " << AsLine(what) << '\n';
  return code;
}

const CommandEntry& FindCommand(const std::string& name) {
  std::vector<std::string> names;
  for (const CommandEntry& entry : Commands()) {
    if (entry.name == name) {
      return entry;
    }
    names.emplace_back(entry.name);
  }
  throw UnknownName("command", name, names);
}

// What an option is called that was mistyped: "--radus" of "--radus=4px".
std::string OptionName(const std::string& word) { return word.substr(0, word.find('=')); }

// What the parser says of words that it does not know.
UsageError Unexpected(const CLI::App& parser, const OptionSet& options) {
  const std::vector<std::string> words = parser.remaining();
  const std::string word = words.empty() ? "" : words.front();
  if (!word.starts_with("-")) {
    return UsageError("unexpected argument \"" + OneLine(word) +
                      "\"; an argument with blanks must stand in quotes");
  }
  std::vector<std::string> names = {"--help"};
  for (const ListedOption& option : options.All()) {
    if (!option.IsArgument()) {
      names.push_back(option.name);
    }
  }
  return UnknownName("option", OptionName(word), names);
}

// An option that has too many values, or none. The library has one kind of fault for both.
UsageError Mismatched(const CLI::App& parser, const CLI::ArgumentMismatch& fault) {
  const std::string what = fault.what();
  const std::string name = what.substr(0, what.find(':'));
  const CLI::Option* const option = parser.get_option_no_throw(name);
  const bool isRepeated = option != nullptr && option->count() > 1;
  return UsageError(name + (isRepeated ? " can be given only once" : " needs a value"));
}

// In the library's words; which name what is missing or too much.
UsageError Unparsed(const CLI::ParseError& fault, const std::string& command) {
  std::string what = fault.what();
  what.erase(std::find(what.begin(), what.end(), '\n'), what.end());
  return UsageError(what + "; glimmerhost " + command + " --help tells the options");
}

//   words  behind the command's name
int RunCommand(const CommandEntry& entry, const std::vector<std::string>& words) {
  CLI::App parser;
  // Help is ours; and otherwise, on Windows, a path that begins with a slash would be an option.
  parser.set_help_flag("-h,--help");
  parser.allow_windows_style_options(false);
  const std::unique_ptr<Command> command = entry.make();
  OptionSet options(&parser);
  command->AddOptions(&options);
  try {
    // The library takes them from the back.
    parser.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::CallForHelp&) {
    std::cout << CommandHelp(entry, *command, options);
    return kExitDone;
  } catch (const CLI::ArgumentMismatch& fault) {
    throw Mismatched(parser, fault);
  } catch (const CLI::ParseError& fault) {
    // A mistyped name says more than what is missing because of it.
    throw parser.remaining().empty() ? Unparsed(fault, entry.name) : Unexpected(parser, options);
  }
  return command->Run(std::cout);
}

// What the completion script asks: the commands, or the options of one.
int Complete(const std::vector<std::string>& words) {
  if (words.empty()) {
    for (const CommandEntry& entry : Commands()) {
      std::cout << entry.name << '\n';
    }
    return kExitDone;
  }
  CLI::App parser;
  const std::unique_ptr<Command> command = FindCommand(words.front()).make();
  OptionSet options(&parser);
  command->AddOptions(&options);
  std::cout << CompletionWords(options) << "--help -\n";
  return kExitDone;
}

int Run(const std::vector<std::string>& arguments) {
  if (arguments.size() < 2) {
    throw UsageError("a command is missing; glimmerhost --help lists them");
  }
  const std::string& first = arguments[1];
  const std::vector<std::string> words(arguments.begin() + 2, arguments.end());
  if (first == "--help" || first == "-h") {
    std::cout << ProgramHelp();
    return kExitDone;
  }
  if (first == "--version") {
    std::cout << kVersion << '\n';
    return kExitDone;
  }
  if (first == "--complete") {
    return Complete(words);
  }
  if (first.starts_with("-")) {
    throw UnknownName("option", OptionName(first), {"--help", "--version"});
  }
  return RunCommand(FindCommand(first), words);
}

//   take  gives the arguments, for which there may be no memory
template <class Take>
int RunGuarded(const Take& take) {
  try {
    const int code = Run(take());
    // What was asked for is not there, though all went well until then.
    if (!std::cout.flush() && code == kExitDone) {
      throw Failure("standard output: cannot be written");
    }
    return code;
  } catch (const UsageError& fault) {
    return Complain(fault.what(), kExitUsage);
  } catch (const MissingInput& fault) {
    return Complain(fault.what(), kExitMissing);
  } catch (const std::bad_alloc&) {
    return Complain("not enough memory for this picture", kExitFailed);
  } catch (const std::exception& fault) {
    return Complain(fault.what(), kExitFailed);
  }
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments) {
  return RunGuarded([&]() -> const std::vector<std::string>& { return arguments; });
}

int RunCommandLine(int argc, const char* const* argv) {
  return RunGuarded([&] { return Arguments(argc, argv); });
}

}  // namespace glimmerhost
