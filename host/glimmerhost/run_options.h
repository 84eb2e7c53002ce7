// What every command that renders is asked for.
#pragma once

#include <string>

#include "host/looks/look.h"
#include "host/session/session_player.h"

namespace glimmerhost {

// An empty text is an option that was not given.
struct RunOptions : Look {
  std::string output;
  std::string threads;  // a count; empty for every processor
  bool overwrite = false;
  bool quiet = false;
  std::string engine;  // its name; empty for the default
  std::string module;  // a module file, in the place of an engine; empty for none
};

// What they say of a session.
SessionSettings SessionSettingsOf(const RunOptions& options);

}  // namespace glimmerhost
