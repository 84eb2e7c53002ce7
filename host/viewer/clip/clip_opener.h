// SPDX-License-Identifier: BSD-3-Clause
// ClipOpener: opens clips on a thread of its own, as a folder may be large or far away.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "host/support/newest_worker.h"
#include "host/viewer/clip/viewed_clip.h"

namespace glimmerhost {

struct OpenedClip {
  std::uint64_t serial;                    // of the request that this answers
  std::string name;                        // as it was asked for
  std::shared_ptr<const ViewedClip> clip;  // null for a fault
  std::string sequence;  // that the file belongs to, for whoever would rather open that; or empty
  std::string fault;     // for a person; empty for none
};

// Its operations belong to one thread.
class ClipOpener {
 public:
  //   ring  is called on the opener's thread when there is something to fetch
  explicit ClipOpener(std::function<void()> ring);

  // Opens a file or a sequence. A request that waits is forgotten. Returns the request's number.
  std::uint64_t Ask(const std::string& name);

  // What was opened last, once.
  std::optional<OpenedClip> Fetch();

 private:
  struct Request {
    std::uint64_t serial;
    std::string name;
  };

  void Open(Request request);

  std::function<void()> ring_;
  std::uint64_t serial_ = 0;
  std::mutex mutex_;
  std::optional<OpenedClip> opened_;  // under the lock
  NewestWorker<Request> worker_;      // the last: it uses all others
};

}  // namespace glimmerhost
