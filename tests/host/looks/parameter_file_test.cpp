// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/parameter_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "host/looks/keyframed_values.h"
#include "host/support/failure.h"
#include "tests/support/looks.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::Look;
using glimmerhost::Page;
using glimmerhost::ReadParameterFile;
using glimmerhost::TypedLook;

class ParameterFile : public testing::Test {
 public:
  std::string Write(const std::string& text, const std::string& name = "film.toml") {
    std::ofstream(folder / name, std::ios::binary) << text;
    return (folder / name).string();
  }

  // What is said of values that the page does not take.
  std::string Refusal(const std::string& text) {
    TypedLook typed;
    typed.file = Write(text);
    try {
      lx_test::StillValuesOf(page, typed, 800, 600);
    } catch (const glimmerhost::UsageError& fault) {
      return fault.what();
    }
    return "";
  }

  // What is said of a file that is wrong itself, behind its name and ':'.
  template <class Fault>
  std::string Complaint(const std::string& name) {
    try {
      ReadParameterFile(page, folder / name);
    } catch (const Fault& fault) {
      const std::string text = fault.what();
      const std::string file = (folder / name).string() + ":";
      EXPECT_TRUE(text.starts_with(file)) << text;
      return text.substr(std::min(file.size(), text.size()));
    }
    return "";
  }

  std::string WrongUse(const std::string& text, const std::string& name = "film.toml") {
    Write(text, name);
    return Complaint<glimmerhost::UsageError>(name);
  }

  std::string Unreadable(const std::string& text, const std::string& name = "film.toml") {
    Write(text, name);
    return Complaint<glimmerhost::UsageError>(name);
  }

  lx_test::ScratchFolder folder;
  const Page page = Page::Load(PAGE);
};

TEST_F(ParameterFile, NamesValuesAsTheOptionsDo) {
  TypedLook typed;
  typed.file = Write(
      "shape = \"polygon\"\n"
      "sides = 5\n"
      "radius = \"40px\"\n"
      "rotation = -12.5\n"
      "match = true\n"
      "center = \"25%,50%\"\n"
      "PRM_Emphasis = 20\n"
      "PRM_Precision = true\n");

  const auto values = lx_test::StillValuesOf(page, typed, 800, 600);

  EXPECT_EQ(2, std::get<int>(values.at("PRM_Shape")));
  EXPECT_EQ(5.0, std::get<double>(values.at("PRM_Sides")));
  EXPECT_EQ(0.1, std::get<double>(values.at("PRM_RadiusY")));
  EXPECT_EQ(-12.5, std::get<double>(values.at("PRM_Rotation")));
  EXPECT_TRUE(std::get<bool>(values.at("PRM_Match")));
  EXPECT_EQ(0.25, std::get<double>(values.at("PRM_Center_X")));
  EXPECT_EQ(20.0, std::get<double>(values.at("PRM_Emphasis")));
  EXPECT_TRUE(std::get<bool>(values.at("PRM_Precision")));
}

// Also where the file is the more exact one.
TEST_F(ParameterFile, LiesBelowWhatIsTyped) {
  TypedLook typed;
  typed.file = Write("radius-x = \"8px\"\nsides = 5\nPRM_Rotation = 3\n");
  typed["radius"] = "40px";
  typed["rotation"] = "7";

  const auto values = lx_test::StillValuesOf(page, typed, 800, 600);

  EXPECT_EQ(0.1, std::get<double>(values.at("PRM_RadiusX")));
  EXPECT_EQ(5.0, std::get<double>(values.at("PRM_Sides")));
  EXPECT_EQ(7.0, std::get<double>(values.at("PRM_Rotation")));
}

TEST_F(ParameterFile, ReadsTheSameFromJson) {
  const Look fromToml = ReadParameterFile(
      page,
      Write("version = 1\nshape = \"polygon\"\nsides = 5\nradius = \"40px\"\nmatch = true\n"
            "rotation = -12.5\nemphasis = \"0=50; 24~=60; last=220\"\nPRM_Precision = false\n"));
  const Look fromJson = ReadParameterFile(
      page,
      Write("{\"version\": 1, \"shape\": \"polygon\", \"sides\": 5, \"radius\": \"40px\",\n"
            "\"match\": true, \"rotation\": -12.5, \"emphasis\": \"0=50; 24~=60; last=220\",\n"
            "\"PRM_Precision\": false}",
            "film.json"));

  EXPECT_EQ(fromToml, fromJson);
  EXPECT_EQ("0=50; 24~=60; last=220", fromJson.At("emphasis"));
  EXPECT_EQ("-12.5", fromJson.At("rotation"));
  EXPECT_EQ("on", fromJson.At("match"));
  EXPECT_EQ("PRM_Precision=off", fromJson.set.at(0));
}

TEST_F(ParameterFile, HasWhatDecidesThePictureBesideTheStore) {
  const Look look = ReadParameterFile(
      page,
      Write("spread = \"pictures/../heart.png\"\npixel-aspect = \"16:15\"\nalpha = \"as-is\"\n"));

  EXPECT_EQ((folder / "heart.png").string(), look.At("spread"));
  EXPECT_EQ("16:15", look.At("pixel-aspect"));
  EXPECT_EQ("as-is", look.At("alpha"));
}

