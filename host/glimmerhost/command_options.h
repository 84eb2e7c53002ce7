// The options of each command that has many, by the groups in which --help shows them.
#pragma once

#include <CLI/CLI.hpp>

#include "host/glimmerhost/check_command.h"
#include "host/glimmerhost/info_command.h"
#include "host/glimmerhost/page_command.h"
#include "host/glimmerhost/psf_command.h"
#include "host/glimmerhost/render_command.h"
#include "host/glimmerhost/session_command.h"
#include "host/glimmerhost/submit_command.h"
#include "host/glimmerhost/wisdom_command.h"

namespace glimmerhost {

// Each adds a command to the program. Parsing fills in the options, which must live as long.
CLI::App* AddRender(CLI::App* app, RenderOptions* options);
CLI::App* AddSubmit(CLI::App* app, SubmitOptions* options);
CLI::App* AddPsf(CLI::App* app, PsfOptions* options);
CLI::App* AddPage(CLI::App* app, PageOptions* options);
CLI::App* AddSession(CLI::App* app, SessionOptions* options);
CLI::App* AddWisdom(CLI::App* app, WisdomOptions* options);
CLI::App* AddCheck(CLI::App* app, CheckOptions* options);
CLI::App* AddInfo(CLI::App* app, InfoOptions* options);

}  // namespace glimmerhost
