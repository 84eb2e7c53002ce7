// SPDX-License-Identifier: BSD-3-Clause
// What programs were compiled with stays true of libraries to come: abi.txt lists the names that
// the library exports, the sizes of its records, the places of their members, and its constants. A
// line may be added; one that changes or goes breaks every program that was built before.
#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include "doors/library/glimmerblur.h"
#include "tests/border/exported_names.h"

namespace {

using Lines = std::vector<std::string>;

#define RECORD(type) lines.push_back("record " #type " " + std::to_string(sizeof(type)))
#define MEMBER(type, name) \
  lines.push_back("  " #type "." #name " " + std::to_string(offsetof(type, name)))
#define CONSTANT(name) lines.push_back("constant " #name " " + std::to_string(name))

Lines Records() {
  Lines lines;
  RECORD(glimmerblur_options);
  MEMBER(glimmerblur_options, size);
  MEMBER(glimmerblur_options, version);
  MEMBER(glimmerblur_options, engine);
  MEMBER(glimmerblur_options, threads);
  MEMBER(glimmerblur_options, memory_limit);
  MEMBER(glimmerblur_options, parallel_for);
  MEMBER(glimmerblur_options, parallel_user);
  RECORD(glimmerblur_look);
  MEMBER(glimmerblur_look, size);
  MEMBER(glimmerblur_look, version);
  MEMBER(glimmerblur_look, shape);
  MEMBER(glimmerblur_look, sides);
  MEMBER(glimmerblur_look, radius_x);
  MEMBER(glimmerblur_look, radius_y);
  MEMBER(glimmerblur_look, rotation);
  MEMBER(glimmerblur_look, pixel_aspect);
  MEMBER(glimmerblur_look, emphasis);
  MEMBER(glimmerblur_look, blur_alpha);
  MEMBER(glimmerblur_look, emphasis_alpha);
  MEMBER(glimmerblur_look, edge);
  MEMBER(glimmerblur_look, centred);
  RECORD(glimmerblur_rect);
  MEMBER(glimmerblur_rect, x);
  MEMBER(glimmerblur_rect, y);
  MEMBER(glimmerblur_rect, width);
  MEMBER(glimmerblur_rect, height);
  RECORD(glimmerblur_frame);
  MEMBER(glimmerblur_frame, size);
  MEMBER(glimmerblur_frame, version);
  MEMBER(glimmerblur_frame, rect);
  MEMBER(glimmerblur_frame, sample);
  MEMBER(glimmerblur_frame, layout);
  MEMBER(glimmerblur_frame, channels);
  MEMBER(glimmerblur_frame, alpha);
  MEMBER(glimmerblur_frame, first_row);
  MEMBER(glimmerblur_frame, reserved);
  MEMBER(glimmerblur_frame, data);
  MEMBER(glimmerblur_frame, row_stride);
  MEMBER(glimmerblur_frame, pixel_stride);
  MEMBER(glimmerblur_frame, channel_stride);
  RECORD(glimmerblur_report);
  MEMBER(glimmerblur_report, size);
  MEMBER(glimmerblur_report, version);
  MEMBER(glimmerblur_report, replaced);
  MEMBER(glimmerblur_report, bytes);
  MEMBER(glimmerblur_report, tiles);
  MEMBER(glimmerblur_report, reserved);
  return lines;
}

Lines Constants() {
  Lines lines;
  CONSTANT(GLIMMERBLUR_ABI);
  CONSTANT(GLIMMERBLUR_OK);
  CONSTANT(GLIMMERBLUR_INVALID_ARGUMENT);
  CONSTANT(GLIMMERBLUR_INVALID_LOOK);
  CONSTANT(GLIMMERBLUR_INVALID_FRAME);
  CONSTANT(GLIMMERBLUR_NO_LOOK);
  CONSTANT(GLIMMERBLUR_NO_APERTURE);
  CONSTANT(GLIMMERBLUR_TOO_LARGE);
  CONSTANT(GLIMMERBLUR_NO_MEMORY);
  CONSTANT(GLIMMERBLUR_CANCELLED);
  CONSTANT(GLIMMERBLUR_NOT_BUILT);
  CONSTANT(GLIMMERBLUR_FAILED);
  CONSTANT(GLIMMERBLUR_FAST);
  CONSTANT(GLIMMERBLUR_EXACT);
  CONSTANT(GLIMMERBLUR_CIRCLE);
  CONSTANT(GLIMMERBLUR_ELLIPSE);
  CONSTANT(GLIMMERBLUR_POLYGON);
  CONSTANT(GLIMMERBLUR_PICTURE);
  CONSTANT(GLIMMERBLUR_REPEAT);
  CONSTANT(GLIMMERBLUR_ZERO);
  CONSTANT(GLIMMERBLUR_U8);
  CONSTANT(GLIMMERBLUR_U16);
  CONSTANT(GLIMMERBLUR_FLOAT);
  CONSTANT(GLIMMERBLUR_RGBA);
  CONSTANT(GLIMMERBLUR_PLANES);
  CONSTANT(GLIMMERBLUR_PREMULTIPLIED);
  CONSTANT(GLIMMERBLUR_STRAIGHT);
  CONSTANT(GLIMMERBLUR_TOP);
  CONSTANT(GLIMMERBLUR_BOTTOM);
  return lines;
}

// The lines of abi.txt that begin so.
Lines Listed(const std::string& first, const std::string& alternative) {
  Lines lines;
  std::ifstream file(ABI_LIST);
  EXPECT_TRUE(file) << ABI_LIST;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(first) || line.starts_with(alternative)) {
      lines.push_back(line);
    }
  }
  return lines;
}

TEST(LibraryAbi, ExportsTheNamesOfTheListAlone) {
  Lines names;
  for (const std::string& name : lx_test::ExportedNames(LIBRARY)) {
    names.push_back("function " + name);
  }

  EXPECT_EQ(Listed("function ", "function "), names);
}

TEST(LibraryAbi, KeepsSizesAndMembersOfRecords) { EXPECT_EQ(Listed("record ", "  "), Records()); }

TEST(LibraryAbi, KeepsConstants) { EXPECT_EQ(Listed("constant ", "constant "), Constants()); }

}  // namespace
