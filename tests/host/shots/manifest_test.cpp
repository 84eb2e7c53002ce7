// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/manifest.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>
#include <string>
#include <vector>

#include "host/shots/file_hash.h"
#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::FileHash;
using glimmerhost::Manifest;
using glimmerhost::ManifestEntry;
using Lines = std::vector<std::string>;

// Where there is none of that name, the folder of all devices is no file either.
const std::string kEndlessDevice = std::filesystem::exists("/dev/zero")
                                       ? "/dev/zero"
                                       : std::filesystem::temp_directory_path().string();

class Manifests : public testing::Test {
 public:
  // An entry of a frame whose output is there.
  ManifestEntry Entry(int frame) {
    ManifestEntry entry;
    entry.frame = frame;
    entry.output = (folder / ("out" + std::to_string(frame))).string();
    std::ofstream(entry.output) << "picture " << frame;
    entry.outputHash = FileHash(entry.output);
    entry.parameters = {{"PRM_Sides", "6"}};
    entry.engine = "double";
    return entry;
  }

  lx_test::ScratchFolder folder;
  const std::filesystem::path file = folder / "shot.jsonl";
};

// The published value of no bytes at all.
TEST_F(Manifests, HashFilesAsXxh128) {
  std::ofstream(folder / "empty");
  EXPECT_EQ("xxh128:99aa06d3014798d86001c324468d497f", FileHash(folder / "empty"));
  EXPECT_THROW((void)FileHash(folder / "none"), glimmerhost::MissingInput);
}

// Whoever copies a shot may keep its times.
TEST_F(Manifests, BelieveTheHashOfAFileWhoseSizeAndTimeAreTheSame) {
  std::ofstream(folder / "a") << "first";
  const auto time = std::filesystem::last_write_time(folder / "a") - std::chrono::hours(1);
  std::filesystem::last_write_time(folder / "a", time);
  const glimmerhost::FileState before = glimmerhost::StateOfFile(folder / "a");
  std::ofstream(folder / "a") << "other";
  std::filesystem::last_write_time(folder / "a", time);
  EXPECT_EQ(before, glimmerhost::StateOfFile(folder / "a", before));
  EXPECT_NE(before.hash, glimmerhost::StateOfFile(folder / "a").hash);
  std::filesystem::last_write_time(folder / "a", time + std::chrono::seconds(1));
  EXPECT_NE(before.hash, glimmerhost::StateOfFile(folder / "a", before).hash);
  std::ofstream(folder / "a") << "longer";
  std::filesystem::last_write_time(folder / "a", time);
  EXPECT_NE(before.hash, glimmerhost::StateOfFile(folder / "a", before).hash);
}

// It may change once more within a tick of the clock.
TEST_F(Manifests, BelieveNoHashOfAFileThatHasJustChanged) {
  std::ofstream(folder / "a") << "first";
  const auto time = std::filesystem::last_write_time(folder / "a") + std::chrono::hours(1);
  std::filesystem::last_write_time(folder / "a", time);
  const glimmerhost::FileState before = glimmerhost::StateOfFile(folder / "a");
  std::ofstream(folder / "a") << "other";
  std::filesystem::last_write_time(folder / "a", time);
  EXPECT_NE(before.hash, glimmerhost::StateOfFile(folder / "a", before).hash);
}

TEST_F(Manifests, ComeBackAsTheyWereWritten) {
  {
    Manifest manifest(file, false, false);
    manifest.Add(Entry(1001));
    manifest.Add(Entry(-5));
  }
  const auto entries = glimmerhost::ReadManifest(file);
  ASSERT_EQ(2U, entries.size());
  EXPECT_EQ("6", entries.at(1001).parameters.at("PRM_Sides"));
  EXPECT_EQ("double", entries.at(1001).engine);
  EXPECT_EQ(Lines{}, CheckOutputs(entries));
  EXPECT_EQ(std::vector<int>(), FramesLacking(entries, {1001, -5}));
}

