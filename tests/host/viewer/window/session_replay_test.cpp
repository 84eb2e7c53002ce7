// SPDX-License-Identifier: BSD-3-Clause
// Every session script of the tree once more, by a hand in the window: the module is called as by
// `glimmerhost session`, and the pictures and handles are those that it saves.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/module/frame_renderer.h"
#include "host/pictures/picture_file.h"
#include "tests/host/viewer/window/window_stage.h"
#include "tests/support/child_program.h"

namespace {

namespace fs = std::filesystem;
using namespace glimmerhost;

// The host's calls on the page's instance, but for those that have it draw, and those of renders: a
// window shows frames whenever they change.
std::vector<std::string> CallsIn(const std::string& trace) {
  std::vector<std::string> calls;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("  ui") && line != "  ui.drawOverlays()") {
      calls.push_back(line);
    }
  }
  return calls;
}

struct Replay {
  explicit Replay(const fs::path& file) : stage(&trace), script(file) {}

  // One step as a person would do it. Those that only look at something do nothing here.
  void Play(const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    std::string first;
    std::string second;
    words >> verb >> first >> second;
    if (verb == "load") {
      ASSERT_TRUE(stage.Open((script.parent_path() / first).string()));
      stage.view->OneToOne();
    } else if (verb == "set") {
      stage.TypeInto(first, second);
    } else if (verb == "press" || verb == "move" || verb == "release") {
      const QPointF at(std::stod(first), std::stod(second));
      stage.Mouse(verb == "press"  ? QEvent::MouseButtonPress
                  : verb == "move" ? QEvent::MouseMove
                                   : QEvent::MouseButtonRelease,
                  at);
    } else if (verb == "render") {
      ASSERT_TRUE(stage.Settle());
      isResult = true;
    } else if (verb == "show") {
      isResult = first == "result";
    } else if (verb == "save") {
      ExpectSaved(first);
    } else if (verb == "snapshot") {
      ExpectHandles(first);
    } else {
      ASSERT_TRUE(verb.empty() || verb.front() == '#' || verb == "draw" || verb == "expect" ||
                  verb == "print")
          << line;
    }
  }

  // What an instance of its own makes of the frame.
  Picture Rendered(const std::map<std::string, Value>& values) const {
    const LoadedFrame& frame = *stage.viewing->Loaded();
    Picture picture = *frame.picture;
    RenderPicture(*stage.module, values, frame.spread, frame.pixelAspect, &picture);
    return picture;
  }

  // The session's picture. It is rendered from the module's store, whose numbers the module rounds
  // to floats; the window shows what `render` makes of the look, whose numbers stay as they were
  // typed. Both are compared, each with its own.
  Picture Shown() const {
    if (!isResult) {
      return *stage.viewing->Loaded()->picture;
    }
    EXPECT_EQ(stage.viewing->Result()->samples, Rendered(stage.document->ValuesAt(1)).samples);
    return Rendered(stage.viewing->PageOfModule()->Effect()->Values());
  }

  void ExpectSaved(const std::string& name) const { Expect(name, Shown()); }

  void ExpectHandles(const std::string& name) const {
    Picture painted = Shown();
    stage.viewing->PageOfModule()->Effect()->PaintHandles(&painted);
    Expect(name, painted);
  }

  void Expect(const std::string& name, const Picture& picture) const {
    std::string warning;
    EXPECT_EQ(picture.samples, ReadPicture(saved / name, &warning).samples) << name;
  }

  std::ostringstream out;
  Trace trace{out};
  viewer_test::WindowStage stage;
  fs::path script;
  fs::path saved;
  bool isResult = false;
};

std::vector<fs::path> Scripts() {
  std::vector<fs::path> scripts;
  for (const auto& entry : fs::recursive_directory_iterator(EXAMPLES)) {
    if (entry.path().extension() == ".session") {
      scripts.push_back(entry.path());
    }
  }
  return scripts;
}

TEST(SessionReplay, CallsTheModuleAndShowsPicturesAsTheSessionDoes) {
  ASSERT_FALSE(Scripts().empty());
  for (const fs::path& script : Scripts()) {
    SCOPED_TRACE(script.string());
    Replay replay(script);
    replay.saved = replay.stage.scratch / "session";
    fs::create_directory(replay.saved);
    const auto session = lx_test::RunChild(
        PROGRAM, {"session", script.string(), "-o", replay.saved.string(), "--trace"});
    ASSERT_EQ(session.code, 0) << session.text;

    std::ifstream lines(script);
    for (std::string line; std::getline(lines, line);) {
      ASSERT_NO_FATAL_FAILURE(replay.Play(line)) << line;
    }
    EXPECT_EQ(CallsIn(replay.out.str()), CallsIn(session.text));
  }
}

}  // namespace
