#include "host/glimmerhost/command_line.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "host/glimmerhost/check_command.h"
#include "host/glimmerhost/command_options.h"
#include "host/glimmerhost/page_command.h"
#include "host/glimmerhost/psf_command.h"
#include "host/glimmerhost/render_command.h"
#include "host/glimmerhost/session_command.h"
#include "host/glimmerhost/submit_command.h"
#include "host/glimmerhost/typed_arguments.h"
#include "host/glimmerhost/wisdom_command.h"
#include "host/looks/look_layers.h"
#include "host/looks/presets.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

constexpr const char* kDescription =
    "Renders pictures through GlimmerBlur, a lens defocus.\n\n"
    "  glimmerhost render night.png -o out.png --shape polygon --sides 6 --radius 40px\n"
    "  glimmerhost render shot.####.exr -o out.####.exr --frames 1-100 --radius '0=4px; -1=60px'\n"
    "  glimmerhost submit shot.####.exr -o out.####.exr --frames 1-100 --radius 20px --engine "
    "slurm\n"
    "  glimmerhost psf -o aperture.png --shape polygon --sides 5 --radius 60px\n"
    "  glimmerhost page night.png -o page.png --shape image\n"
    "  glimmerhost session handles.session\n"
    "  glimmerhost wisdom --measure\n\n"
    "Exit codes: 0 done, 1 the work failed, 2 wrong usage, 3 an input is missing.";

constexpr const char* kVersion = "glimmerhost, reference host of GlimmerBlur " GLIMMERHOST_VERSION;

int Complain(const std::string& what, int code) {
  std::cerr << "glimmerhost: " << AsLine(what) << '\n';
  return code;
}

// What files say of more than the store's values, as if it had been typed.
template <class Options>
Options Settled(Options options) {
  SettleLook(ReadLayers(options), &options);
  return options;
}

int Run(const std::vector<std::string>& arguments) {
  CLI::App app(kDescription, "glimmerhost");
  app.require_subcommand(1);
  // Otherwise, on Windows, a path that begins with a slash would be an option.
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", kVersion);
  RenderOptions render;
  const CLI::App* renderCommand = AddRender(&app, &render);
  SubmitOptions submit;
  const CLI::App* submitCommand = AddSubmit(&app, &submit);
  PsfOptions psf;
  const CLI::App* psfCommand = AddPsf(&app, &psf);
  PageOptions page;
  const CLI::App* pageCommand = AddPage(&app, &page);
  SessionOptions session;
  const CLI::App* sessionCommand = AddSession(&app, &session);
  WisdomOptions wisdom;
  const CLI::App* wisdomCommand = AddWisdom(&app, &wisdom);
  CheckOptions check;
  const CLI::App* checkCommand = AddCheck(&app, &check);
  const CLI::App* presets =
      app.add_subcommand("presets", "List the looks that come with the program");
  InfoOptions info;
  const CLI::App* infoCommand = AddInfo(&app, &info);
  try {
    // The library takes them from the back.
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend() - 1));
  } catch (const CLI::Success& done) {
    return app.exit(done);
  } catch (const CLI::ParseError& fault) {
    return Complain(std::string(fault.what()) + " (--help explains)", kExitUsage);
  }
  if (infoCommand->parsed()) {
    RunInfo(info, std::cout);
  } else if (presets->parsed()) {
    RunPresets(std::cout);
  } else if (renderCommand->parsed()) {
    return RunRender(Settled(render), std::cout);
  } else if (submitCommand->parsed()) {
    return RunSubmit(Settled(submit), TypedArguments(*submitCommand), std::cout);
  } else if (psfCommand->parsed()) {
    RunPsf(Settled(psf));
  } else if (pageCommand->parsed()) {
    RunPage(Settled(page));
  } else if (sessionCommand->parsed()) {
    RunSession(Settled(session), std::cout);
  } else if (checkCommand->parsed()) {
    return RunCheck(check, std::cout);
  } else if (wisdomCommand->parsed()) {
    RunWisdom(wisdom, std::cout);
  }
  return kExitDone;
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments) {
  try {
    return Run(arguments);
  } catch (const UsageError& fault) {
    return Complain(fault.what(), kExitUsage);
  } catch (const MissingInput& fault) {
    return Complain(fault.what(), kExitMissing);
  } catch (const std::bad_alloc&) {
    return Complain("there is not enough memory for this picture", kExitFailed);
  } catch (const std::exception& fault) {
    return Complain(fault.what(), kExitFailed);
  }
}

}  // namespace glimmerhost
