// SPDX-License-Identifier: BSD-3-Clause
#include <cstddef>
#include <fstream>
#include <new>
#include <sstream>

#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/mutations/mutator.h"
#include "tests/mutations/seed_files.h"
#include "tests/soak/hash.h"
#include "tests/soak/life.h"
#include "tests/support/scratch_folder.h"

namespace soak {
namespace {

std::string BytesOf(const std::filesystem::path& file) {
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

// Samples, or which kind of refusal. What a refusal says holds the file's name.
std::uint64_t ReadOne(const std::filesystem::path& file) {
  try {
    std::string warning;
    return HashOf(glimmerhost::ReadPicture(file, &warning).samples);
  } catch (const glimmerhost::Failure&) {
    return 1;
  } catch (const std::bad_alloc&) {
    return 2;
  }
}

}  // namespace

Hashes LivePictures(const LifeKey& key) {
  mutations::Mutator dice(key.seed);
  // One for all: what writes files remembers each folder that it has looked through.
  static const lx_test::ScratchFolder folder;
  const std::filesystem::path file =
      folder / (std::to_string(key.seed) + (dice.OneIn(2) ? ".png" : ".tif"));
  mutations::WriteSmall(file.string(), 9 + static_cast<int>(dice.Below(40)), 7,
                        dice.OneIn(2) ? 8 : 16);
  const std::string whole = BytesOf(file);
  Hashes hashes;
  for (std::size_t left = 1 + dice.Below(10); left > 0; --left) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << dice.Bytes(whole);
    hashes.push_back(ReadOne(file));
  }
  std::filesystem::remove(file);
  return hashes;
}

}  // namespace soak
