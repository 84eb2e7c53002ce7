// SPDX-License-Identifier: BSD-3-Clause
// The writer alone: what it leaves of rendered frames, and of those that are none.
#include "host/render/writer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/pictures/pam_stream.h"
#include "host/shots/file_hash.h"
#include "host/support/failure.h"
#include "tests/host/render/shot_stage.h"

namespace {

using glimmerhost::FrameImage;
using glimmerhost::FrameState;
using glimmerhost::FrameWork;
using glimmerhost::Manifest;
using glimmerhost::ManifestEntry;
using glimmerhost::Picture;
using glimmerhost::PictureOutput;
using glimmerhost::ShotReport;
using glimmerhost::Writer;
using render_test::EvenPicture;
using render_test::FrameChannel;
namespace fs = std::filesystem;

class WriterAlone : public render_test::ShotStage {
 public:
  // A frame of 5000 everywhere, which the effect has made 3000.
  std::unique_ptr<FrameWork> Rendered(int frame) const {
    return Rendered(frame, EvenPicture(5000), EvenPicture(3000));
  }

  std::unique_ptr<FrameWork> Rendered(int frame, const Picture& source,
                                      const Picture& result) const {
    auto work = std::make_unique<FrameWork>();
    work->files = FilesOf(frame);
    work->report.frame = frame;
    work->report.output = work->files.output.string();
    work->output = std::make_unique<PictureOutput>(work->files.output, settings.overwrite);
    work->picture = source;
    work->input.frame = frame;
    work->input.values = page.Defaults();
    work->input.source = quantel::cPtr<FrameImage>(new FrameImage(source));
    work->result = quantel::cPtr<FrameImage>(new FrameImage(result));
    return work;
  }

  // One that never became a picture.
  std::unique_ptr<FrameWork> Without(int frame, FrameState state) const {
    auto work = std::make_unique<FrameWork>();
    work->files = FilesOf(frame);
    work->report.frame = frame;
    work->report.state = state;
    work->report.fault = state == FrameState::kSkipped ? "" : "it did not work";
    return work;
  }

  void Put(std::unique_ptr<FrameWork> work) { rendered.Put(std::move(work)); }

  // Lets the writer have all that was put. What is told of it goes into text.
  void Write() {
    const glimmerhost::ShotStreams streams{nullptr, "", pipe.get(), "standard output"};
    Writer writer(page, settings, *lx::FindFootprint("double"), manifest ? &*manifest : nullptr,
                  &report, streams);
    testing::internal::CaptureStderr();
    try {
      writer.Run(&rendered);
    } catch (...) {
      text = testing::internal::GetCapturedStderr();
      throw;
    }
    text = testing::internal::GetCapturedStderr();
  }

  void KeepManifest() { manifest.emplace(folder / "shot.jsonl", false, false); }
  std::map<int, ManifestEntry> Entries() const {
    return glimmerhost::ReadManifest(folder / "shot.jsonl");
  }

  std::vector<std::uint16_t> Samples(int frame) const {
    std::string warning;
    return glimmerhost::ReadPicture(folder / OutputName(frame), &warning).samples;
  }
  bool IsWritten(int frame) const { return render_test::fs::exists(folder / OutputName(frame)); }

  // A frame that is handed over after the end.
  bool TakesMore() { return rendered.Put(std::make_unique<FrameWork>()); }

