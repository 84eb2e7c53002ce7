// SPDX-License-Identifier: BSD-3-Clause
// A session's script: one step a line, checked as a whole before anything is done.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "host/looks/page.h"
#include "host/session/session_player.h"

namespace glimmerhost {

struct SessionStep {
  std::string place;  // "FILE:LINE"
  std::string text;   // as it was written
  std::function<void(SessionPlayer*)> play;
};

struct SessionScript {
  std::vector<SessionStep> steps;
  std::vector<std::filesystem::path> outputs;  // what the steps write
};

// The forms of all steps, one a line.
std::string SessionForms();

// Reads a script. Pictures that it reads lie beside it, what it writes goes into a folder.
//   folder  of the outputs; empty for the current one
// Throws Failure if the file cannot be read, MissingInput if it is not there, UsageError for a
// wrong line, with its number and what was expected.
SessionScript ReadSessionScript(const std::filesystem::path& file, const Page& page,
                                const std::filesystem::path& folder);

}  // namespace glimmerhost