// A line as an earlier program wrote it.
TEST_F(Manifests, AreReadWhereTheyDoNotNameTheEngine) {
  std::ofstream(file) << R"({"frame":7,"input":"in","input_hash":"","output":"out",)"
                      << R"("output_hash":"xxh128:0","parameters":{},"versions":{"module":"a"},)"
                      << R"("seconds":0.5,"clipped_samples":0,"not_numbers":0})"
                      << "\n";

  EXPECT_EQ("", glimmerhost::ReadManifest(file).at(7).engine);
  EXPECT_EQ("", glimmerhost::ReadManifest(file).at(7).digest);
  EXPECT_EQ("", glimmerhost::ReadManifest(file).at(7).arithmetic);
  Manifest manifest(file, true, false);
  EXPECT_TRUE(manifest.Last(7));
}

TEST_F(Manifests, GoOnWithAnEarlierRunsLinesIfTold) {
  Manifest(file, false, false).Add(Entry(1));
  EXPECT_THROW(Manifest(file, false, false), glimmerhost::Failure);
  Manifest(file, true, false).Add(Entry(2));
  EXPECT_EQ(2U, glimmerhost::ReadManifest(file).size());
  Manifest(file, false, true).Add(Entry(3));
  EXPECT_EQ(3U, glimmerhost::ReadManifest(file).size());
}

TEST_F(Manifests, TakeThePlaceOfAnotherFileOnlyIfTold) {
  std::ofstream(file) << "something else\n";
  EXPECT_THROW(Manifest(file, true, false), glimmerhost::Failure);
  Manifest(file, false, true).Add(Entry(3));
  EXPECT_EQ(1U, glimmerhost::ReadManifest(file).size());
}

TEST_F(Manifests, KnowTheFramesOfTheRunThatTheyGoOnWith) {
  Manifest(file, false, false).Add(Entry(1));
  Manifest manifest(file, true, false);
  EXPECT_TRUE(manifest.Last(1));
  EXPECT_FALSE(manifest.Last(2));
  manifest.Add(Entry(2));
  EXPECT_TRUE(manifest.Last(2));
}

TEST_F(Manifests, HoldWhatDecidedAFrame) {
  ManifestEntry entry = Entry(1);
  entry.shot = "-5-1100";
  entry.arithmetic = "fast 1";
  entry.digest = "xxh128:1";
  entry.sources = {{"input", {12, -34, "xxh128:2"}}, {"spread", {0, 0, ""}}};
  entry.width = 1920;
  entry.height = 1080;
  Manifest(file, false, false).Add(entry);

  const ManifestEntry read = glimmerhost::ReadManifest(file).at(1);

  EXPECT_EQ(entry.shot, read.shot);
  EXPECT_EQ(entry.arithmetic, read.arithmetic);
  EXPECT_EQ(entry.digest, read.digest);
  EXPECT_EQ(entry.sources, read.sources);
  EXPECT_EQ(1920, read.width);
  EXPECT_EQ(1080, read.height);
}

TEST_F(Manifests, ExplainAnOutputByAnyLineOfItsFrame) {
  Manifest manifest(file, false, false);
  ManifestEntry entry = Entry(1);
  entry.outputHash = "first";
  manifest.Add(entry);
  entry.outputHash = "second";
  manifest.Add(entry);
  Manifest again(file, true, false);
  for (Manifest* one : {&manifest, &again}) {
    EXPECT_TRUE(one->Explains(1, "first"));
    EXPECT_TRUE(one->Explains(1, "second"));
    EXPECT_FALSE(one->Explains(1, "third"));
    EXPECT_FALSE(one->Explains(2, "first"));
    EXPECT_EQ("second", one->Last(1)->outputHash);
  }
}

TEST_F(Manifests, SeeTheLinesThatOthersAdd) {
  Manifest one(file, true, false);
  Manifest another(file, true, false);
  one.Add(Entry(1));
  EXPECT_TRUE(another.Last(1));
  another.Add(Entry(2));
  one.Add(Entry(3));
  EXPECT_TRUE(one.Last(2));
  EXPECT_TRUE(another.Last(3));
  EXPECT_EQ(3U, glimmerhost::ReadManifest(file).size());
}

