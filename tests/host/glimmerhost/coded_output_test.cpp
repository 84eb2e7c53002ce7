// SPDX-License-Identifier: BSD-3-Clause
// Depth, compression and quality of the output, as they are typed.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/host/glimmerhost/program.h"

namespace {

using host_test::Outcome;
using host_test::RunProgram;

class CodedOutput : public host_test::Program {
 public:
  OIIO::ImageSpec Spec(const std::string& name) const {
    const auto input = OIIO::ImageInput::open((folder / name).string());
    EXPECT_TRUE(input) << OIIO::geterror();
    return input ? input->spec() : OIIO::ImageSpec();
  }
};

TEST_F(CodedOutput, IsWhatWasTyped) {
  const auto input = WriteInput("in.png", 20, 20);

  const std::string options = "--radius 2px --quiet ";
  const Outcome exr =
      RunProgram(Render(input, "a.exr", options + "--bits float --compression dwab --quality 60"));
  const Outcome tiff =
      RunProgram(Render(input, "a.tif", options + "--bits float --compression packbits"));

  EXPECT_EQ("", exr.text + tiff.text);
  EXPECT_EQ(OIIO::TypeDesc::FLOAT, Spec("a.exr").format);
  EXPECT_EQ("dwab", Spec("a.exr").get_string_attribute("compression"));
  EXPECT_EQ(OIIO::TypeDesc::FLOAT, Spec("a.tif").format);
  EXPECT_EQ("packbits", Spec("a.tif").get_string_attribute("compression"));
}

TEST_F(CodedOutput, SaysOnceForAShotWhatHasNoEffect) {
  WriteInput("in.1.png", 20, 20);
  WriteInput("in.2.png", 20, 20);

  const Outcome outcome = RunProgram(
      Render(folder / "in.@.png", "out.@.jpg", "--radius 2px --quiet --bits 16 --compression zip"));
  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ(
      "glimmerhost: --bits 16 has no effect: JPEG has 8\n"
      "glimmerhost: --compression zip has no effect: JPEG has no choice of compressions\n",
      outcome.text);
}

TEST_F(CodedOutput, IsRefusedBeforeAnythingIsReadIfTheFormatLacksIt) {
  for (const char* command : {"render ", "submit "}) {
    const std::string names =
        command + (folder / "none.#.png").string() + " -o " + (folder / "out.#.").string();
    ExpectProgramRefusal(names + "exr --frames 1 --compression lzw", 2,
                         "--compression must be none, rle, zips,");
    ExpectProgramRefusal(names + "tif --frames 1 --bits half", 2,
                         "--bits must be 8, 16 or float for TIFF");
  }
  ExpectRefusal("render x.#.png -o - --bits float", 2, "--bits float needs a file as -o");
  ExpectRefusal("render x.#.png -o - --compression zip", 2, "--compression needs a file as -o");
  ExpectRefusal("render x.#.png -o - --quality 3", 2, "--quality needs a file as -o");
}

}  // namespace
