// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <exception>
#include <mutex>
#include <ostream>
#include <thread>

#include "host/farm/farm_engine.h"
#include "host/farm/shell_text.h"

namespace glimmerhost {
namespace {

// One after another, by as many threads as there are processes at once.
class ChunkRun {
 public:
  ChunkRun(const FarmJob& job, ChunkListener* listener) : job_(job), listener_(listener) {}

  void Run(std::size_t processes) {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < processes; ++i) {
      threads.emplace_back([this] { Work(); });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    if (fault_) {
      std::rethrow_exception(fault_);
    }
  }

 private:
  // Chunk by chunk; what goes wrong with a process as such ends the whole run.
  void Work() noexcept {
    try {
      for (std::size_t chunk = 0; Take(&chunk);) {
        Render(chunk);
      }
    } catch (...) {
      const std::lock_guard<std::mutex> hold(lock_);
      fault_ = std::current_exception();
      next_ = job_.chunks + 1;
    }
  }

  bool Take(std::size_t* chunk) {
    const std::lock_guard<std::mutex> hold(lock_);
    *chunk = next_;
    return next_ <= job_.chunks && next_++ > 0;
  }

  void Render(std::size_t chunk) {
    // What machines read: the listener tells it to people.
    std::vector<std::string> arguments = job_.Arguments(chunk);
    arguments.insert(arguments.begin() + 1, "--progress=json");
    ChildProcess process(job_.program, arguments);
    for (std::string line; process.ReadLine(&line);) {
      const std::lock_guard<std::mutex> hold(lock_);
      listener_->Line(chunk, line);
    }
    const ProcessEnd end = process.Wait();
    const std::lock_guard<std::mutex> hold(lock_);
    if (!listener_->Ended(chunk, end)) {
      next_ = job_.chunks + 1;
    }
  }

  const FarmJob& job_;
  ChunkListener* listener_;
  std::mutex lock_;
  std::size_t next_ = 1;
  std::exception_ptr fault_;
};

class LocalEngine : public FarmEngine {
 public:
  LocalEngine(std::size_t processes, ChunkListener* listener)
      : processes_(processes), listener_(listener) {}

  void Show(const FarmJob& job, std::ostream& out) const override {
    const auto show = [&](std::vector<std::string> arguments) {
      arguments.insert(arguments.begin(), job.program);
      out << ShellLine(arguments) << '\n';
    };
    for (std::size_t chunk = 1; chunk <= job.chunks; ++chunk) {
      show(job.Arguments(chunk));
    }
    show(job.CheckArguments());
  }

  int Run(const FarmJob& job, std::ostream& out) override {
    ChunkRun(job, listener_).Run(std::min(processes_, job.chunks));
    return listener_->Finish(job, out);
  }

 private:
  std::size_t processes_;
  ChunkListener* listener_;
};

}  // namespace

std::unique_ptr<FarmEngine> MakeLocalEngine(std::size_t processes, ChunkListener* listener) {
  return std::make_unique<LocalEngine>(processes, listener);
}

}  // namespace glimmerhost
