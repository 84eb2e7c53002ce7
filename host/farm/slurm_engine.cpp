// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <filesystem>
#include <iostream>

#include "host/farm/farm_engine.h"
#include "host/farm/shell_text.h"
#include "host/support/failure.h"
#include "host/support/temporary_file.h"

namespace glimmerhost {
namespace {

using Words = std::vector<std::string>;

// Of the check: the program with its libraries, and the lines of some hundred thousand frames.
constexpr std::uint64_t kCheckMemory = std::uint64_t{512} << 20U;

constexpr const char* kWhichJob = "JOB";

void Append(Words* words, const Words& more) {
  words->insert(words->end(), more.begin(), more.end());
}

std::string Mebibytes(std::uint64_t bytes) {
  constexpr std::uint64_t kMebibyte = 1024 * 1024;
  return std::to_string((bytes + kMebibyte - 1) / kMebibyte) + "M";
}

std::string Joined(const Words& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "; ") + line;
  }
  return text;
}

// "41", or "41;cluster".
bool IsJob(const std::string& line) {
  const std::size_t digits = std::min(line.find_first_not_of("0123456789"), line.size());
  return digits > 0 && (digits == line.size() || line[digits] == ';');
}

// Where jobs write what they say.
class Logs {
 public:
  //   before  how their names begin
  explicit Logs(const std::string& before)
      : before_((std::filesystem::current_path() / before).string()) {}

  // For --output. In names Slurm replaces what stands behind a percent sign, unless there is a
  // backslash anywhere: then it takes that for a quoting one and nothing else for special, and all
  // jobs share a log.
  std::string Pattern(const std::string& behind) const {
    return IsShared() ? Doubled('\\', before_ + kShared) : Doubled('%', before_) + behind;
  }

  std::string Where(const std::string& chunks, const std::string& check) const {
    if (IsShared()) {
      return "What goes wrong, and which frames are missing in the end, is in " + before_ + kShared;
    }
    return "What goes wrong in chunk K is in " + before_ + chunks +
           "_K.log, and which frames are missing in the end in " + before_ + check + ".log";
  }

 private:
  static constexpr const char* kShared = "all.log";

  bool IsShared() const { return before_.find('\\') != std::string::npos; }

  static std::string Doubled(char which, const std::string& text) {
    std::string doubled;
    for (const char c : text) {
      doubled += std::string(c == which ? 2 : 1, c);
    }
    return doubled;
  }

  std::string before_;
};

// The array's script. What tells its jobs from each other is their number.
std::string ChunkScript(const FarmJob& job) {
  Words words{job.program, "render"};
  Append(&words, job.options);
  const std::string count = std::to_string(job.chunks);
  const std::string behind =
      job.Place(1).substr(static_cast<std::size_t>(job.PlaceDigits())) + job.manifestBehind;
  return "#!/bin/bash\n"
         "# A chunk of a shot, by its number in the array.\n"
         "printf -v place %0" +
         std::to_string(job.PlaceDigits()) + "d \"$SLURM_ARRAY_TASK_ID\"\nexec " +
         ShellLine(words) + " --chunk=\"$SLURM_ARRAY_TASK_ID\"/" + count + " " +
         ShellWord("--manifest=" + job.manifestBefore) + "\"$place\"" + ShellWord(behind) + " -- " +
         ShellWord(job.input) + "\n";
}

std::string CheckScript(const FarmJob& job) {
  Words words{job.program};
  Append(&words, job.CheckArguments());
  return "#!/bin/bash\n# Whether all frames are there.\nexec " + ShellLine(words) + "\n";
}

struct Answer {
  Words lines;
  bool failed = false;
};

// What a command of Slurm's says.
Answer Ask(const std::string& command, const Words& arguments) {
  try {
    ChildProcess process(command, arguments);
    Answer answer;
    for (std::string line; process.ReadLine(&line);) {
      answer.lines.push_back(line);
    }
    const ProcessEnd end = process.Wait();
    answer.failed = end.code != 0 || end.signal != 0;
    return answer;
  } catch (const MissingInput& fault) {
    throw Failure("--engine slurm: " + std::string(fault.what()) +
                  "; it is one of Slurm's, which this machine must have to hand jobs over");
  }
}

// What became of a job that must not run, for the end of an error.
std::string Cancel(const std::string& job) {
  try {
    const Answer answer = Ask("scancel", {job});
    return answer.failed ? "; and job " + job + " could not be cancelled: " + Joined(answer.lines)
                         : "; job " + job + " has been cancelled";
  } catch (const Failure& fault) {
    return "; and job " + job + " could not be cancelled: " + fault.what();
  }
}