TEST_F(ParameterFile, NamesTheLineOfWhatItMayNotHave) {
  const std::string values = " must be a text, a number, true or false";
  const std::string texts = " must be a text of one line that is not empty";
  const std::string one = "1: version must be the whole number 1, not ";
  for (const auto& [text, says] : {
           std::pair<std::string, std::string>{
               "radus = \"4px\"\n", "1: unknown parameter \"radus\"; did you mean \"radius\"?"},
           {"sides = 5\n\nverson = 1\n",
            "3: unknown parameter \"verson\"; did you mean \"version\"?"},
           {"sides = [5]\n", "1: sides" + values},
           {"[sides]\nx = 1\n", "1: sides" + values},
           {"sides.x = 1\n", "1: sides" + values},
           {"sides = 1979-05-27\n", "1: sides" + values},
           {"\nshape = \"\"\n", "2: shape" + texts},
           {"shape = \"a\\nb\"\n", "1: shape" + texts},
           {"\"a\\nb\" = 1\n", "1: unknown parameter \"a b\""},
           {"version = 2\n", one + "2"},
           {"version = 1.0\n", one + "1"},
           {"version = \"1\"\n", one + "1"},
           {"version = true\n", one + "on"},
           {"\nalpha = \"straight\"\n", "2: alpha must be premultiplied or as-is, not straight"},
       }) {
    EXPECT_EQ(says, WrongUse(text)) << text;
  }
  EXPECT_TRUE(WrongUse("pixel-aspect = \"16\"\n").starts_with("1: pixel-aspect must be A:B"));
}

TEST_F(ParameterFile, NamesTheLineInJsonToo) {
  const std::string values = " must be a text, a number, true or false";
  const std::string object = ": must be an object of values, {\"version\": 1, ...}";
  for (const auto& [text, says] : {
           std::pair<std::string, std::string>{
               "{\"version\": 1,\n\"radus\": 4}",
               "2: unknown parameter \"radus\"; did you mean \"radius\"?"},
           {"{\"version\": 1,\n\"sides\": 5,\n\"sides\": 5}", "3: sides: given twice"},
           {"{\"version\": 1,\n\n\"sides\": null}", "3: sides" + values},
           {"{\"sides\": [5]}", "1: sides" + values},
           {"{\"sides\":\n{}}", "1: sides" + values},
           {"{\"version\": 2}", "1: version must be the whole number 1, not 2"},
           {"[1]", "1" + object},
           {"\n5", "2" + object},
           {"{\"sides\": 5\n,\"sids\": 5\n}",
            "2: unknown parameter \"sids\"; did you mean \"sides\"?"},
           {"{}", " version is missing; \"version\": 1 must be there"},
       }) {
    EXPECT_EQ(says, WrongUse(text, "film.json")) << text;
  }
}

TEST_F(ParameterFile, RefusesWithItsNameTheValueAndWhatIsAllowed) {
  const std::string file = (folder / "film.toml").string();
  EXPECT_EQ(file + ": sides must be a whole number from 3 to 50, not 2", Refusal("sides = 2\n"));
  EXPECT_EQ(file + ": match must be on or off, not 2", Refusal("match = 2\n"));
  EXPECT_EQ(file + ": set: unknown parameter \"PRM_Sids\"; did you mean \"PRM_Sides\"?",
            Refusal("PRM_Sids = 5\n"));
  EXPECT_EQ(file + ": rotation must be a number from -3600 to 3600, not inf",
            Refusal("rotation = inf\n"));
  EXPECT_EQ(file + ": sides must be a whole number from 3 to 50, not 1e+300",
            Refusal("sides = 1e300\n"));
}

TEST_F(ParameterFile, FailsWithTheLineWhereItIsNoneOfItsFormat) {
  const std::string why = " cannot be read as a look: ";
  for (const auto& [text, line] : {std::pair<std::string, std::string>{"a = 1\nsides 5\n", "2:"},
                                   {"sides = 5\n\nsides = 5\n", "3:"},
                                   {"sides = 99999999999999999999\n", "1:"},
                                   {"# \xff\n", "1:"}}) {
    const std::string says = Unreadable(text);
    EXPECT_TRUE(says.starts_with(line + why)) << text << says;
  }
  for (const auto& [text, line] : {std::pair<std::string, std::string>{"{\n\"sides\" 5}", "2:"},
                                   {"{\n\"sides\" 5\n}", "2:"},
                                   {"{\"sides\": 1e999}", "1:"},
                                   {"{\"si\xff\": 1}", "1:"},
                                   {"{\"version\": 1} {", "1:"}}) {
    const std::string says = Unreadable(text, "film.json");
    EXPECT_TRUE(says.starts_with(line + why)) << text << says;
  }
}

