// SPDX-License-Identifier: BSD-3-Clause
#include "host/session/session_script.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::Page;
using glimmerhost::SessionScript;

class Script : public testing::Test {
 public:
  SessionScript Read(const std::string& text, const std::string& outputs = "") {
    std::ofstream(folder / "a.session", std::ios::binary) << text;
    return ReadSessionScript(folder / "a.session", page, outputs);
  }

  // What is said of the line behind a load, without the file's name.
  std::string Refusal(const std::string& line) {
    return RefusalOf("load a.png\n" + line + "\n", ":2: " + line + ": ");
  }

  std::string RefusalOf(const std::string& text, const std::string& place) {
    try {
      Read(text);
    } catch (const glimmerhost::UsageError& fault) {
      const std::string what = fault.what();
      const std::string start = (folder / "a.session").string() + place;
      EXPECT_EQ(0U, what.find(start)) << what;
      return what.substr(std::min(start.size(), what.size()));
    }
    return "";
  }

  lx_test::ScratchFolder folder;
  const Page page = Page::Load(PAGE);
};

TEST_F(Script, HasAStepALine) {
  const SessionScript script = Read(
      "# a person\r\n"
      "\n"
      "  load \"two words.png\"   # with a comment\n"
      "\tpress 1.5 -2\n"
      "set PRM_Shape image\n");

  ASSERT_EQ(3U, script.steps.size());
  EXPECT_EQ((folder / "a.session").string() + ":3", script.steps[0].place);
  EXPECT_EQ("load \"two words.png\"   # with a comment", script.steps[0].text);
  EXPECT_EQ((folder / "a.session").string() + ":5", script.steps[2].place);
}

TEST_F(Script, WritesIntoTheFolderThatIsNamed) {
  const SessionScript script = Read("load a.png\nsnapshot x.png\nrender\nsave y.tif\n", "/out");

  ASSERT_EQ(2U, script.outputs.size());
  EXPECT_EQ("/out/x.png", script.outputs[0]);
  EXPECT_EQ("/out/y.tif", script.outputs[1]);
}

TEST_F(Script, TakesEveryStepInItsForm) {
  EXPECT_EQ(23U,
            Read("load a.png\nspread b.png\nset PRM_Sides 5\nnotify lxColourButton_PRM\n"
                 "press 1 2\nmove 3 4\nrelease 5 6\ndraw\ncolour\nshow source\nrender\n"
                 "show result\nsnapshot a.png\nsave b.png\nprint page\n"
                 "expect PRM_Sides 5\nexpect PRM_RadiusX 0.3 within 0.1\n"
                 "expect PRM_Shape image\nexpect PRM_Match off\nexpect row PRM_Sides hidden\n"
                 "expect row PRM_RadiusY disabled\nexpect same b.png\nexpect different c.png\n")
                .steps.size());
}

TEST_F(Script, RefusesWhatIsNoStep) {
  EXPECT_EQ("unknown step \"pres\"; did you mean \"press\"?", Refusal("pres 1 2"));
  EXPECT_EQ("unknown step \"RENDER\"; did you mean \"render\"?", Refusal("RENDER"));
}

TEST_F(Script, RefusesStepsOfAnotherForm) {
  EXPECT_EQ("a step must be press X Y", Refusal("press 1"));
  EXPECT_EQ("a step must be press X Y", Refusal("press 1 2 3"));
  EXPECT_EQ("a step must be draw", Refusal("draw now"));
  EXPECT_EQ("a step must be load PICTURE", Refusal("load"));
  EXPECT_EQ("a step must be show source or show result", Refusal("show me"));
  EXPECT_EQ("a step must be print page", Refusal("print values"));
  for (const char* line :
       {"expect PRM_Sides", "expect PRM_Sides 5 within", "expect row PRM_Sides 5",
        "expect PRM_Sides 5 about 1", "expect PRM_Sides 5 within -1",
        "expect PRM_Shape image within 1", "expect same"}) {
    EXPECT_EQ(0U, Refusal(line).find("a step must be expect KEY VALUE [within TOLERANCE]")) << line;
  }
}

TEST_F(Script, RefusesValuesThatThePageDoesNotAllow) {
  EXPECT_EQ("unknown parameter \"PRM_Side\"; did you mean \"PRM_Sides\"?",
            Refusal("set PRM_Side 5"));
  EXPECT_EQ("PRM_Sides must be a whole number from 3 to 50, not 2", Refusal("set PRM_Sides 2"));
  EXPECT_NE("", Refusal("set PRM_Shape square"));
  EXPECT_NE("", Refusal("expect PRM_Shape square"));
  EXPECT_NE("", Refusal("expect PRM_Sides many"));
}

TEST_F(Script, RefusesPointsThatAreNone) {
  for (const char* line : {"press a 2", "move 1 b", "release 1e9 0", "press nan 0", "move 1px 2"}) {
    EXPECT_EQ("a point is two numbers of picture pixels from the top left, such as 120 80.5",
              Refusal(line));
  }
}

TEST_F(Script, BeginsWithAPicture) {
  EXPECT_EQ("the first step must be load PICTURE",
            RefusalOf("# first\ndraw\nload a.png\n", ":2: draw: "));
  EXPECT_EQ("the script has no steps", RefusalOf("# nothing\n\n", ": "));
}

TEST_F(Script, ShowsNoResultBeforeThereIsOne) {
  EXPECT_EQ("a result needs a render before it", Refusal("show result"));
  EXPECT_EQ("a result needs a render before it",
            RefusalOf("load a.png\nrender\nload b.png\nshow result\n", ":4: show result: "));
}

TEST_F(Script, WritesNoFileTwice) {
  EXPECT_EQ("an earlier step writes this file already",
            RefusalOf("load a.png\nsave x.png\nsnapshot x.png\n", ":3: snapshot x.png: "));
}

TEST_F(Script, RefusesAnOpenQuotation) {
  EXPECT_EQ("a quotation mark has no second one", Refusal("save \"x.png"));
}

TEST_F(Script, FailsWhereItCannotBeRead) {
  EXPECT_THROW(ReadSessionScript(folder / "none.session", page, ""), glimmerhost::Failure);
  EXPECT_THROW(ReadSessionScript(folder / ".", page, ""), glimmerhost::Failure);
}

}  // namespace
