// SPDX-License-Identifier: BSD-3-Clause
// What a shot keeps on the disk, with each request to the system refused once: manifest, claims and
// pictures that are read. And a channel, which is abandoned where there is no memory.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/pictures/file_metadata.h"
#include "host/pictures/picture_file.h"
#include "host/shots/frame_claim.h"
#include "host/shots/manifest.h"
#include "host/support/channel.h"
#include "host/support/failure.h"
#include "tests/faults/refusals.h"
#include "tests/support/scratch_folder.h"

namespace {

using faults::Kind;
using glimmerhost::FrameClaim;
using glimmerhost::Manifest;
using glimmerhost::ManifestEntry;

// Does something with the n-th request refused. False where it says that it failed.
//   refused  receives the function that was; empty for none
template <class Work>
bool DoRefused(Kind kind, long n, std::string_view* refused, const Work& work) {
  bool isDone = false;
  faults::RefuseFrom(kind, n);
  try {
    work();
    isDone = true;
  } catch (const std::exception&) {
  }
  faults::RefuseNoMore();
  const char* const what = faults::WhatWasRefused();
  *refused = what == nullptr ? "" : what;
  return isDone;
}

std::vector<std::string> LinesOf(const std::filesystem::path& file) {
  std::ifstream in(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

ManifestEntry Entry(int frame) {
  ManifestEntry entry;
  entry.frame = frame;
  entry.output = "out" + std::to_string(frame);
  entry.outputHash = "hash" + std::to_string(frame);
  entry.engine = "fast";
  return entry;
}

TEST(RefusedFiles, LeaveTheLinesOfAManifestWhereTheyAre) {
  long n = 0;
  std::string_view refused = "all";
  while (!refused.empty()) {
    ++n;
    const lx_test::ScratchFolder folder;
    const std::filesystem::path file = folder / "shot.jsonl";
    Manifest(file, false, false).Add(Entry(1));
    const std::string first = LinesOf(file).at(0);
    // What a program that was killed has left, and nobody may write behind.
    std::ofstream(file, std::ios::app) << "{\"frame\":2,";

    const bool isDone =
        DoRefused(Kind::kFiles, n, &refused, [&] { Manifest(file, true, false).Add(Entry(2)); });

    const std::vector<std::string> lines = LinesOf(file);
    ASSERT_FALSE(lines.empty()) << n << " " << refused;
    EXPECT_EQ(first, lines[0]) << n << " " << refused;
    EXPECT_LE(lines.size(), 2U) << n << " " << refused;
    if (!isDone) {
      Manifest(file, true, false).Add(Entry(2));
    }
    Manifest read(file, true, false);
    EXPECT_EQ("hash1", read.Last(1).value().outputHash) << n << " " << refused;
    EXPECT_EQ("hash2", read.Last(2).value().outputHash) << n << " " << refused;
  }
  RecordProperty("refused", static_cast<int>(n - 1));
  EXPECT_GT(n, 5);
}

// A claim that is not had leaves no file, which would keep the frame from everybody.
void ExpectNoClaimLeft(Kind kind) {
  long n = 0;
  std::string_view refused = "all";
  while (!refused.empty()) {
    ++n;
    const lx_test::ScratchFolder folder;
    const std::filesystem::path output = folder / "out.0001.png";
    std::unique_ptr<FrameClaim> claim;

    const bool isDone = DoRefused(kind, n, &refused, [&] { claim = FrameClaim::Try(output); });

    if (!isDone) {
      EXPECT_EQ(0, folder.FileCount()) << n << " " << refused;
    }
    claim = nullptr;
    claim = FrameClaim::Try(output);
    EXPECT_TRUE(claim) << n << " " << refused;
    claim = nullptr;
    EXPECT_EQ(0, folder.FileCount()) << n << " " << refused;
  }
  testing::Test::RecordProperty("refused", static_cast<int>(n - 1));
  EXPECT_GT(n, 3);
}

TEST(RefusedFiles, LeaveNoClaim) { ExpectNoClaimLeft(Kind::kFiles); }

TEST(RefusedMemory, LeavesNoClaim) { ExpectNoClaimLeft(Kind::kMemory); }

TEST(RefusedMemory, AbandonsAChannelAllTheSame) {
  glimmerhost::Channel<int> channel(2);
  channel.Put(1);
  std::string_view refused;

  EXPECT_TRUE(DoRefused(Kind::kMemory, 1, &refused, [&] { channel.Abandon(); }));

  EXPECT_EQ("", refused);
  EXPECT_FALSE(channel.Put(2));
}

glimmerhost::Picture PictureThatSaysMuch() {
  glimmerhost::Picture picture;
  picture.width = 8;
  picture.height = 40;
  picture.alpha = glimmerhost::Alpha::kStraight;
  picture.samples.assign(picture.PixelCount() * 4, 1000);
  auto metadata = std::make_shared<glimmerhost::FileMetadata>();
  metadata->texts = {{"Description", "lights"},
                     {"Title", "night"},
                     {glimmerhost::kXmpKey, "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>"}};
  metadata->date = "2001:02:03 04:05:06";
  metadata->resolution = glimmerhost::Resolution{72, 36, glimmerhost::DotsPer::kInch};
  metadata->tiff.iptc = {28, 2, 0, 0};
  metadata->tiff.exifColourSpace = 1;
  picture.metadata = metadata;
  return picture;
}

// Two lines of text are enough to see what differs.
std::string WordsOf(const glimmerhost::Picture& picture) {
  std::ostringstream words;
  words << picture.width << " " << picture.height << " " << static_cast<int>(picture.alpha) << " ";
  for (const std::uint16_t sample : picture.samples) {
    words << (sample == 1000 ? "" : "other ");
  }
  const glimmerhost::FileMetadata& metadata = *picture.metadata;
  for (const glimmerhost::FileText& text : metadata.texts) {
    words << text.key << "=" << text.value << " ";
  }
  const glimmerhost::Resolution resolution =
      metadata.resolution.value_or(glimmerhost::Resolution{});
  words << metadata.date << " " << resolution.x << ":" << resolution.y << " "
        << metadata.iccProfile.size() << " " << metadata.tiff.iptc.size() << " "
        << metadata.tiff.exifColourSpace.value_or(0);
  return words.str();
}

// A file that is not read is no other format's, whose reader might give other samples.
TEST(RefusedFiles, AreFaultsOfTheFileThatIsRead) {
  const lx_test::ScratchFolder folder;
  for (const char* name : {"in.png", "in.tif"}) {
    const std::filesystem::path file = folder / name;
    glimmerhost::PictureOutput(file, false).Write(PictureThatSaysMuch(), {});
    std::string warning;
    const std::string whole = WordsOf(glimmerhost::ReadPicture(file, &warning));
    long n = 0;
    std::string_view refused = "all";
    while (!refused.empty()) {
      ++n;
      glimmerhost::Picture read;
      const bool isDone = DoRefused(Kind::kFiles, n, &refused, [&] {
        try {
          read = glimmerhost::ReadPicture(file, &warning);
        } catch (const glimmerhost::Failure& fault) {
          if (std::string_view(fault.what()).find(name) == std::string_view::npos) {
            ADD_FAILURE() << n << ": " << fault.what();
          }
          throw;
        }
      });
      EXPECT_FALSE(isDone && refused == "fread") << name << " " << n;
      EXPECT_EQ(whole, isDone ? WordsOf(read) : whole) << name << " " << n << " " << refused;
    }
    EXPECT_GT(n, 3) << name;
  }
}

// How it is packed may differ: there is another way to deflate, which needs less memory.
TEST(RefusedMemory, LeavesNothingOutOfAFileThatIsWritten) {
  const glimmerhost::Picture picture = PictureThatSaysMuch();
  for (const char* name : {"out.tif", "out.png"}) {
    const lx_test::ScratchFolder folder;
    const std::filesystem::path file = folder / name;
    const auto write = [&] { glimmerhost::PictureOutput(file, true).Write(picture, {}); };
    std::string warning;
    write();
    const std::string whole = WordsOf(glimmerhost::ReadPicture(file, &warning));
    EXPECT_NE(std::string::npos, whole.find("Title=night")) << name;
    long n = 0;
    std::string_view refused = "all";
    while (!refused.empty()) {
      ++n;
      std::filesystem::remove(file);

      const bool isDone = DoRefused(Kind::kMemory, n, &refused, write);

      // One that failed only after it was there is whole, too.
      if (isDone || std::filesystem::exists(file)) {
        EXPECT_EQ(whole, WordsOf(glimmerhost::ReadPicture(file, &warning)))
            << name << " " << n << " " << refused;
      }
    }
    RecordProperty(name, static_cast<int>(n - 1));
    EXPECT_GT(n, 50) << name;
  }
}

// Not of a TIFF file: libtiff may end the program where it has no memory for a directory.
TEST(RefusedMemory, LeavesNothingOutOfAPictureThatIsRead) {
  for (const char* name : {"in.png"}) {
    const lx_test::ScratchFolder folder;
    const std::filesystem::path file = folder / name;
    glimmerhost::PictureOutput(file, false).Write(PictureThatSaysMuch(), {});
    glimmerhost::Picture read;
    std::string warning;
    const auto readIt = [&] { read = glimmerhost::ReadPicture(file, &warning); };
    readIt();
    const std::string whole = WordsOf(read);
    long n = 0;
    std::string_view refused = "all";
    while (!refused.empty()) {
      ++n;

      const bool isDone = DoRefused(Kind::kMemory, n, &refused, readIt);

      EXPECT_EQ(whole, isDone ? WordsOf(read) : whole) << name << " " << n << " " << refused;
    }
    RecordProperty(name, static_cast<int>(n - 1));
    EXPECT_GT(n, 20) << name;
  }
}

std::string BytesOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// In a process of its own, since the picture library may end one: 0 where it is done.
template <class Work>
int StatusOfRefused(long n, bool* isRefused, const Work& work) {
  int said[2];
  EXPECT_EQ(0, pipe(said));
  const pid_t child = fork();
  if (child == 0) {
    std::string_view refused;
    const bool isDone = DoRefused(Kind::kMemory, n, &refused, work);
    const char answer = refused.empty() ? 'n' : 'y';
    _exit(write(said[1], &answer, 1) == 1 && isDone ? 0 : 1);
  }
  close(said[1]);
  char answer = 'y';  // of one that was ended
  (void)!read(said[0], &answer, 1);
  close(said[0]);
  *isRefused = answer == 'y';
  int status = -1;
  EXPECT_EQ(child, waitpid(child, &status, 0));
  return status;
}

// Without threads, which would wait for one that could not be told of its work; and nothing is
// deflated, so that the bytes are the same each time.
TEST(RefusedMemory, LeavesNoAttributeOutOfAFileThatThePlugInWrites) {
  setenv("OPENIMAGEIO_OPTIONS", "threads=1,exr_threads=-1", 1);
  const lx_test::ScratchFolder folder;
  const std::filesystem::path file = folder / "out.exr";
  glimmerhost::Coding coding;
  coding.compression = "none";
  const glimmerhost::Picture picture = PictureThatSaysMuch();
  const auto write = [&] { glimmerhost::PictureOutput(file, true).Write(picture, coding); };
  write();
  const std::string whole = BytesOf(file);
  long n = 0;
  long done = 0;
  bool isRefused = true;
  while (isRefused) {
    ++n;
    std::filesystem::remove(file);

    if (StatusOfRefused(n, &isRefused, write) == 0) {
      EXPECT_TRUE(whole == BytesOf(file)) << n;
      ++done;
    }
  }
  RecordProperty("refused", static_cast<int>(n - 1));
  EXPECT_GT(n, 100);
  EXPECT_GT(done, 0);
}

}  // namespace