TEST_F(ParameterFile, FailsWhereThereIsNothingToRead) {
  EXPECT_EQ(" not found", Complaint<glimmerhost::MissingInput>("none.toml"));
  std::filesystem::create_directory(folder / "folder.toml");
  EXPECT_EQ(" not a file", Complaint<glimmerhost::Failure>("folder.toml"));
  EXPECT_EQ(" empty", Unreadable(""));
}

// A hundred million bytes, of which the system keeps none.
TEST_F(ParameterFile, FailsWithoutReadingWhereItIsLarge) {
  Write("x");
  std::filesystem::resize_file(folder / "film.toml", 100'000'000);
  EXPECT_EQ(" not a parameter file: larger than a million bytes",
            Complaint<glimmerhost::UsageError>("film.toml"));
}

std::string Times(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    all += text;
  }
  return all;
}

TEST_F(ParameterFile, EndsInOneLineHoweverDeepItIsNested) {
  const std::string why = " cannot be read as a look: ";
  EXPECT_TRUE(Unreadable("a = " + Times(400'000, "[") + "\n").starts_with("1:" + why));
  EXPECT_TRUE(Unreadable("a = " + Times(100'000, "{a=") + "\n").starts_with("1:" + why));
  EXPECT_EQ(why + "its names have dots without end", Unreadable(Times(400'000, "a.") + "a = 1\n"));
  EXPECT_TRUE(WrongUse(Times(400'000, "[") + "\n", "film.json").starts_with("1: must be"));
  EXPECT_TRUE(WrongUse("{\"sides\":" + Times(200'000, "{\"a\":"), "film.json")
                  .starts_with("1: sides must be"));
}

// Neither texts nor comments do.
TEST_F(ParameterFile, IsNotHiddenDotsByWhatStandsBeforeThem) {
  const std::string dots = Times(501, "a.") + "a = 1\n";
  for (const char* before :
       {"a = \"\\\"\"\n", "a = 'b\\'\n", "# \"\n", "# '''\n", "a = \"\"\n", "a = ''\n",
        "a = \"\"\"\n\"'\\\"\"\"\"\n", "a = '''\n\"'''\n", "a = \"b\" # '\n"}) {
    EXPECT_EQ(" cannot be read as a look: its names have dots without end",
              Unreadable(before + dots))
        << before;
  }
}

// In every kind of text, also where it begins on the next line, as that of three quotes may.
TEST_F(ParameterFile, MayHaveAnyNumberOfDotsInTexts) {
  const std::string dots = Times(2000, "1.5;");
  for (const auto& [open, close] : {std::pair{"\"", "\""},
                                    {"'", "'"},
                                    {"\"\"\"", "\"\"\""},
                                    {"'''", "'''"},
                                    {"\"\"\"\n", "\"\"\""},
                                    {"'''\n", "'''"}}) {
    const std::string text = std::string("emphasis = ") + open + dots + close + " # " + dots;
    EXPECT_EQ(dots, ReadParameterFile(page, Write(text)).At("emphasis")) << open;
  }
}

// The library would ask whether such a letter is a blank, and has no defined answer.
TEST_F(ParameterFile, FailsWithTheLineOfALetterBeyondAsciiThatStandsInNoText) {
  const std::string why = " cannot be read as a look: ";
  for (const auto& [text, line] : {std::pair<std::string, std::string>{"sides = 5\u01D2\n", "1:"},
                                   {"# \u00E9\n\u00E9 = 5\n", "2:"},
                                   {"\nspread = \"a\"\u3001\n", "2:"},
                                   {"a = 1b\"\u0350\n", "1:"},
                                   {"a=0==\'\'\'=\uFFBE=x", "1:"}}) {
    const std::string says = Unreadable(text);
    EXPECT_TRUE(says.starts_with(line + why)) << text << says;
  }
}

TEST_F(ParameterFile, MayHaveLettersOfAllKindsInTextsAndComments) {
  for (const char* const text :
       {"emphasis = \"\u00E9`\u01D2\" # \u00E9`\n", "\uFEFFemphasis = '\u00E9`\u01D2'\n",
        "emphasis = \"\"\"\n\u00E9`\u01D2\"\"\"\n",
        "emphasis = \"\"\"\\\n\u00E9`\\\n \\u01D2\"\"\"\n"}) {
    EXPECT_EQ("\u00E9`\u01D2", ReadParameterFile(page, Write(text)).At("emphasis")) << text;
  }
}

TEST_F(ParameterFile, FailsWithTheLineWhereItIsNotUtf8) {
  const std::string why = " cannot be read as a look: not UTF-8";
  for (const char* const bytes :
       {"\x80", "\xC1\x81", "\xC3", "\xC3(", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xEF\xBF",
        "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80"}) {
    EXPECT_EQ("2:" + why, Unreadable(std::string("# \u00E9\nspread = '") + bytes));
  }
}

// What the library makes of it would be taken for a mark of ours.
TEST_F(ParameterFile, MayNotNameABackquoteByItsNumber) {
  for (const char* const name : {"\\u0060", "\\U00000060"}) {
    EXPECT_EQ("1: cannot be read as a look: ` must be written as itself",
              Unreadable(std::string("emphasis = \"") + name + "41\""));
  }
}

}  // namespace