// What another program left of a line when it was killed goes before the next is added.
TEST_F(Manifests, AddNoLineToWhatIsLeftOfOne) {
  Manifest manifest(file, true, false);
  manifest.Add(Entry(1));
  std::ofstream(file, std::ios::app) << "{\"frame\":2,\"inp";
  manifest.Add(Entry(3));
  EXPECT_EQ(2U, glimmerhost::ReadManifest(file).size());
}

TEST_F(Manifests, TakeEveryLineWholeHoweverManyWriteAtOnce) {
  constexpr int kWriters = 4;
  constexpr int kLines = 50;
  std::vector<std::future<void>> writers;
  ManifestEntry entry = Entry(0);
  entry.parameters["long"] = std::string(5000, 'x');
  for (int writer = 0; writer < kWriters; ++writer) {
    writers.push_back(std::async(std::launch::async, [this, writer, entry]() mutable {
      Manifest manifest(file, true, false);
      for (int line = 0; line < kLines; ++line) {
        entry.frame = writer * kLines + line;
        manifest.Add(entry);
      }
    }));
  }
  for (auto& writer : writers) {
    writer.get();
  }
  EXPECT_EQ(std::size_t{kWriters * kLines}, glimmerhost::ReadManifestLines(file).size());
  EXPECT_EQ(std::size_t{kWriters * kLines}, glimmerhost::ReadManifest(file).size());
}

TEST_F(Manifests, GoOnBehindTheLastWholeLineOfARunThatWasKilled) {
  Manifest(file, false, false).Add(Entry(1));
  for (const char* cut : {"{\"fr", "{\"frame\":2,\"input\":\"in"}) {
    std::ofstream(file, std::ios::app) << cut;
    Manifest(file, true, false).Add(Entry(3));
    EXPECT_EQ(2U, glimmerhost::ReadManifest(file).size()) << cut;
  }
}

TEST_F(Manifests, LeaveAFileAloneThatIsNone) {
  for (const std::string text : {"another", "another\n", "{\"frame\":2}\n{\"fr"}) {
    std::ofstream(file, std::ios::binary) << text;
    EXPECT_THROW(Manifest(file, true, false), glimmerhost::Failure);
    EXPECT_EQ(text.size(), std::filesystem::file_size(file)) << text;
  }
}

TEST_F(Manifests, TellWhatIsMissingAndWhatHasChanged) {
  {
    Manifest manifest(file, false, false);
    for (const int frame : {1, 2, 3}) {
      manifest.Add(Entry(frame));
    }
  }
  std::ofstream(folder / "out2") << "another";
  std::filesystem::remove(folder / "out3");

  const auto entries = glimmerhost::ReadManifest(file);
  const Lines faults = CheckOutputs(entries);

  const std::string two = (folder / "out2").string();
  const std::string three = (folder / "out3").string();
  EXPECT_EQ((Lines{"frame 2: " + two + ": changed since it was written",
                   "frame 3: " + three + ": not found"}),
            faults);
  EXPECT_EQ((std::vector<int>{4, 5}), FramesLacking(entries, {1, 2, 3, 4, 5}));
}

TEST_F(Manifests, AreRefusedWithTheLineThatIsNone) {
  Manifest(file, false, false).Add(Entry(1));
  std::ofstream(file, std::ios::app) << "{\"frame\":2}\n";
  try {
    glimmerhost::ReadManifest(file);
    FAIL();
  } catch (const glimmerhost::Failure& fault) {
    EXPECT_EQ(file.string() + ":2: not a line of a manifest", fault.what());
  }
}

// Hashing a device may have no end, and a pipe waits for whoever writes.
TEST_F(Manifests, AreOnlyReadFromFilesAndAboutThem) {
  std::filesystem::create_directory(file);
  EXPECT_THROW((void)glimmerhost::ReadManifest(file), glimmerhost::Failure);
  EXPECT_THROW((void)FileHash(file), glimmerhost::Failure);

  ManifestEntry entry = Entry(1);
  entry.output = kEndlessDevice;
  EXPECT_EQ(Lines{"frame 1: " + entry.output + ": not a file"},
            glimmerhost::CheckOutputs({{1, entry}}));
}

}  // namespace
