// SPDX-License-Identifier: BSD-3-Clause
#include "tests/border/exported_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(Frei0rFiles, ExportTheFunctionsOfTheFormatAlone) {
  const std::vector<std::string> names = {
      "f0r_construct",       "f0r_deinit",          "f0r_destruct", "f0r_get_param_info",
      "f0r_get_param_value", "f0r_get_plugin_info", "f0r_init",     "f0r_set_param_value",
      "f0r_update",          "f0r_update2"};

  EXPECT_EQ(names, lx_test::ExportedNames(FILTER));
  EXPECT_EQ(names, lx_test::ExportedNames(MIXER));
}

}  // namespace
