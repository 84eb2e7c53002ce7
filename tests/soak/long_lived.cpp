// SPDX-License-Identifier: BSD-3-Clause
// A host that lives long: in rounds it loads modules, lives lives on several threads at once, and
// unloads them. After each it prints what it holds, in a line of JSON.
//
//   soak_host --seed N --minutes M    for that long
//   soak_host --seed N --rounds M     so many rounds
//   soak_host --again KIND ENGINE N   one life, whose hashes it prints
//
// Every tenth frame is compared with that of a fresh process, which lives the frame's life again.
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/mutations/mutator.h"
#include "tests/soak/life.h"
#include "tests/soak/quiet_point.h"
#include "tests/support/child_program.h"

namespace {

using mutations::Mutator;
using soak::Hashes;
using soak::LifeKey;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kCheckedFrame = 10;  // every tenth

std::string Text(const Hashes& hashes) {
  std::ostringstream text;
  for (const std::uint64_t hash : hashes) {
    text << std::hex << hash << '\n';
  }
  return text.str();
}

std::vector<std::string> Engines(const std::string& kind, const std::string& engine) {
  return kind == "render" || kind == "page" ? std::vector<std::string>{engine}
                                            : std::vector<std::string>{};
}

int LiveAgain(const LifeKey& key) {
  const soak::Modules modules(Engines(key.kind, key.engine));
  std::cout << Text(soak::Live(modules, key));
  return 0;
}

// What the lives of all rounds came to.
class Rounds {
 public:
  Rounds(std::string program, unsigned seed) : program_(std::move(program)), dice_(seed) {}

  // False where a frame is another one than a fresh process's, with a line about it.
  bool Run() {
    std::vector<std::string> engines = {"exact", "fast", "double", "single"};
    for (std::size_t gone = dice_.Below(4); gone > 0; --gone) {
      engines.erase(engines.begin() + static_cast<std::ptrdiff_t>(dice_.Below(engines.size())));
    }
    Shuffle(&engines);
    std::vector<std::vector<LifeKey>> plans(1 + dice_.Below(4));
    for (std::vector<LifeKey>& plan : plans) {
      for (std::size_t left = 1 + dice_.Below(6); left > 0; --left) {
        plan.push_back(AnyLife(engines));
      }
    }
    LiveAll(engines, plans);
    ++rounds_;
    loads_ += engines.size();
    return CheckAll();
  }

  void Say(double seconds, const soak::Held& held) const {
    std::cout << R"({"round":)" << rounds_ << R"(,"seconds":)" << seconds << R"(,"resident":)"
              << held.resident << R"(,"heap":)" << held.heap << R"(,"descriptors":)"
              << held.descriptors << R"(,"threads":)" << held.threads << R"(,"temporary":)"
              << held.temporary << R"(,"loads":)" << loads_ << R"(,"compared":)" << compared_;
    for (const auto& [kind, frames] : frames_) {
      std::cout << ",\"" << kind << "\":" << frames;
    }
    std::cout << "}" << std::endl;
  }

 private:
  struct Lived {
    LifeKey key;
    Hashes hashes;
  };

  void Shuffle(std::vector<std::string>* words) {
    for (std::size_t i = words->size(); i > 1; --i) {
      std::swap((*words)[i - 1], (*words)[dice_.Below(i)]);
    }
  }

  LifeKey AnyLife(const std::vector<std::string>& engines) {
    LifeKey key;
    key.kind =
        dice_.AnyOf<std::string>({"render", "render", "render", "page", "library", "pictures"});
    key.engine = dice_.AnyOf(engines);
    key.seed = static_cast<unsigned>(dice_.Below(4000000000U));
    return key;
  }

  // A plan a thread. The modules are gone when it returns.
  void LiveAll(const std::vector<std::string>& engines,
               const std::vector<std::vector<LifeKey>>& plans) {
    const soak::Modules modules(engines);
    std::vector<std::thread> threads;
    threads.reserve(plans.size());
    for (const std::vector<LifeKey>& plan : plans) {
      threads.emplace_back([&] {
        for (const LifeKey& key : plan) {
          const Hashes hashes = soak::Live(modules, key);
          const std::lock_guard hold(mutex_);
          Count(key, hashes);
        }
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
  }

  // Under the lock. A life that one of the frames to be compared falls into is lived again.
  void Count(const LifeKey& key, const Hashes& hashes) {
    const std::size_t before = counted_ / kCheckedFrame;
    counted_ += hashes.size();
    frames_[key.kind] += hashes.size();
    if (counted_ / kCheckedFrame > before) {
      toCheck_.push_back({key, hashes});
      compared_ += counted_ / kCheckedFrame - before;
    }
  }

  bool CheckAll() {
    const std::vector<Lived> lives = std::exchange(toCheck_, {});
    for (const Lived& lived : lives) {
      const std::vector<std::string> words{"--again", lived.key.kind, lived.key.engine,
                                           std::to_string(lived.key.seed)};
      const lx_test::Outcome fresh = lx_test::RunChild(program_, words);
      if (fresh.code != 0 || fresh.text != Text(lived.hashes)) {
        std::cout << "Another frame than a fresh process's, in round " << rounds_
                  << ": soak_host --again " << lived.key.kind << ' ' << lived.key.engine << ' '
                  << lived.key.seed << "\nhere:\n"
                  << Text(lived.hashes) << "there, with code " << fresh.code << ":\n"
                  << fresh.text << std::flush;
        return false;
      }
    }
    return true;
  }

  std::string program_;
  Mutator dice_;
  std::size_t rounds_ = 0;
  std::size_t loads_ = 0;
  std::mutex mutex_;
  // Under the lock:
  std::size_t counted_ = 0;
  std::size_t compared_ = 0;
  std::map<std::string, std::size_t> frames_;  // by the kind of their life
  std::vector<Lived> toCheck_;
};

int LiveLong(const std::string& program, unsigned seed, double minutes, std::size_t rounds) {
  const int threads = soak::QuietThreads();
  Rounds all(program, seed);
  const Clock::time_point start = Clock::now();
  for (std::size_t done = 0;; ++done) {
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (done > 0) {
      all.Say(seconds, soak::LookAtProcess(threads));
    }
    if (rounds > 0 ? done >= rounds : seconds >= minutes * 60.0) {
      return 0;
    }
    if (!all.Run()) {
      return 1;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv, argv + argc);
  if (words.size() != 5) {
    std::cerr << "soak_host --seed N --minutes M, --seed N --rounds M, or --again KIND ENGINE N\n";
    return 2;
  }
  if (words[1] == "--again") {
    return LiveAgain({words[2], words[3], static_cast<unsigned>(std::stoul(words[4]))});
  }
  const bool isTimed = words[3] == "--minutes";
  return LiveLong(words[0], static_cast<unsigned>(std::stoul(words[2])),
                  isTimed ? std::stod(words[4]) : 0.0, isTimed ? 0 : std::stoul(words[4]));
}