class SlurmEngine : public FarmEngine {
 public:
  explicit SlurmEngine(const SlurmSettings& settings)
      : settings_(settings), logs_(settings.logBefore) {}

  void Show(const FarmJob& job, std::ostream& out) const override {
    const auto show = [&](const Words& options, const std::string& script) {
      out << "sbatch " << ShellLine(options) << " <<'END_OF_SCRIPT'\n"
          << script << "END_OF_SCRIPT\n";
    };
    show(ChunkOptions(job), ChunkScript(job));
    show(CheckOptions(job, kWhichJob), CheckScript(job));
  }

  int Run(const FarmJob& job, std::ostream& out) override {
    const std::string chunks = Submit(ChunkOptions(job), ChunkScript(job), TooMany(job));
    // At once: whoever interrupts what follows knows what to cancel.
    out << "job " << chunks << ": " << job.chunks << (job.chunks == 1 ? " chunk" : " chunks")
        << " of at most " << job.Frames(1).size()
        << (job.Frames(1).size() == 1 ? " frame" : " frames") << std::endl;
    std::string check;
    try {
      check = Submit(CheckOptions(job, chunks), CheckScript(job), "");
    } catch (const Failure& fault) {
      throw Failure(fault.what() + Cancel(chunks));
    }
    out << "job " << check << ": the check, when all of them have ended\n"
        << "squeue --jobs=" << chunks << "," << check << " shows how they get on; scancel "
        << chunks << " " << check << " ends them\n"
        << logs_.Where(chunks, check) << '\n';
    return kExitDone;
  }

 private:
  // Options of a person go over those before them, but not over those behind: without these it is
  // another job.
  Words Options(const FarmJob& job, const std::string& name, std::uint64_t memory,
                const std::string& log) const {
    Words options{"--job-name=" + name,
                  "--ntasks=1",
                  "--requeue",
                  "--open-mode=append",
                  "--output=" + logs_.Pattern(log),
                  "--export=ALL"};
    if (memory != 0) {
      options.push_back("--mem=" + Mebibytes(memory));
    }
    if (!settings_.processors.empty() && name == job.name) {
      options.push_back("--cpus-per-task=" + settings_.processors);
    }
    Append(&options, settings_.options);
    Append(&options, {"--chdir=" + std::filesystem::current_path().string(), "--parsable"});
    return options;
  }

  Words ChunkOptions(const FarmJob& job) const {
    Words options = Options(job, job.name, settings_.memory, "%A_%a.log");
    options.push_back("--array=1-" + std::to_string(job.chunks));
    return options;
  }

  Words CheckOptions(const FarmJob& job, const std::string& after) const {
    Words options = Options(job, job.name + "-check", kCheckMemory, "%j.log");
    options.push_back("--dependency=afterany:" + after);
    return options;
  }

  static std::string TooMany(const FarmJob& job) {
    // What an array may have unless the administrator says otherwise.
    constexpr std::size_t kUsual = 1000;
    return job.chunks > kUsual
               ? " (" + std::to_string(job.chunks) + " chunks; a larger --chunk makes fewer)"
               : "";
  }

  // Returns the job's number.
  std::string Submit(Words options, const std::string& script, const std::string& hint) const {
    TemporaryFile file(settings_.logBefore + "job.sh");
    try {
      file.Write(script);
    } catch (const Failure& fault) {
      throw Failure(file.Path().string() + ": cannot be written: " + fault.what());
    }
    options.push_back(file.Path().string());
    Words said;
    std::string job;
    const Answer answer = Ask("sbatch", options);
    for (const std::string& line : answer.lines) {
      if (IsJob(line)) {
        job = line.substr(0, line.find(';'));
      } else {
        said.push_back(line);
      }
    }
    if (answer.failed || job.empty()) {
      throw Failure("sbatch took no job: " +
                    (said.empty() ? std::string("it said nothing") : Joined(said)) + hint);
    }
    for (const std::string& line : said) {
      std::cerr << "glimmerhost: " + line + "\n";
    }
    return job;
  }

  SlurmSettings settings_;
  Logs logs_;
};

}  // namespace

const bool kHasSlurm = true;

std::unique_ptr<FarmEngine> MakeSlurmEngine(const SlurmSettings& settings) {
  return std::make_unique<SlurmEngine>(settings);
}

}  // namespace glimmerhost
