// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/session_script.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <optional>
#include <sstream>
#include <string_view>

#include "host/session/page_view.h"
#include "host/support/failure.h"
#include "host/support/input_file.h"
#include "host/support/nearest.h"
#include "host/support/text.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

using Words = std::vector<std::string>;
using Action = std::function<void(SessionPlayer*)>;

// What a step may lean on.
struct Context {
  const Page& page;
  std::filesystem::path beside;  // the script's folder
  std::filesystem::path folder;  // of the outputs
  bool rendered = false;         // since the last picture was loaded
  std::vector<std::filesystem::path> outputs{};
};

// A step of another form than its own.
struct WrongForm {};

std::filesystem::path Input(const Context& context, const std::string& name) {
  return context.beside / Utf8Path(name);
}

std::filesystem::path Output(Context* context, const std::string& name) {
  std::filesystem::path file = context->folder / Utf8Path(name);
  auto& outputs = context->outputs;
  if (std::find(outputs.begin(), outputs.end(), file) != outputs.end()) {
    throw UsageError("an earlier step writes this file already");
  }
  outputs.push_back(file);
  return file;
}

// A picture that an earlier step has written, or one beside the script.
std::filesystem::path AnyFile(const Context& context, const std::string& name) {
  const std::filesystem::path own = context.folder / Utf8Path(name);
  const auto& outputs = context.outputs;
  return std::find(outputs.begin(), outputs.end(), own) != outputs.end() ? own
                                                                         : Input(context, name);
}

float Coordinate(const std::string& text) {
  constexpr double kFarthest = 1e6;
  double number = 0.0;
  if (!ParseNumber(text, &number) || std::abs(number) > kFarthest) {
    throw UsageError(
        "a point is two numbers of picture pixels from the top left, such as 120 80.5");
  }
  return static_cast<float>(number);
}

quantel::cPoint2 PointOf(const Words& words) {
  return {Coordinate(words[1]), Coordinate(words[2])};
}

Action ExpectState(const std::string& name, const std::string& state) {
  const bool visibility = state == "shown" || state == "hidden";
  if (!visibility && state != "enabled" && state != "disabled") {
    throw WrongForm();
  }
  bool PageRow::*const member = visibility ? &PageRow::shown : &PageRow::enabled;
  const bool expected = state == "shown" || state == "enabled";
  return [=](SessionPlayer* player) { player->ExpectRow(name, member, expected); };
}

// Values travel as floats.
double FloatTolerance(const Value& value) {
  const double* number = std::get_if<double>(&value);
  return 1e-6 * std::max(1.0, number == nullptr ? 0.0 : std::abs(*number));
}

Action ExpectValue(const Words& words, const Page& page) {
  const Parameter& parameter = page.Find(words[1]);
  // What a drag or a loose hand leaves may lie beyond what the page lets be typed.
  double number = 0.0;
  const bool isNumber = parameter.kind == Kind::kNumber || parameter.kind == Kind::kWhole;
  const Value value = isNumber && ParseNumber(words[2], &number)
                          ? Value(number)
                          : parameter.Parse(parameter.key, words[2]);
  double tolerance = FloatTolerance(value);
  if (words.size() == 5) {
    if (words[3] != "within" || !isNumber || !ParseNumber(words[4], &tolerance) ||
        tolerance < 0.0) {
      throw WrongForm();
    }
  } else if (words.size() == 4) {
    throw WrongForm();
  }
  return [=](SessionPlayer* player) { player->ExpectValue(parameter, value, tolerance); };
}

Action Expect(const Words& words, const Context& context) {
  if (words[1] == "row" && words.size() == 4) {
    return ExpectState(words[2], words[3]);
  }
  if ((words[1] == "same" || words[1] == "different") && words.size() == 3) {
    const std::filesystem::path file = AnyFile(context, words[2]);
    const bool same = words[1] == "same";
    return [=](SessionPlayer* player) { player->ExpectPicture(file, same); };
  }
  return ExpectValue(words, context.page);
}

struct Verb {
  const char* name;
  const char* form;
  std::size_t fewest;  // words, its own name counted
  std::size_t most;
  Action (*read)(const Words& words, Context* context);
};

