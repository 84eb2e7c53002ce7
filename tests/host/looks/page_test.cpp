// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/page.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::Page;
using glimmerhost::UsageError;

std::string Refusal(const Page& page, const std::string& key, const std::string& text) {
  try {
    page.Find(key).Parse("--option", text);
  } catch (const UsageError& fault) {
    return fault.what();
  }
  return "";
}

// What is said of the page's file where some of its lines are others.
std::string FaultOf(const std::string& line, const std::string& other) {
  std::ifstream in(PAGE, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(in), {}};
  const std::size_t at = text.find("\n" + line + "\n");
  EXPECT_NE(std::string::npos, at) << line;
  text.replace(at + 1, line.size(), other);
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "page.toml", std::ios::binary) << text;
  try {
    Page::Load(folder / "page.toml");
  } catch (const glimmerhost::Failure& fault) {
    return fault.what();
  }
  return "";
}

void ExpectFault(const std::string& line, const std::string& other, const std::string& says) {
  const std::string fault = FaultOf(line, other);
  EXPECT_NE(std::string::npos, fault.find("page.toml: not a page description: " + says))
      << other << ": " << fault;
}

TEST(Page, HasADefaultForEveryKeyOfTheEffect) {
  const auto defaults = Page::Load(PAGE).Defaults();

  EXPECT_EQ(13U, defaults.size());
  EXPECT_EQ(0, std::get<int>(defaults.at("PRM_Shape")));
  EXPECT_FALSE(std::get<bool>(defaults.at("PRM_Match")));
  EXPECT_EQ(6.0, std::get<double>(defaults.at("PRM_Sides")));
  EXPECT_EQ(0.5, std::get<double>(defaults.at("PRM_Center_Y")));
}

TEST(Page, TakesEntriesByNameAndByIndex) {
  const Page page = Page::Load(PAGE);
  EXPECT_EQ(2, std::get<int>(page.Find("PRM_Shape").Parse("--shape", "polygon")));
  EXPECT_EQ(1, std::get<int>(page.Find("PRM_Shape").Parse("--set", "1")));
  EXPECT_TRUE(std::get<bool>(page.Find("PRM_Match").Parse("--set", "true")));
  EXPECT_FALSE(std::get<bool>(page.Find("PRM_Match").Parse("--set", "0")));
}

TEST(Page, NamesOriginValueAndWhatIsAllowed) {
  const Page page = Page::Load(PAGE);
  EXPECT_EQ("--option must be a whole number from 3 to 50, not 51",
            Refusal(page, "PRM_Sides", "51"));
  EXPECT_EQ("--option must be a whole number from 3 to 50, not 5.5",
            Refusal(page, "PRM_Sides", "5.5"));
  EXPECT_EQ("--option must be a number from 0 to 500 (the page offers 1 to 50), not 501",
            Refusal(page, "PRM_Emphasis", "501"));
  EXPECT_EQ("--option must be on or off, not maybe", Refusal(page, "PRM_Match", "maybe"));
  EXPECT_EQ("--option must be a number from -3600 to 3600, not nan",
            Refusal(page, "PRM_Rotation", "nan"));
}

TEST(Page, RefusesAnEntryThatItDoesNotHave) {
  const Page page = Page::Load(PAGE);
  for (const char* text : {"4", "-1", "2.5", "heart"}) {
    EXPECT_EQ(std::string("--option must be circle, ellipse, polygon or image (in the store 0 to "
                          "3), not ") +
                  text,
              Refusal(page, "PRM_Shape", text));
  }
}

TEST(Page, TakesWhatIsTypedBeyondWhatItOffers) {
  const Page page = Page::Load(PAGE);
  const glimmerhost::Parameter& emphasis = page.Find("PRM_Emphasis");
  EXPECT_EQ(1.0, emphasis.lowest);
  EXPECT_EQ(50.0, emphasis.highest);
  for (const char* text : {"0", "50", "500"}) {
    EXPECT_EQ(std::stod(text), std::get<double>(emphasis.Parse("--emphasis", text)));
  }
}

TEST(Page, NamesTheNearestKeyForOneThatIsUnknown) {
  const Page page = Page::Load(PAGE);
  try {
    page.Find("PRM_Radius");
    FAIL();
  } catch (const UsageError& fault) {
    EXPECT_EQ("unknown parameter \"PRM_Radius\"; did you mean \"PRM_RadiusX\"?",
              std::string(fault.what()));
  }
}

TEST(Page, SaysWhatIsWrongWithItsFile) {
  const lx_test::ScratchFolder folder;
  for (const char* content : {"", "[[parameter]]\nkey = 1", "parameter = 3", "not toml at all [",
                              "[[parameter]]\nkey='a'\nlabel='b'\nkind='number'\ndefault=1.0",
                              "[[parameter]]\nkey='a'\nlabel='b'\nkind='knob'\ndefault=1.0"}) {
    std::ofstream(folder / "page.toml") << content;
    EXPECT_THROW(Page::Load(folder / "page.toml"), glimmerhost::Failure) << content;
  }
  EXPECT_THROW(Page::Load(folder / "missing.toml"), glimmerhost::Failure);
}

// Taken for none, they would make an option that can be typed and sets nothing.
TEST(Page, RefusesKeysAndEntriesThatAreNoListOfTexts) {
  const std::string keys = "keys = [\"PRM_RadiusX\", \"PRM_RadiusY\"]";
  ExpectFault(keys, "keys = \"PRM_RadiusX\"", "keys is not a list of texts");
  ExpectFault(keys, "keys = [1, 2]", "keys is not a list of texts");
  ExpectFault("entries = [\"circle\", \"ellipse\", \"polygon\", \"image\"]", "entries = [1, 2]",
              "entries is not a list of texts");
}

// A look file names it without dashes, and the command line takes no blank or equals sign in it.
TEST(Page, RefusesNamesOfOptionsThatCannotBeTyped) {
  for (const char* name : {"--sh ape", "--shape=", "--shape,--form", "---shape", "--shape{x}"}) {
    ExpectFault("option = \"--shape\"", std::string("option = \"") + name + "\"",
                std::string("the option ") + name + " must be -- and small letters");
  }
}

// Options are taken in the order of their groups: --radius would take back what --radius-x sets.
TEST(Page, RefusesAGroupThatPutsAnOptionBeforeTheOneItGoesOver) {
  const std::string value = "value = \"RADIUS\"\ngroup = ";
  ExpectFault(value + "\"Aperture\"", value + "\"Highlights\"",
              "the option --radius-x is in a group before that of --radius");
}

}  // namespace
