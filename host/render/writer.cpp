// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/writer.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

#include "host/module/frame_checks.h"
#include "host/pictures/alpha.h"
#include "host/pictures/floats/float_picture.h"
#include "host/pictures/pam_stream.h"
#include "host/render/arithmetic.h"
#include "host/render/frame_digest.h"
#include "host/render/frame_result.h"
#include "host/shots/file_hash.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

// What a PAM picture holds.
const OutputFormat kPamFormat{"pam", true, true, false, false};

SeenPart SeenOf(const FrameWork& work) { return {work.mix, work.mask.get()}; }

// All results into their pictures. False if the aperture holds nothing.
bool TakeAllFloats(FrameWork* work) {
  const SeenPart seen = SeenOf(*work);
  if (!TakeFloats(work->input, &work->floats, seen, &work->picture)) {
    return false;
  }
  for (std::size_t i = 0; i < work->layers.size(); ++i) {
    TakeSeenFloats(&work->layers[i].floats, seen, &work->picture.layers[i].picture);
  }
  return true;
}

bool TakeAllWords(FrameWork* work) {
  const SeenPart seen = SeenOf(*work);
  const bool isSeen = TakeWords(work->input, work->result.Object(), seen, &work->picture);
  for (std::size_t i = 0; i < work->layers.size(); ++i) {
    const LayerWork& layer = work->layers[i];
    TakeWords(layer.input, layer.result.Object(), seen, &work->picture.layers[i].picture);
  }
  return isSeen;
}

}  // namespace

Writer::Writer(const Page& page, const ShotSettings& settings, const lx::Footprint& engine,
               Manifest* manifest, ShotReport* report, const ShotStreams& streams)
    : page_(page),
      settings_(settings),
      engine_(engine),
      manifest_(manifest),
      report_(report),
      streams_(streams) {}

void Writer::Run(FrameChannel* rendered) {
  const ClosedAtEnd end(rendered, nullptr);
  while (const std::optional<std::unique_ptr<FrameWork>> taken = rendered->Take()) {
    FrameWork& work = **taken;
    DoPart(&work, [&] {
      if (work.report.state == FrameState::kDone) {
        Write(&work);
      }
    });
    if (work.usage) {
      std::rethrow_exception(work.usage);
    }
    report_->Add(work.report);
    if (IsLastFrame(work, settings_.keepGoing)) {
      return;
    }
  }
}

void Writer::Write(FrameWork* work) const {
  Picture& picture = work->picture;
  if (!(picture.IsFloat() ? TakeAllFloats(work) : TakeAllWords(work))) {
    work->report.remarks.emplace_back(kEmptyAperture);
  }
  const bool toPipe = !work->output;
  if (settings_.premultiplied) {
    SettleAlpha(toPipe ? kPamFormat : work->output->Format(), work->alphaBefore, &picture);
  }
  if (toPipe && picture.grownBy > 0) {
    work->report.notCarried.push_back(GrownNotCarried(picture.width - 2 * picture.grownBy,
                                                      picture.height - 2 * picture.grownBy,
                                                      picture.grownBy, kPamFormat.name));
  }
  if (toPipe) {
    if (picture.IsFloat()) {
      std::uint64_t cut = 0;
      picture = Quantised(picture, &cut);
      if (cut > 0) {
        work->report.notCarried.push_back(CutNotCarried(cut, "PAM has no place beyond"));
      }
    }
    WritePam(picture, streams_.out, streams_.outName);
  } else if (!WriteFile(work)) {
    work->report.state = FrameState::kSkipped;
  }
}

// False if a program that claims no frames has made the file since it was looked for, and what
// exists is skipped whoever made it.
bool Writer::WriteFile(FrameWork* work) const {
  const Picture& picture = work->picture;
  try {
    work->output->Write(picture, settings_.coding, &work->report.notCarried,
                        [&](const std::filesystem::path& finished) {
                          if (manifest_ != nullptr) {
                            Note(*work, finished);
                          }
                        });
  } catch (const Failure&) {
    if (!settings_.skipExisting || settings_.overwrite || manifest_ != nullptr ||
        !OutputExists(work->files)) {
      throw;
    }
    return false;
  }
  return true;
}

// Before the file goes to its place: however the program is killed, a line tells of every output
// that is there.
void Writer::Note(const FrameWork& work, const std::filesystem::path& finished) const {
  ManifestEntry entry;
  entry.frame = work.files.frame;
  const bool ofFilm = work.files.input == kPipe && !settings_.film.empty();
  entry.input = ofFilm ? settings_.film : work.files.input.string();
  entry.output = work.files.output.string();
  entry.outputHash = FileHash(finished);
  for (const auto& [key, value] : work.input.values) {
    entry.parameters[key] = page_.Find(key).Show(value);
  }
  const bool isFloat = !work.input.source;
  entry.engine = isFloat ? lx::FastFootprint::kName : engine_.name;
  entry.precision = isFloat ? "float" : "16";
  entry.arithmetic = isFloat ? FloatArithmetic() : settings_.arithmetic;
  entry.shot = settings_.shot;
  entry.versions = settings_.versions;
  entry.seconds = work.report.seconds;
  entry.clippedSamples = work.found.cut + work.found.infinite;
  entry.notNumbers = work.found.notNumbers;
  entry.sources = work.sources;
  if (const auto input = work.sources.find(kInputSource); input != work.sources.end()) {
    entry.inputHash = input->second.hash;
  }
  entry.digest = work.digest;
  std::tie(entry.width, entry.height) = work.readSize;
  manifest_->Add(entry);
}

}  // namespace glimmerhost