const Verb kVerbs[] = {
    {"load", "load PICTURE", 2, 2,
     [](const Words& words, Context* context) -> Action {
       context->rendered = false;
       return [file = Input(*context, words[1])](SessionPlayer* player) { player->Load(file); };
     }},
    {"spread", "spread PICTURE", 2, 2,
     [](const Words& words, Context* context) -> Action {
       return [file = Input(*context, words[1])](SessionPlayer* player) { player->Spread(file); };
     }},
    {"set", "set KEY VALUE", 3, 3,
     [](const Words& words, Context* context) -> Action {
       const Parameter& parameter = context->page.Find(words[1]);
       return [key = parameter.key, value = parameter.Parse(parameter.key, words[2])](
                  SessionPlayer* player) { player->Set(key, value); };
     }},
    {"notify", "notify KEY", 2, 2,
     [](const Words& words, Context* /*context*/) -> Action {
       return [key = words[1]](SessionPlayer* player) { player->Notify(key); };
     }},
    {"press", "press X Y", 3, 3,
     [](const Words& words, Context* /*context*/) -> Action {
       return [point = PointOf(words)](SessionPlayer* player) { player->Press(point); };
     }},
    {"move", "move X Y", 3, 3,
     [](const Words& words, Context* /*context*/) -> Action {
       return [point = PointOf(words)](SessionPlayer* player) { player->Move(point); };
     }},
    {"release", "release X Y", 3, 3,
     [](const Words& words, Context* /*context*/) -> Action {
       return [point = PointOf(words)](SessionPlayer* player) { player->Release(point); };
     }},
    {"draw", "draw", 1, 1,
     [](const Words& /*words*/, Context* /*context*/) -> Action {
       return [](SessionPlayer* player) { player->Draw(); };
     }},
    {"colour", "colour", 1, 1,
     [](const Words& /*words*/, Context* /*context*/) -> Action {
       return [](SessionPlayer* player) { player->RequestColour(); };
     }},
    {"render", "render", 1, 1,
     [](const Words& /*words*/, Context* context) -> Action {
       context->rendered = true;
       return [](SessionPlayer* player) { player->Render(); };
     }},
    {"show", "show source or show result", 2, 2,
     [](const Words& words, Context* context) -> Action {
       const bool result = words[1] == "result";
       if (!result && words[1] != "source") {
         throw WrongForm();
       }
       if (result && !context->rendered) {
         throw UsageError("a result needs a render before it");
       }
       return [result](SessionPlayer* player) { player->Show(result); };
     }},
    {"snapshot", "snapshot FILE", 2, 2,
     [](const Words& words, Context* context) -> Action {
       return
           [file = Output(context, words[1])](SessionPlayer* player) { player->Save(file, true); };
     }},
    {"save", "save FILE", 2, 2,
     [](const Words& words, Context* context) -> Action {
       return
           [file = Output(context, words[1])](SessionPlayer* player) { player->Save(file, false); };
     }},
    {"print", "print page", 2, 2,
     [](const Words& words, Context* /*context*/) -> Action {
       if (words[1] != "page") {
         throw WrongForm();
       }
       return [](SessionPlayer* player) { player->PrintPage(); };
     }},
    {"expect",
     "expect KEY VALUE [within TOLERANCE], expect row NAME shown|hidden|enabled|disabled, expect "
     "same FILE or expect different FILE",
     3, 5, [](const Words& words, Context* context) { return Expect(words, *context); }},
};

// Blanks part words, double quotes hold them together, and # ends the line outside of quotes.
Words SplitLine(const std::string& line) {
  Words words;
  std::optional<std::string> word;
  bool quoted = false;
  for (const char c : line) {
    if (c == '"') {
      quoted = !quoted;
      word = word.value_or("");
    } else if (quoted) {
      *word += c;
    } else if (c == '#') {
      break;
    } else if (c == ' ' || c == '\t' || c == '\r') {
      if (word) {
        words.push_back(*word);
      }
      word.reset();
    } else {
      word = word.value_or("") + c;
    }
  }
  if (quoted) {
    throw UsageError("a quotation mark has no second one");
  }
  if (word) {
    words.push_back(*word);
  }
  return words;
}

Action ReadStep(const Words& words, bool isFirst, Context* context) {
  const auto* verb = std::find_if(std::begin(kVerbs), std::end(kVerbs),
                                  [&](const Verb& known) { return words[0] == known.name; });
  if (verb == std::end(kVerbs)) {
    std::vector<std::string> names;
    for (const Verb& known : kVerbs) {
      names.emplace_back(known.name);
    }
    throw UnknownName("step", words[0], names);
  }
  if (isFirst && words[0] != "load") {
    throw UsageError("the first step must be load PICTURE");
  }
  try {
    if (words.size() < verb->fewest || words.size() > verb->most) {
      throw WrongForm();
    }
    return verb->read(words, context);
  } catch (const WrongForm&) {
    throw UsageError(std::string("a step must be ") + verb->form);
  }
}

std::string Trimmed(const std::string& line) {
  const char* blanks = " \t\r";
  const std::size_t first = line.find_first_not_of(blanks);
  return first == std::string::npos ? ""
                                    : line.substr(first, line.find_last_not_of(blanks) + 1 - first);
}

}  // namespace

namespace {

// In lines of 80 characters; those behind the first begin further in.
std::string WrappedForm(const std::string& form) {
  constexpr std::size_t kWidth = 80;
  std::string lines;
  std::string line = " ";
  std::istringstream words(form);
  for (std::string word; words >> word;) {
    if (line.size() + 1 + word.size() > kWidth) {
      lines += line + "\n";
      line = "     ";
    }
    line += " " + word;
  }
  return lines + line + "\n";
}

}  // namespace

std::string SessionForms() {
  std::string forms;
  for (const Verb& verb : kVerbs) {
    forms.append(WrappedForm(verb.form));
  }
  return forms;
}

SessionScript ReadSessionScript(const std::filesystem::path& file, const Page& page,
                                const std::filesystem::path& folder) {
  RequireFile(file);
  std::ifstream in(file);
  if (!in) {
    throw Failure(file.string() + ": the script cannot be read");
  }
  Context context{page, file.parent_path(), folder};
  SessionScript script;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    const std::string place = file.string() + ":" + std::to_string(number);
    const std::string text = Trimmed(line);
    try {
      const Words words = SplitLine(line);
      if (!words.empty()) {
        script.steps.push_back({place, text, ReadStep(words, script.steps.empty(), &context)});
      }
    } catch (const UsageError& fault) {
      std::string what = place;
      throw UsageError(what.append(": ").append(text).append(": ").append(fault.what()));
    }
  }
  // One that ends before its time is no shorter script.
  if (in.bad()) {
    throw Failure(file.string() + ": the script cannot be read");
  }
  if (script.steps.empty()) {
    throw UsageError(file.string() + ": the script has no steps");
  }
  script.outputs = context.outputs;
  return script;
}

}  // namespace glimmerhost
