// SPDX-License-Identifier: BSD-3-Clause
#include "tests/mutations/run_checks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <sstream>

#include "host/looks/page_file.h"
#include "host/looks/parameter_file.h"
#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/support/sanitizer.h"

namespace mutations {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kPart = lx_test::kSanitized ? 10 : 1;

constexpr const char* kName = "glimmerhost: ";

bool Has(const std::vector<std::string>& line, const std::string& word) {
  return std::find(line.begin(), line.end(), word) != line.end();
}

// What a shot says of a frame that is done, and of itself.
bool IsProgress(const std::string& text) {
  return text.starts_with("frame ") || text.starts_with('{') ||
         (!text.empty() && std::isdigit(static_cast<unsigned char>(text[0])) != 0);
}

void ExpectPlainLines(const RunResult& run, const std::string& what) {
  std::istringstream lines(run.err);
  std::string last;
  for (std::string text; std::getline(lines, text); last = text) {
    EXPECT_TRUE(text.starts_with(kName) || IsProgress(text)) << what << "\nsaid: " << run.err;
    EXPECT_LT(text.size(), 2000U) << what << "\nsaid: " << text;
  }
  EXPECT_TRUE(run.err.empty() || run.err.ends_with('\n')) << what << "\nsaid: " << run.err;
  EXPECT_TRUE(run.code == 0 || last.starts_with(kName) || last.starts_with('{'))
      << what << "\nsaid: " << run.err;
}

bool IsWholeManifest(const std::string& bytes) {
  return bytes.empty() || (bytes.starts_with('{') && bytes.ends_with('\n'));
}

// As whatever its name and the line make of it.
void ExpectWhole(const std::vector<std::string>& line, const fs::path& file,
                 const std::string& what) {
  const std::string bytes = ReadBytes(file);
  const bool mayBeManifest = Show(line).find("--manifest") != std::string::npos;
  if (mayBeManifest && IsWholeManifest(bytes)) {
    return;
  }
  try {
    if (file.extension() == ".toml" || file.extension() == ".json") {
      glimmerhost::ParseParameters(glimmerhost::LoadPage(), file, bytes);
      return;
    }
    std::string warning;
    const glimmerhost::Picture picture = glimmerhost::ReadPicture(file, &warning);
    EXPECT_EQ(picture.PixelCount() * 4, picture.samples.size()) << what << "\n" << file;
  } catch (const std::exception& fault) {
    ADD_FAILURE() << what << "\nleft " << file << " of " << bytes.size()
                  << " bytes: " << fault.what();
  }
}

}  // namespace

std::string Show(const std::vector<std::string>& line) {
  std::string text;
  for (const std::string& word : line) {
    text += " '";
    for (const char c : word) {
      text += c < ' ' || c > '~' ? '?' : c;
    }
    text += "'";
  }
  return text;
}

void ExpectCleanEnd(const RunFolder& folder, const std::vector<std::string>& line,
                    const RunResult& run, const std::string& what) {
  EXPECT_TRUE(run.code >= 0 && run.code <= 3) << what << "\ncode " << run.code;
  ExpectPlainLines(run, what);
  EXPECT_TRUE(folder.IsLeftAlone()) << what;
  for (const std::string& name : run.made) {
    EXPECT_EQ(std::string::npos, name.find(".part")) << what << "\nleft " << name;
    ExpectWhole(line, name, what);
  }
  for (const std::string& name : run.changed) {
    const bool appended =
        Has(line, "--skip-existing") && ReadBytes(name).starts_with(folder.Before(name));
    EXPECT_TRUE(appended || Has(line, "--overwrite")) << what << "\nchanged " << name;
    EXPECT_TRUE(fs::exists(name)) << what << "\nremoved " << name;
    ExpectWhole(line, name, what);
  }
}

void ForSeeds(unsigned count, const std::function<void(unsigned seed)>& run) {
  if (const char* const alone = std::getenv("MUTATION_SEED")) {
    run(static_cast<unsigned>(std::strtoul(alone, nullptr, 10)));
    return;
  }
  for (unsigned seed = 0; seed < count / kPart; ++seed) {
    run(seed);
  }
}

}  // namespace mutations
