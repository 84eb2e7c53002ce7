// SPDX-License-Identifier: BSD-3-Clause
// The plug-in for pictures: what takes it, what does without it, and what is said where it is not.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/host/glimmerhost/program.h"
#include "tests/host/pictures/odd_pictures.h"

namespace {

namespace fs = std::filesystem;
using lx_test::Outcome;

// The program alone in a tree of its own, into which a test puts the plug-in that it wants.
class PicturePlugin : public host_test::Program {
 public:
  PicturePlugin() {
    const fs::path built = fs::path(PROGRAM).parent_path().parent_path();
    fs::create_directories(tree / "bin");
    fs::create_directories(plugin.parent_path());
    fs::copy_file(PROGRAM, tree / "bin/glimmerhost");
    fs::create_symlink(built / "share", tree / "share");
    fs::create_directory(modules / "fast");
    fs::create_symlink(fs::path(MODULE_FOLDER) / "fast" / MODULE_NAME,
                       modules / "fast" / MODULE_NAME);
  }

  Outcome Run(const std::string& arguments) const {
    return lx_test::RunChild((tree / "bin/glimmerhost").string(),
                             lx_test::SplitArguments(arguments), {}, {});
  }

  void ExpectDone(const std::string& arguments) const {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(0, outcome.code) << arguments << "\n" << outcome.text;
  }

  // One line that names the file, what is wanted of the plug-in, and the plug-in.
  void ExpectRefused(const std::string& arguments, const fs::path& file, const std::string& why,
                     const std::string& trouble) const {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(1, outcome.code) << arguments;
    const std::string line = "glimmerhost: " + file.string() + ": " + why +
                             ", which takes the plug-in for pictures: " + plugin.string() + ": " +
                             trouble;
    EXPECT_EQ(0U, outcome.text.find(line)) << outcome.text << "\nnot\n" << line;
    EXPECT_EQ(outcome.text.size() - 1, outcome.text.find('\n')) << outcome.text;
  }

  // Of a TIFF file that the program itself cannot read.
  fs::path WriteMany(const std::string& name) {
    lx_test::OddTiff kind;
    kind.photometric = 5;  // cyan, magenta, yellow, black
    kind.channels = 4;
    lx_test::MakeTiff(folder / name, kind);
    return folder / name;
  }

  const fs::path tree = folder / "tree";
  const fs::path modules = tree / "lib/glimmerblur";
  const fs::path plugin = modules / "pictures/glimmerhost_pictures.so";
};

constexpr const char* kNotLoaded = "not a module that can be loaded: ";

TEST_F(PicturePlugin, IsNotNeededForPngAndTiffAlone) {
  const fs::path png = WriteInput("in.png", 16, 12, host_test::Alpha::kStraight);
  const fs::path tiff = WriteInput("in.tif", 16, 12, host_test::Alpha::kPremultiplied);

  ExpectDone("--version");
  ExpectDone("info");
  ExpectDone(Render(png, "out.png", "--radius 2px"));
  ExpectDone(Render(tiff, "out.tif", "--radius 2px"));
  ExpectDone(Render(png, "of_png.tif", "--radius 2px --bits 8"));
  ExpectDone(Render(tiff, "of_tiff.png", "--radius 2px --spread '" + png.string() + "'"));
  ExpectDone(Render(png, "of_spread.png",
                    "--shape image --radius-psf2 4px --spread '" + tiff.string() + "'"));
  ExpectDone("psf -o '" + (folder / "psf.png").string() + "' --radius 4px");
  ExpectDone("page '" + png.string() + "' -o '" + (folder / "page.tif").string() + "'");
  std::ofstream(folder / "a.session") << "load in.png\nrender\nsave saved.tif\nsave saved2.tif\n";
  ExpectDone("session '" + (folder / "a.session").string() + "' -o '" + folder.Path().string() +
             "'");
}

TEST_F(PicturePlugin, IsNamedWhereItIsNotThere) {
  const fs::path exr = WriteInput("in.exr", 16, 12);
  const fs::path png = WriteInput("in.png", 16, 12);
  const fs::path many = WriteMany("many.tif");

  ExpectRefused(Render(exr, "out.png"), exr, "its format is .exr", kNotLoaded);
  ExpectRefused(Render(png, "out.exr"), folder / "out.exr", "its format is .exr", kNotLoaded);
  ExpectRefused(Render(many, "out.tif"), many,
                "its colours are CMYK; grey, palettes and RGB can be read", kNotLoaded);
  std::ofstream(folder / "a.ocio") << "ocio_profile_version: 2\n";
  ExpectRefused(Render(png, "out.png",
                       "--colour-in Linear --colour-config '" + (folder / "a.ocio").string() + "'"),
                folder / "a.ocio", "it is a colour configuration", kNotLoaded);
}

TEST_F(PicturePlugin, IsNamedWhereItIsAnotherFile) {
  const fs::path exr = WriteInput("in.exr", 16, 12);
  fs::create_symlink(NO_MODULE, plugin);

  ExpectRefused(Render(exr, "out.png"), exr, "its format is .exr",
                "the plug-in of another version of this program");
}

TEST_F(PicturePlugin, IsOpenedFromBesideTheModules) {
  const fs::path exr = WriteInput("in.exr", 16, 12);
  fs::create_symlink(PICTURE_PLUGIN, plugin);

  ExpectDone(Render(exr, "out.exr", "--radius 2px"));
  ExpectDone(Render(exr, "out.png", "--radius 2px"));
}

}  // namespace
