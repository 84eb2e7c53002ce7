// SPDX-License-Identifier: BSD-3-Clause
// Command lines that something has happened to.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/pictures/picture_file.h"
#include "tests/mutations/mutator.h"
#include "tests/mutations/program_run.h"
#include "tests/mutations/run_checks.h"
#include "tests/mutations/seed_files.h"

namespace {

using glimmerhost::Alpha;
using Line = std::vector<std::string>;

const std::vector<Line> kLines = {
    {"render", "in.png", "-o", "out.png", "--radius", "3px"},
    {"render", "in.png", "-o", "out.png", "--shape", "polygon", "--sides", "5", "--radius", "10%",
     "--rotation", "20", "--match", "--emphasis", "40", "--emph-alpha"},
    {"render", "alpha.tif", "-o", "out.tif", "--alpha", "as-is", "--bits", "8", "--pixel-aspect",
     "16:15", "--overwrite"},
    {"render", "half.exr", "-o", "out.exr", "--range", "scale:4", "--quiet"},
    {"render", "in.png", "-o", "out.jpg", "--shape", "image", "--spread", "spread.png", "--center",
     "50%,50%", "--radius-psf1", "2px", "--radius-psf2", "4px"},
    {"render", "shot.####.png", "-o", "out.####.png", "--frames", "1-3", "--radius",
     "first=1px; last=4px", "--manifest", "out.jsonl", "--progress", "json"},
    {"render", "shot.####.png", "-o", "out.@.png", "--chunk", "1/2", "--skip-existing",
     "--keep-going", "--quiet"},
    {"render", "shot.%04d.png", "-o", "out.%d.png", "--frames", "4-1x2", "--params", "look.toml",
     "--save-params", "out.toml", "--set", "PRM_Emphasis=0=1; 2=9"},
    {"render", "shot.1-4#.png", "-o", "sub/out.##.png", "--preset", "focus-pull", "--explain"},
    {"render", "shot.####.png", "-o", "sub/out.##.dpx", "--spread", "shot.####.png", "--shape",
     "image", "--radius-psf2", "4px", "--carry-psf", "--progress", "lines"},
    {"render", "shot.####.png", "-o", "done.####.png", "--manifest", "done.jsonl",
     "--skip-existing", "--frames", "1-4"},
    {"render", "shot.####.png", "-o", "out.@@.png", "--dry-run"},
    {"render", "-", "-o", "out.##.png", "--frames", "1-2", "--radius", "5%"},
    {"render", "-", "-o", "-", "--radius", "1=1%; 9=5%"},
    {"render", "in.png", "-o", "-", "--params", "look.json"},
    {"psf", "-o", "out.png", "--size", "40x30", "--radius", "4px", "--zoom", "2"},
    {"psf", "-o", "out.png", "--size", "32x24", "--shape", "image", "--spread", "spread.png",
     "--radius-psf2", "6px", "--overwrite"},
    {"page", "in.png", "-o", "out.png", "--shape", "image", "--radius-psf2", "6px"},
    {"session", "page.session", "-o", "sub", "--trace"},
    {"check", "done.jsonl", "--frames", "1-2"},
    {"presets"},
    {"info"},
    {"render", "--help"},
};

// What may stand anywhere. --threads only with what is refused: it would narrow this process.
const std::vector<std::string> kWords = {"",
                                         "-",
                                         "--",
                                         "=",
                                         "-o",
                                         "--output",
                                         "--frames",
                                         "--chunk",
                                         "--radius",
                                         "--radius-x",
                                         "--set",
                                         "--params",
                                         "--save-params",
                                         "--manifest",
                                         "--spread",
                                         "--shape",
                                         "--overwrite",
                                         "--skip-existing",
                                         "--keep-going",
                                         "--quiet",
                                         "--help",
                                         "--version",
                                         "--nothing",
                                         "-x",
                                         "--threads=0",
                                         "--threads=-1",
                                         "--threads=x",
                                         "--threads=1e9",
                                         "--module=text.txt",
                                         "--module=none.so",
                                         "render",
                                         "psf",
                                         "page",
                                         "session",
                                         "check",
                                         "in.png",
                                         "alpha.tif",
                                         "none.png",
                                         "empty.png",
                                         "text.txt",
                                         "sub",
                                         "sub/",
                                         ".",
                                         "shot.####.png",
                                         "shot.@.png",
                                         "shot.0001.png",
                                         "shot.2-9#.png",
                                         "out.png",
                                         "out.####.png",
                                         "out.#.@.png",
                                         "out.%d.exr",
                                         "out.%013d.png",
                                         "out.hdr",
                                         "out.tga",
                                         "out.null",
                                         "out.term",
                                         "out",
                                         ".png",
                                         "none/out.png",
                                         "#/out.png",
                                         "o\xff.png",
                                         "o\nut.png",
                                         "look.toml",
                                         "look.json",
                                         "out.toml",
                                         "out.jsonl",
                                         "done.jsonl",
                                         "0",
                                         "-1",
                                         "1",
                                         "2",
                                         "3",
                                         "0.5",
                                         "50%",
                                         "3px",
                                         "-3px",
                                         "1e3px",
                                         "nan",
                                         "inf",
                                         "-inf",
                                         "1e308",
                                         "1e-308",
                                         "0x10",
                                         "1,5",
                                         "99999999999",
                                         "2147483648",
                                         "-2147483648",
                                         "-0",
                                         "1-4",
                                         "4-1",
                                         "1-4x2",
                                         "1-4x0",
                                         "-2-2",
                                         "1-",
                                         "1,,2",
                                         "1-4,3,2-3",
                                         "1/1",
                                         "2/1",
                                         "0/2",
                                         "1/9",
                                         "3/0",
                                         "1/2",
                                         "16:15",
                                         "0:1",
                                         "1:0",
                                         "40x30",
                                         "0x9",
                                         "9e9x1",
                                         "on",
                                         "off",
                                         "true",
                                         "polygon",
                                         "image",
                                         "circle",
                                         "0=1; 2=3",
                                         "0=1px; -1=4px",
                                         "first~=1;25%|=2;last-3=3",
                                         "first+=1; 101%=2; last--1=3",
                                         "0=1;0=2",
                                         "=",
                                         ";",
                                         "2147483647=1; -9=2",
                                         "-2147483648=1; 2147483647=9",
                                         "0=nan",
                                         "0=1=2",
                                         "PRM_Sides=3",
                                         "PRM_Nothing=1",
                                         "PRM_Emphasis=1e9",
                                         "PRM_Shape=",
                                         "city-lights",
                                         "log:8",
                                         "scale:0",
                                         "clip",
                                         "\xff\xfe",
                                         "\xc3",
                                         "\x7f",
                                         "\x1b[2J",
                                         "\t",
                                         "%s%n",
                                         "~",
                                         "*",
                                         "?"};

// Numbers that name frames or sizes stay small, so that no line asks for much work; those that
// nothing takes are kept as they are.
void TrimNumbers(std::string* word) {
  constexpr std::size_t kShort = 2;
  constexpr std::size_t kRefused = 9;
  for (std::size_t at = 0; at < word->size();) {
    std::size_t end = at;
    while (end < word->size() && std::isdigit(static_cast<unsigned char>((*word)[end])) != 0) {
      ++end;
    }
    const std::size_t length = end - at;
    const bool ofName = at > 0 && (*word)[at - 1] == '.';
    if (length > kShort && length < kRefused && !ofName) {
      word->erase(at + kShort, length - kShort);
      end = at + kShort;
    }
    at = end + 1;
  }
}

// Names lead nowhere but into the folder, and words hold what a system can hand over.
void KeepInside(std::string* word) {
  std::erase(*word, '\0');
  for (const std::string_view outward : {"../", "//"}) {
    for (std::size_t at = 0; (at = word->find(outward)) != std::string::npos;) {
      word->erase(at, outward.size());
    }
  }
  for (std::size_t at = 0; (at = word->find('/', at)) != std::string::npos; ++at) {
    const bool inside = at > 0 && (std::isalnum(static_cast<unsigned char>((*word)[at - 1])) != 0 ||
                                   (*word)[at - 1] == '#');
    // -o/x and --output=/x are names, too.
    if (!inside || word->substr(0, at) == "-o") {
      (*word)[at] = '|';
    }
  }
}

// What is refused narrows nothing; wisdom writes where the machine keeps it.
bool GoesBeyond(const Line& line) {
  return std::any_of(line.begin(), line.end(), [](const std::string& word) {
    const bool isRefused = std::find(kWords.begin(), kWords.end(), word) != kWords.end();
    return (word.starts_with("--threads") && !isRefused) || word == "wisdom";
  });
}

Line Mutated(mutations::Mutator* mutator) {
  Line line = mutator->AnyOf(kLines);
  for (std::size_t count = mutator->OneIn(3) ? 2 : 1; count > 0; --count) {
    const std::size_t at = mutator->Below(line.size() + 1);
    if (at == line.size() || line.empty()) {
      line.push_back(mutator->AnyOf(kWords));
      continue;
    }
    const auto place = line.begin() + static_cast<std::ptrdiff_t>(at);
    switch (mutator->Below(8)) {
      case 0:
        line.erase(place);
        break;
      case 1:
        line.insert(place, std::string(line[at]));
        break;
      case 2:
        std::swap(line[at], line[mutator->Below(line.size())]);
        break;
      case 3:
        line.insert(place, mutator->AnyOf(kWords));
        break;
      case 4:
        line[at] = mutator->Text(line[at], kWords);
        break;
      case 5:
        line[at] += (mutator->OneIn(2) ? "=" : "") + mutator->AnyOf(kWords);
        break;
      default:
        line[at] = mutator->AnyOf(kWords);
    }
  }
  for (std::string& word : line) {
    TrimNumbers(&word);
    KeepInside(&word);
  }
  return line;
}

// The word behind the only one of that name; empty if it is not there, or not alone.
std::string ValueOf(const Line& line, const std::string& name) {
  const auto first = std::find(line.begin(), line.end(), name);
  return first == line.end() || first + 1 == line.end() ||
                 std::find(first + 1, line.end(), name) != line.end()
             ? ""
             : *(first + 1);
}

// Where a line says plainly what it makes of which picture, that must be there.
void ExpectOutput(const Line& line, const std::string& what) {
  const std::string output = ValueOf(line, "-o");
  const bool plain = line.size() > 1 && line[0] == "render" &&
                     (line[1] == "in.png" || line[1] == "alpha.tif") &&
                     (output == "out.png" || output == "out.tif") &&
                     std::none_of(line.begin(), line.end(), [](const std::string& word) {
                       return word == "--help" || word == "--dry-run" || word == "--explain";
                     });
  if (!plain) {
    return;
  }
  std::string warning;
  const glimmerhost::Picture in = glimmerhost::ReadPicture(line[1], &warning);
  try {
    const glimmerhost::Picture out = glimmerhost::ReadPicture(output, &warning);
    EXPECT_EQ(in.width, out.width) << what;
    EXPECT_EQ(in.height, out.height) << what;
  } catch (const std::exception& fault) {
    ADD_FAILURE() << what << "\n" << fault.what();
  }
}

void MakeFiles(mutations::RunFolder* folder) {
  std::filesystem::create_directory("sub");
  mutations::WriteSmall("in.png", 24, 16, 8);
  mutations::WriteSmall("alpha.tif", 20, 14, 16, Alpha::kStraight);
  mutations::WriteSmall("half.exr", 20, 14, 16);
  mutations::WriteSmall("spread.png", 12, 12, 8);
  for (int frame = 1; frame <= 4; ++frame) {
    mutations::WriteSmall("shot.000" + std::to_string(frame) + ".png", 16, 12, 8, Alpha::kNone,
                          frame);
  }
  mutations::WriteBytes("empty.png", "");
  mutations::WriteBytes("text.txt", "no picture");
  mutations::WriteBytes("look.toml", "version = 1\nshape = \"polygon\"\nradius = \"4px\"\n");
  mutations::WriteBytes("look.json",
                        R"({"version": 1, "radius": "first=1px; last=3px", "shot": "1-9"})");
  mutations::WriteBytes("page.session",
                        "load in.png\nset PRM_Shape image\npress 12 8\nmove 14 6\nrelease 14 6\n"
                        "render\nsave after.png\nprint page\n");
  mutations::WriteBytes("pipe.pam", mutations::SmallPam());
  folder->Keep();
  ASSERT_EQ(0, folder
                   ->Do({"render", "shot.####.png", "-o", "done.####.png", "--radius", "1px",
                         "--frames", "1-2", "--manifest", "done.jsonl"})
                   .code);
  folder->Keep();
}

TEST(MutatedCommandLine, IsDoneOrRefusedInPlainLines) {
  mutations::RunFolder folder;
  MakeFiles(&folder);
  int done = 0;
  int refused = 0;
  mutations::ForSeeds(5000, [&](unsigned seed) {
    mutations::Mutator mutator(seed);
    const Line line = Mutated(&mutator);
    if (GoesBeyond(line)) {
      return;
    }
    const mutations::RunResult run = folder.Do(line, "pipe.pam");
    const std::string what = "seed " + std::to_string(seed) + ":" + mutations::Show(line);
    mutations::ExpectCleanEnd(folder, line, run, what);
    if (run.code == 0) {
      ExpectOutput(line, what);
    }
    ++(run.code == 0 ? done : refused);
    folder.Restore();
  });
  RecordProperty("done", done);
  RecordProperty("refused", refused);
}

}  // namespace
