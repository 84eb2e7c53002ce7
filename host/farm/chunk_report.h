// SPDX-License-Identifier: BSD-3-Clause
// ChunkReport: the chunks of a shot on this machine, told as one shot.
#pragma once

#include <map>
#include <set>
#include <string>

#include "host/farm/farm_engine.h"
#include "host/render/shot_report.h"

namespace glimmerhost {

class ChunkReport : public ChunkListener {
 public:
  // Both must outlive this.
  //   keepGoing  whether a chunk that failed is not the last that is started
  ChunkReport(const FarmJob& job, ShotReport* report, bool keepGoing)
      : job_(job), report_(report), keepGoing_(keepGoing) {}

  void Line(std::size_t chunk, const std::string& line) override;
  bool Ended(std::size_t chunk, const ProcessEnd& end) override;

  // The last line, and the check of what came of the chunks, if none failed.
  int Finish(const FarmJob& job, std::ostream& out) override;

 private:
  struct Chunk {
    std::set<int> reported;
    bool failed = false;  // one of these frames
  };

  const FarmJob& job_;
  ShotReport* report_;
  bool keepGoing_;
  std::map<std::size_t, Chunk> chunks_;
  std::set<std::string> passed_;  // lines of no frame
  bool misused_ = false;
};

}  // namespace glimmerhost
