// Parameter files that anything has happened to.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "host/glimmerhost/parameter_file.h"
#include "host/support/failure.h"

namespace {

const char* const kToml =
    "# A film\nversion = 1\nshape = \"polygon\"\nsides = 5\nradius = '40px'\nmatch = true\n"
    "rotation = -12.5e-1\nemphasis = \"\"\"\n0=50; 24~=60; -1=220\"\"\"\nspread = "
    "\"h\\u00f6.png\"\n"
    "center = \"25%,50%\" # to the left\nalpha = \"as-is\"\npixel-aspect = \"16:15\"\n"
    "PRM_Precision = false\n";

const char* const kJson =
    "{\"version\": 1, \"shape\": \"polygon\",\n\"sides\": 5, \"radius\": \"40px\",\r\n"
    "\"match\": true, \"rotation\": -12.5e-1, \"emphasis\": \"0=50; 24~=60; -1=220\",\n"
    "\"spread\": \"h\\u00f6.png\", \"alpha\": \"as-is\", \"pixel-aspect\": \"16:15\",\n"
    "\"PRM_Precision\": false}\n";

// What means something in one of the formats, or is wrong in both.
const std::vector<std::string> kPieces = {
    "[",     "]",      "[[",  "{",       "}",     "\"",          "\"\"\"", "'",
    "'''",   "=",      ":",   ",",       ".",     "a.b",         "#",      "\n",
    "\r\n",  "\t",     "\\",  "\\u0000", "\xff",  "\xc3",        "\x7f",   "\x01",
    "1e999", "-nan",   "inf", "0x7f",    "1e308", "99999999999", "null",   "false",
    "1979",  "\\ud83", "\\n", "{}",      "sides", "\"a\":",      "\"a\"=", "\xef\xbb\xbf"};

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random_(seed) {}

  std::string Mutate(std::string text) {
    for (std::size_t count = 1 + Below(4); count > 0; --count) {
      const std::size_t at = Below(text.size() + 1);
      const std::size_t length = std::min(Below(12), text.size() - at);
      switch (Below(6)) {
        case 0:
          text.insert(at, kPieces[Below(kPieces.size())]);
          break;
        case 1:
          text.replace(at, length, kPieces[Below(kPieces.size())]);
          break;
        case 2:
          text.erase(at, length);
          break;
        case 3:
          text.insert(Below(text.size() + 1), text.substr(at, length * 4));
          break;
        case 4:
          text.insert(at, std::string(Below(300), "[{\".'\n \xff"[Below(8)]));
          break;
        default:
          text.replace(at, std::min<std::size_t>(1, length), 1, static_cast<char>(Below(256)));
      }
    }
    return text;
  }

 private:
  std::size_t Below(std::size_t limit) { return random_() % limit; }

  std::mt19937 random_;
};

struct Tally {
  int read = 0;
  int refused = 0;
};

Tally ReadMutations(const std::string& file, const std::string& text) {
  Tally tally;
  for (unsigned seed = 0; seed < 4000; ++seed) {
    std::string says;
    try {
      glimmerhost::ParseParameters(file, Mutator(seed).Mutate(text));
      ++tally.read;
      continue;
    } catch (const glimmerhost::Failure& fault) {
      says = fault.what();
    } catch (const glimmerhost::UsageError& fault) {
      says = fault.what();
    }
    ++tally.refused;
    EXPECT_TRUE(says.starts_with(file + ":")) << seed << ": " << says;
    EXPECT_TRUE(std::none_of(says.begin(), says.end(),
                             [](unsigned char c) { return c < 0x20 || c == 0x7F; }))
        << seed << ": " << says;
    EXPECT_LT(says.size(), file.size() + 800) << seed << ": " << says;
  }
  return tally;
}

// Some of each kind, or the mutations would be too weak or too strong to say anything.
TEST(MutatedParameterFile, IsReadOrRefusedInOneLine) {
  const Tally toml = ReadMutations("film.toml", kToml);
  EXPECT_GT(toml.read, 200);
  EXPECT_GT(toml.refused, 2000);
  const Tally json = ReadMutations("film.json", kJson);
  EXPECT_GT(json.read, 100);
  EXPECT_GT(json.refused, 2000);
}

}  // namespace
