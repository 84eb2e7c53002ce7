// SPDX-License-Identifier: BSD-3-Clause
// A command of the program, and the list of all of them.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "host/glimmerhost/option_set.h"

namespace glimmerhost {

class Command {
 public:
  virtual ~Command() = default;

  // Binds the command's own record, which parsing fills in. Throws Failure where the page, which
  // lists some of the options, cannot be read.
  virtual void AddOptions(OptionSet* options) = 0;

  // What help says behind the options; lines of at most 80 characters.
  virtual std::string Notes() const { return ""; }

  // Does the work after parsing. Returns the program's exit code. Throws Failure, MissingInput or
  // UsageError.
  virtual int Run(std::ostream& out) = 0;
};

struct CommandEntry {
  const char* name;
  const char* summary;  // a sentence without its full stop
  std::unique_ptr<Command> (*make)();
};

// In the order in which help lists them.
const std::vector<CommandEntry>& Commands();

// One file each.
std::unique_ptr<Command> MakeRenderCommand();
std::unique_ptr<Command> MakeSubmitCommand();
std::unique_ptr<Command> MakePsfCommand();
std::unique_ptr<Command> MakePageCommand();
std::unique_ptr<Command> MakeSessionCommand();
std::unique_ptr<Command> MakeWisdomCommand();
std::unique_ptr<Command> MakeCheckCommand();
std::unique_ptr<Command> MakePresetsCommand();
std::unique_ptr<Command> MakeInfoCommand();

}  // namespace glimmerhost
