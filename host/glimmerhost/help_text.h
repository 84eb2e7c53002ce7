// SPDX-License-Identifier: BSD-3-Clause
// What --help and completion print.
#pragma once

#include <string>
#include <vector>

#include "host/glimmerhost/command.h"

namespace glimmerhost {

// Lines of at most 80 characters.
std::string ProgramHelp();
std::string CommandHelp(const CommandEntry& entry, const Command& command,
                        const OptionSet& options);

// For the completion script: a line an option, its name, what stands for its value or - for a
// switch, and the values that it may have.
std::string CompletionWords(const OptionSet& options);

// The words of a text in lines.
//   first   what stands before them; the lines behind it begin with blanks up to the column
//   column  where the words begin; a longer beginning has a line of its own
std::string Wrapped(const std::string& first, std::size_t column, const std::string& text);

}  // namespace glimmerhost