  FrameChannel rendered{render_test::kRoom};
  ShotReport report{ShotReport::Form::kQuiet, 3, true};
  std::optional<Manifest> manifest;
  render_test::PipeFile pipe = OpenPipe();
  std::string text;
};

TEST_F(WriterAlone, WritesWhatTheEffectMadeOfEachFrame) {
  Put(Rendered(1));
  Put(Rendered(2, EvenPicture(5000), EvenPicture(4000)));
  rendered.Close();

  Write();

  EXPECT_EQ(EvenPicture(3000).samples, Samples(1));
  EXPECT_EQ(EvenPicture(4000).samples, Samples(2));
  EXPECT_EQ(2U, report.Count(FrameState::kDone));
  EXPECT_EQ("", text);
}

TEST_F(WriterAlone, EndsAtAFailedFrameAndLeavesNothingOfIt) {
  KeepManifest();
  Put(Rendered(1));
  Put(Without(2, FrameState::kFailed));
  Put(Rendered(3));

  Write();

  EXPECT_TRUE(IsWritten(1));
  EXPECT_FALSE(IsWritten(2));
  EXPECT_FALSE(IsWritten(3));
  EXPECT_EQ(1U, report.Count(FrameState::kDone));
  EXPECT_EQ(1U, report.Count(FrameState::kFailed));
  EXPECT_EQ("glimmerhost: frame 2: it did not work\n", text);
  EXPECT_EQ(1U, Entries().size());
  EXPECT_FALSE(TakesMore());
}

TEST_F(WriterAlone, WritesBehindFailedAndMissingFramesIfTold) {
  settings.keepGoing = true;
  Put(Without(1, FrameState::kFailed));
  Put(Without(2, FrameState::kMissing));
  Put(Rendered(3));
  rendered.Close();

  Write();

  EXPECT_TRUE(IsWritten(3));
  EXPECT_EQ(1U, report.Count(FrameState::kFailed));
  EXPECT_EQ(1U, report.Count(FrameState::kMissing));
  EXPECT_EQ(1U, report.Count(FrameState::kDone));
}

// Frames before it are there; it is nobody's frame, and so not told of.
TEST_F(WriterAlone, ThrowsThatTheCommandIsWrongOnceAllBeforeIsWritten) {
  auto wrong = Without(2, FrameState::kDone);
  wrong->usage = std::make_exception_ptr(glimmerhost::UsageError("--bits 7"));
  Put(Rendered(1));
  Put(std::move(wrong));

  EXPECT_THROW(Write(), glimmerhost::UsageError);

  EXPECT_TRUE(IsWritten(1));
  EXPECT_EQ(1U, report.Count(FrameState::kDone));
  EXPECT_EQ("", text);
  EXPECT_FALSE(TakesMore());
}

TEST_F(WriterAlone, NotesInTheManifestWhatWentInAndWhatCameOut) {
  KeepManifest();
  settings.versions = {{"glimmerhost", "1.2"}};
  auto work = Rendered(7);
  work->sources["input"] = {5, 6, "xxh128:of the input"};
  work->digest = "xxh128:of all";
  work->readSize = {4, 2};
  settings.shot = "1-9";
  work->report.seconds = 0.25;
  work->found.cut = 3;
  work->found.infinite = 2;
  work->found.notNumbers = 1;
  Put(std::move(work));
  rendered.Close();

  Write();

  const ManifestEntry entry = Entries().at(7);
  EXPECT_EQ((folder / InputName(7)).string(), entry.input);
  EXPECT_EQ("xxh128:of the input", entry.inputHash);
  EXPECT_EQ((folder / OutputName(7)).string(), entry.output);
  EXPECT_TRUE(IsAsWritten(entry));
  EXPECT_EQ("circle", entry.parameters.at("PRM_Shape"));
  EXPECT_EQ("double", entry.engine);
  EXPECT_EQ("1.2", entry.versions.at("glimmerhost"));
  EXPECT_EQ(0.25, entry.seconds);
  EXPECT_EQ(5U, entry.clippedSamples);
  EXPECT_EQ(1U, entry.notNumbers);
  EXPECT_EQ((glimmerhost::FileState{5, 6, "xxh128:of the input"}), entry.sources.at("input"));
  EXPECT_EQ("xxh128:of all", entry.digest);
  EXPECT_EQ(4, entry.width);
  EXPECT_EQ(2, entry.height);
  EXPECT_EQ("1-9", entry.shot);
}

// However a run is killed, a line tells of every output that is there.
TEST_F(WriterAlone, NotesAFrameBeforeItsFileGoesToItsPlace) {
  KeepManifest();
  Put(Rendered(1));
  // In the way, so that the file stays where it is.
  fs::create_directory(folder / OutputName(1));

  Write();

  EXPECT_EQ(1U, report.Count(FrameState::kFailed));
  EXPECT_EQ(1U, Entries().size());
  EXPECT_EQ(0U, Entries().at(1).outputHash.find("xxh128:"));
}

TEST_F(WriterAlone, NotesNothingOfAFrameThatIsSkipped) {
  KeepManifest();
  WriteText(OutputName(4), "stands there");
  Put(Without(4, FrameState::kSkipped));
  rendered.Close();

  Write();

  EXPECT_EQ("", TextOf("shot.jsonl"));
  EXPECT_EQ(1U, report.Count(FrameState::kSkipped));
}

TEST_F(WriterAlone, LeavesAFileThatAnotherProgramHasMadeMeanwhile) {
  settings.skipExisting = true;
  Put(Rendered(1));
  WriteText(OutputName(1), "another's");
  rendered.Close();

  Write();

  EXPECT_EQ("another's", TextOf(OutputName(1)));
  EXPECT_EQ(1U, report.Count(FrameState::kSkipped));
}

// Nobody knows how it was made.
TEST_F(WriterAlone, FailsWhereSomebodyHasMadeAFileThatNoLineTellsOf) {
  KeepManifest();
  settings.skipExisting = true;
  Put(Rendered(1));
  WriteText(OutputName(1), "another's");
  rendered.Close();

  Write();

  EXPECT_EQ("another's", TextOf(OutputName(1)));
  EXPECT_EQ(1U, report.Count(FrameState::kFailed));
}

TEST_F(WriterAlone, FailsWhereAFileHasAppearedThatNobodyAllowed) {
  Put(Rendered(1));
  WriteText(OutputName(1), "another's");
  rendered.Close();

  Write();

  EXPECT_EQ("another's", TextOf(OutputName(1)));
  EXPECT_EQ(1U, report.Count(FrameState::kFailed));
  EXPECT_NE(std::string::npos, text.find(OutputName(1)));
}

// As a module leaves a frame that it could not work on: a copy with 15 bits.
TEST_F(WriterAlone, WritesNoCopyOfAFrameThatTheEffectShouldHaveChanged) {
  Picture source = EvenPicture(1000, 40, 2);
  source.samples[4] = 40001;
  Picture copy = source;
  copy.samples[4] = 40001;  // 20000, and its top bit in the place of the sixteenth
  auto work = Rendered(1, source, copy);
  work->input.values["PRM_RadiusX"] = 0.5;
  Put(std::move(work));

  Write();

  EXPECT_FALSE(IsWritten(1));
  EXPECT_EQ(1U, report.Count(FrameState::kFailed));
  EXPECT_FALSE(TakesMore());
}

TEST_F(WriterAlone, PutsFramesWithoutAFileIntoThePipe) {
  for (const int frame : {1, 2}) {
    auto work = Rendered(frame, EvenPicture(5000), EvenPicture(static_cast<std::uint16_t>(frame)));
    work->output = nullptr;
    Put(std::move(work));
  }
  rendered.Close();

  Write();

  std::rewind(pipe.get());
  glimmerhost::PamReader reader(pipe.get(), "the pipe");
  for (const std::uint16_t frame : {1, 2}) {
    const std::optional<Picture> picture = reader.Next();
    ASSERT_TRUE(picture);
    EXPECT_EQ(EvenPicture(frame).samples, picture->samples);
  }
  EXPECT_TRUE(reader.IsAtEnd());
  EXPECT_FALSE(IsWritten(1));
}

}  // namespace
