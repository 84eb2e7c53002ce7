// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/render_words.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

#include "host/farm/shell_text.h"
#include "host/looks/look_layers.h"
#include "host/looks/timed_texts.h"
#include "host/shots/file_sequence.h"
#include "host/shots/frame_list.h"
#include "host/support/system.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

std::string FromRoot(const std::string& name) {
  return name.empty() ? name : fs::absolute(Utf8Path(name)).lexically_normal().string();
}

void Add(const std::string& option, const std::string& value, Words* words) {
  if (!value.empty()) {
    words->push_back("--" + option + "=" + value);
  }
}

// A look's own shot means nothing where no time counts in it, and would refuse frames of another.
std::string ShotText(const Page& page, const JobInput& input) {
  if (TimedTexts(page, {{"", input.look}}).empty()) {
    return "";
  }
  const std::string& own = input.look.At(kShot);
  return own.empty() && input.span.IsKnown() ? ShowSpan(input.span) : own;
}

void AddLook(const Page& page, const JobInput& input, Words* words) {
  Look look = ShortLook(page, input.look);
  look[kSpread] = FromRoot(look.At(kSpread));
  look[kShot] = ShotText(page, input);
  for (const LookName& name : LookNames(page)) {
    Add(name.name, look.At(name.name), words);
  }
  for (const std::string& assignment : look.set) {
    Add("set", assignment, words);
  }
}

void AddTarget(const RenderTarget& target, Words* words) {
  Add("output", FromRoot(target.output), words);
  Add("bits", target.bits, words);
  Add("compression", target.compression, words);
  Add("quality", target.quality, words);
  Add("precision", target.precision, words);
  Add("manifest", FromRoot(target.manifest), words);
  words->emplace_back(target.replaces ? "--overwrite" : "--skip-existing");
  if (target.keepsGoing) {
    words->emplace_back("--keep-going");
  }
}

// All but which engine renders, which the two commands mean differently.
Words WordsOf(const char* command, const Page& page, const JobInput& input,
              const RenderTarget& target) {
  Words words{command};
  AddTarget(target, &words);
  // A picture alone is frame 1 without a word.
  const bool isStill = !FileSequence("INPUT", input.input).HasFrames();
  if (!target.frames.empty() && !(isStill && target.frames == std::vector<int>{1})) {
    Add("frames", ShowFrames(target.frames), &words);
  }
  AddLook(page, input, &words);
  return words;
}

void AddFarm(const FarmTarget& farm, Words* words) {
  Add("engine", farm.isSlurm ? "slurm" : "local", words);
  if (!farm.isSlurm) {
    Add("jobs", std::to_string(farm.processes), words);
  }
  Add("threads", farm.threads == 0 ? "" : std::to_string(farm.threads), words);
  Add("chunk", farm.chunk == 0 ? "" : std::to_string(farm.chunk), words);
  for (const std::string& option : farm.sbatch) {
    Add("sbatch", option, words);
  }
}

// For a shell that knows one kind of quotes.
std::string InDoubleQuotes(const std::string& word) {
  constexpr std::string_view kPlain = "_-+=.,:/\\@#";
  const bool isPlain = std::all_of(word.begin(), word.end(), [&](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           kPlain.find(c) != std::string_view::npos;
  });
  return isPlain && !word.empty() ? word : '"' + word + '"';
}

}  // namespace

Words RenderWords(const Page& page, const JobInput& input, const RenderTarget& target) {
  Words words = WordsOf("render", page, input, target);
  Add("engine", target.engine, &words);
  // From the root on it never looks like an option.
  words.push_back(FromRoot(input.input));
  return words;
}

Words SubmitWords(const Page& page, const JobInput& input, const RenderTarget& target,
                  const FarmTarget& farm) {
  Words words = WordsOf("submit", page, input, target);
  AddFarm(farm, &words);
  Add("engine", target.engine, &words);
  // From the root on it never looks like an option.
  words.push_back(FromRoot(input.input));
  return words;
}

std::string CommandText(const Words& words) {
  if (kShellQuote == '\'') {
    return ShellLine(words);
  }
  std::string line;
  for (const std::string& word : words) {
    line += (line.empty() ? "" : " ") + InDoubleQuotes(word);
  }
  return line;
}

Look ShortLook(const Page& page, const Look& look) {
  const Look used = UsedLook(page, {{"", look}});
  const Look usual = UsedLook(page, {});
  Look trimmed = MergeLayers(page, {{"", look}});
  for (const LookName& name : LookNames(page)) {
    const std::string text = trimmed.At(name.name);
    if (!text.empty() && text == usual.At(name.name)) {
      trimmed.texts.erase(name.name);
      if (UsedLook(page, {{"", trimmed}}) != used) {
        trimmed[name.name] = text;
      }
    }
  }
  return trimmed;
}

std::string ManifestBeside(const std::string& output) {
  return FileSequence("-o", output).Stem().string() + ".manifest.jsonl";
}

std::string ProposedOutput(const std::string& input, bool isShot) {
  const fs::path path = Utf8Path(input);
  const FileSequence sequence("INPUT", input);
  const std::string stem = sequence.Stem().filename().string();
  const std::string name = path.filename().string();
  // What is all place and ending has no name of its own.
  std::string rest = name.starts_with(stem) ? name.substr(stem.size()) : "." + name;
  if (isShot && !sequence.HasFrames()) {
    rest = ".####" + path.extension().string();
  }
  return (path.parent_path() / Utf8Path(stem + "_blur" + rest)).string();
}

}  // namespace glimmerhost
