#include "host/glimmerhost/parameter_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "host/glimmerhost/shot_values.h"
#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::Page;
using glimmerhost::TypedValues;

class ParameterFile : public testing::Test {
 public:
  std::string Write(const std::string& text) {
    std::ofstream(folder / "film.toml") << text;
    return (folder / "film.toml").string();
  }

  std::string Refusal(const std::string& text) {
    TypedValues typed;
    typed.file = Write(text);
    try {
      MakeStoreValues(Page::Load(PAGE), typed, 800, 600);
    } catch (const glimmerhost::UsageError& fault) {
      return fault.what();
    }
    return "";
  }

  lx_test::ScratchFolder folder;
};

TEST_F(ParameterFile, NamesValuesAsTheOptionsDo) {
  TypedValues typed;
  typed.file = Write(
      "shape = \"polygon\"\n"
      "sides = 5\n"
      "radius = \"40px\"\n"
      "rotation = -12.5\n"
      "match = true\n"
      "center = \"25%,50%\"\n"
      "PRM_Emphasis = 20\n"
      "PRM_Precision = true\n");

  const auto values = MakeStoreValues(Page::Load(PAGE), typed, 800, 600);

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
  TypedValues typed;
  typed.file = Write("radius-x = \"8px\"\nsides = 5\nPRM_Rotation = 3\n");
  typed.radius = "40px";
  typed.rotation = "7";

  const auto values = MakeStoreValues(Page::Load(PAGE), typed, 800, 600);

  EXPECT_EQ(0.1, std::get<double>(values.at("PRM_RadiusX")));
  EXPECT_EQ(5.0, std::get<double>(values.at("PRM_Sides")));
  EXPECT_EQ(7.0, std::get<double>(values.at("PRM_Rotation")));
}

TEST_F(ParameterFile, RefusesWithItsNameTheValueAndWhatIsAllowed) {
  const std::string file = (folder / "film.toml").string();
  EXPECT_EQ(file + ": radus: there is no such parameter; the nearest is radius",
            Refusal("radus = \"4px\"\n"));
  EXPECT_EQ(file + ": sides 2: allowed is a whole number from 3 to 50", Refusal("sides = 2\n"));
  EXPECT_EQ(file + ": match 2: allowed is on or off", Refusal("match = 2\n"));
  EXPECT_EQ(file + ": sides: allowed is a text, a number, true or false", Refusal("sides = [5]\n"));
  EXPECT_EQ(file + ": set PRM_Sids: there is no such parameter; the nearest is PRM_Sides",
            Refusal("PRM_Sids = 5\n"));
}

TEST_F(ParameterFile, FailsWhereItCannotBeRead) {
  EXPECT_THROW(glimmerhost::ReadParameterFile(folder / "none.toml"), glimmerhost::Failure);
  try {
    glimmerhost::ReadParameterFile(Write("shape = \"circle\"\nsides 5\n"));
    FAIL();
  } catch (const glimmerhost::Failure& fault) {
    EXPECT_NE(std::string::npos, std::string(fault.what()).find("film.toml:2: ")) << fault.what();
  }
}

}  // namespace
