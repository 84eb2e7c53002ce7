// SPDX-License-Identifier: BSD-3-Clause
#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QStandardPaths>
#include <QStringList>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string_view>

#include "host/looks/page_file.h"
#include "host/module/module_choice.h"
#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/utf8_path.h"
#include "host/viewer/jobs/host_program.h"
#include "host/viewer/window/main_window.h"

namespace {

using namespace glimmerhost;

int Fail(const std::exception& fault, int code) {
  std::fprintf(stderr, "glimmerview: %s\n", fault.what());
  return code;
}

// Where looks are kept while they are edited.
std::filesystem::path StateFolder() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
  return Utf8Path(folder.toStdString()) / "looks";
}

// Without it all but rendering to disk works, and what needs it says where it was looked for.
std::filesystem::path ProgramOrNone() {
  try {
    return HostProgram();
  } catch (const MissingInput&) {
    return {};
  }
}

void Describe(QCommandLineParser* parser) {
  parser->setApplicationDescription(
      QCoreApplication::translate("main", "Shows GlimmerBlur on a picture or a shot, live."));
  parser->addHelpOption();
  parser->addVersionOption();
  parser->addPositionalArgument(
      "FILE",
      QCoreApplication::translate(
          "main", "A picture, a sequence (shot.####.exr), or a look (.toml, .json)"),
      "[FILE...]");
}

// Whether only words are wanted, for which no screen is needed.
bool AsksForWords(int argc, char** argv) {
  return std::any_of(argv + 1, argv + argc, [](const char* argument) {
    const std::string_view text(argument);
    return text == "--help" || text == "-h" || text == "--help-all" || text == "--version" ||
           text == "-v";
  });
}

// The desktop's, or else what is in the program itself.
QIcon Icon() {
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
    icon.addFile(QStringLiteral(":/glimmerview-%1.png").arg(size));
  }
  return QIcon::fromTheme("glimmerview", icon);
}

int Run(const QStringList& names) {
  const Page page = LoadPage();
  auto module = std::make_shared<const EffectModule>(ChooseModule("", ""));
  bool hangs = false;
  int code = 0;
  {
    MainWindow window(page, module, {ProgramOrNone(), StateFolder()});
    window.show();
    window.OfferLeftLook();
    for (const QString& name : names) {
      window.Open(name);
    }
    code = QApplication::exec();
    hangs = window.HasHangingRenders();
  }
  if (hangs) {
    // What was given up still runs in the module, which cannot be unloaded.
    std::_Exit(code);
  }
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  GiveLargeBlocksBack();
  QCoreApplication::setOrganizationName("Vantrell");
  QCoreApplication::setApplicationName("glimmerview");
  QCoreApplication::setApplicationVersion(GLIMMERVIEW_VERSION);
  QCommandLineParser parser;
  Describe(&parser);
  if (AsksForWords(argc, argv)) {
    const QCoreApplication application(argc, argv);
    parser.process(application);
  }
  const QApplication application(argc, argv);
  parser.process(application);
  QApplication::setWindowIcon(Icon());
  QGuiApplication::setDesktopFileName("glimmerview");
  try {
    return Run(parser.positionalArguments());
  } catch (const MissingInput& fault) {
    return Fail(fault, kExitMissing);
  } catch (const std::exception& fault) {
    return Fail(fault, kExitFailed);
  }
}
