// SPDX-License-Identifier: BSD-3-Clause
// The words of commands of glimmerhost that render what the window shows.
//
// Every option is one word (--radius=4px): a text that looks like an option is none then. Names of
// files go from the root on, so that a command that was copied means the same in any folder.
#pragma once

#include <string>
#include <vector>

#include "host/looks/page.h"
#include "host/viewer/jobs/job_input.h"

namespace glimmerhost {

// What is written where. An empty text is an option that is not given.
struct RenderTarget {
  std::string output;  // a picture, or a sequence
  std::string bits;    // --bits, and so on
  std::string compression;
  std::string quality;
  std::string precision;
  std::string engine;       // of the effect
  std::vector<int> frames;  // in their order; none for all of the input
  std::string manifest;
  bool replaces = false;    // what is there; otherwise what is up to date is left out
  bool keepsGoing = false;  // where a frame fails
};

// Where the chunks of a shot are rendered.
struct FarmTarget {
  bool isSlurm = false;
  int processes = 1;  // at once, on this machine
  int threads = 0;    // processors of each; 0 for all
  int chunk = 0;      // the most frames of one; 0 for what submit does by itself
  std::vector<std::string> sbatch;
};

// The arguments of render, its own name first. Texts that say what holds anyhow are left out.
std::vector<std::string> RenderWords(const Page& page, const JobInput& input,
                                     const RenderTarget& target);

// The same of submit.
std::vector<std::string> SubmitWords(const Page& page, const JobInput& input,
                                     const RenderTarget& target, const FarmTarget& farm);

// A command as a person types it into this system's shell.
std::string CommandText(const std::vector<std::string>& words);

// The look without what changes nothing: it gives the store the same values.
Look ShortLook(const Page& page, const Look& look);

// The file that keeps account of a shot, beside its outputs: out.manifest.jsonl for out.####.exr.
// Throws UsageError for a name that is none of files.
std::string ManifestBeside(const std::string& output);

// A name for the output, proposed for an input: shot_blur.####.exr beside shot.####.exr, and
// night_blur.####.png for a shot of night.png.
std::string ProposedOutput(const std::string& input, bool isShot = false);

}  // namespace glimmerhost
