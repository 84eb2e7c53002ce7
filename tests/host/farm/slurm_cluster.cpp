// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/farm/slurm_cluster.h"

#include <arpa/inet.h>
#include <pwd.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <system_error>
#include <thread>
#include <utility>

namespace farm_test {
namespace {

namespace fs = std::filesystem;
using lx_test::RunChild;

// Asked more often, it has less time for its work.
constexpr int kSlurmPause = 200;

constexpr const char* kNodes[] = {"n1", "n2"};

std::string Text(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// The last lines of all logs.
std::string Logs(const fs::path& folder) {
  return RunChild("/bin/sh", {"-c", "tail -n 5 '" + folder.string() + "'/*.log '" +
                                        folder.string() + "'/munge/log"})
      .text;
}

// Ports that nobody has. They are asked for together, so that each is another.
std::vector<int> FreePorts(int count) {
  std::vector<int> sockets;
  std::vector<int> ports;
  for (int i = 0; i < count; ++i) {
    const int one = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    socklen_t size = sizeof address;
    address.sin_family = AF_INET;
    bind(one, reinterpret_cast<sockaddr*>(&address), size);
    getsockname(one, reinterpret_cast<sockaddr*>(&address), &size);
    sockets.push_back(one);
    ports.push_back(ntohs(address.sin_port));
  }
  for (const int one : sockets) {
    close(one);
  }
  return ports;
}

// As Slurm calls the machine.
std::string ShortHostName() {
  std::array<char, 256> name{};
  gethostname(name.data(), name.size() - 1);
  const std::string whole = name.data();
  return whole.substr(0, whole.find('.'));
}

// 0 if there is none.
int ProcessOf(const fs::path& pidFile) {
  int process = 0;
  std::ifstream(pidFile) >> process;
  return process;
}

bool Runs(int process) { return kill(process, 0) == 0; }

// Asks all of them at once: each takes a while.
void End(const std::vector<fs::path>& pidFiles) {
  std::vector<int> processes;
  for (const fs::path& file : pidFiles) {
    if (const int process = ProcessOf(file); process > 1 && Runs(process)) {
      processes.push_back(process);
      kill(process, SIGTERM);
    }
  }
  if (!WaitFor(5, [&] { return std::none_of(processes.begin(), processes.end(), Runs); })) {
    for (const int process : processes) {
      kill(process, SIGKILL);
    }
  }
}

// Its own daemon knows who may use a key, and runs as a user of its own.
void StartMunge(const fs::path& folder) {
  fs::create_directory(folder);
  {
    std::ofstream key(folder / "key", std::ios::binary);
    std::random_device random;
    for (int i = 0; i < 32; ++i) {
      const unsigned number = random();
      key.write(reinterpret_cast<const char*>(&number), sizeof number);
    }
  }
  fs::permissions(folder / "key", fs::perms::owner_read | fs::perms::owner_write);
  RunChild("/bin/chown", {"-R", "munge:", folder.string()});
  const auto option = [&](const std::string& name, const char* file) {
    return "--" + name + "=" + (folder / file).string();
  };
  RunChild("/usr/bin/setpriv",
           {"--reuid=munge", "--regid=munge", "--clear-groups", "/usr/sbin/munged",
            option("key-file", "key"), option("socket", "socket"), option("pid-file", "pid"),
            option("log-file", "log"), option("seed-file", "seed")});
}

}  // namespace

bool WaitFor(int seconds, const std::function<bool()>& isSo, int pauseMilliseconds) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  while (!isSo()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(pauseMilliseconds));
  }
  return true;
}

std::string SlurmCluster::Lacks() {
  if (geteuid() != 0) {
    return "the daemons of Slurm need root";
  }
  for (const char* program : {"/usr/sbin/slurmctld", "/usr/sbin/slurmd", "/usr/bin/sbatch",
                              "/usr/sbin/munged", "/usr/bin/setpriv"}) {
    if (!fs::exists(program)) {
      return std::string(program) + " is not installed";
    }
  }
  return getpwnam("munge") == nullptr ? "there is no user munge" : "";
}

void SlurmCluster::Start(const fs::path& note) {
  End(note);
  std::string folder = (fs::temp_directory_path() / "slurmXXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) {
    return;
  }
  std::ofstream(note) << folder;
  SlurmCluster farm;
  farm.folder_ = folder;
  // The user munge has a way to its folder.
  fs::permissions(folder, fs::perms::owner_all | fs::perms::group_exec | fs::perms::others_exec);
  StartMunge(farm.folder_ / "munge");
  farm.WriteConfiguration();
  fs::create_directory(farm.folder_ / "state");
  farm.Run("/usr/sbin/slurmctld", {});
  for (const char* node : kNodes) {
    fs::create_directory(farm.folder_ / (std::string("spool-") + node));
    farm.StartNode(node);
  }
}

void SlurmCluster::End(const fs::path& note) {
  SlurmCluster farm;
  farm.folder_ = Text(note);
  if (farm.folder_.empty()) {
    return;
  }
  farm.EndDaemons();
  std::error_code error;
  fs::remove_all(farm.folder_, error);
  fs::remove(note, error);
}

SlurmCluster::SlurmCluster(const fs::path& note) : folder_(Text(note)) {
  for (const std::string& job : AllJobs()) {
    lastOfOthers_ = std::max(lastOfOthers_, std::stoi(job));
  }
}

void SlurmCluster::StartNode(const std::string& node) const {
  // Whatever the node has left behind is nothing to go on with.
  Run("/usr/sbin/slurmd", {"-c", "-N", node});
}

// Nodes are lost after some seconds of silence, more than a busy machine makes, and what they had
// is taken to others when the credentials of those jobs are certain to have expired.
void SlurmCluster::WriteConfiguration() const {
  const std::vector<int> ports = FreePorts(3);
  const std::string host = ShortHostName();
  const std::string folder = folder_.string();
  std::ofstream out(folder_ / "slurm.conf");
  out << "ClusterName=test\n"
      << "SlurmctldHost=" << host << "(127.0.0.1)\n"
      << "SlurmctldPort=" << ports[0] << '\n'
      << "SlurmUser=root\n"
         "SlurmdUser=root\n"
         "AuthType=auth/munge\n"
      << "AuthInfo=socket=" << folder << "/munge/socket,cred_expire=10\n"
      << "StateSaveLocation=" << folder << "/state\n"
      << "SlurmdSpoolDir=" << folder << "/spool-%n\n"
      << "SlurmctldPidFile=" << folder << "/slurmctld.pid\n"
      << "SlurmdPidFile=" << folder << "/slurmd-%n.pid\n"
      << "SlurmctldLogFile=" << folder << "/slurmctld.log\n"
      << "SlurmdLogFile=" << folder << "/slurmd-%n.log\n"
      << "SlurmdTimeout=10\n"
         "ProctrackType=proctrack/linuxproc\n"
         // Both nodes are this machine: bound to a processor, they would share the first one.
         "TaskPlugin=task/none\n"
         "SelectType=select/cons_tres\n"
         "SelectTypeParameters=CR_CPU_Memory\n"
         "AccountingStorageType=accounting_storage/none\n"
         "JobAcctGatherType=jobacct_gather/none\n"
         "MpiDefault=none\n"
         // Whoever becomes eligible by the clock is seen to at intervals.
         "SchedulerParameters=batch_sched_delay=0,sched_interval=2,bf_interval=1\n"
         // Nodes have what stands below, whatever this machine has.
         "SlurmdParameters=config_overrides\n";
  int port = 1;
  for (const char* node : kNodes) {
    out << "NodeName=" << node << " NodeHostname=" << host
        << " NodeAddr=127.0.0.1 Port=" << ports[static_cast<std::size_t>(port++)]
        << " CPUs=1 RealMemory=2000\n";
  }
  out << "PartitionName=all Nodes=n1,n2 Default=YES MaxTime=10 State=UP\n";
}

void SlurmCluster::EndDaemons() const {
  Clear();
  std::vector<fs::path> daemons = {folder_ / "slurmctld.pid", folder_ / "munge/pid"};
  for (const char* node : kNodes) {
    daemons.push_back(folder_ / (std::string("slurmd-") + node + ".pid"));
  }
  ::farm_test::End(daemons);
  for (const int task : Tasks("")) {
    kill(task, SIGKILL);
  }
}

bool SlurmCluster::Clear() const {
  Run("/usr/bin/scancel", {"--user=root"});
  return Finishes(30);
}

bool SlurmCluster::IsUp(std::string* why) const {
  for (const std::string node : kNodes) {
    if (fs::remove(folder_ / ("lost-" + node))) {
      StartNode(node);
      Run("/usr/bin/scontrol", {"update", "NodeName=" + node, "State=RESUME"});
    }
  }
  if (WaitFor(
          60, [&] { return Ask("sinfo -h -N -o %T") == "idle\nidle\n"; }, kSlurmPause)) {
    return true;
  }
  *why = Ask("sinfo -N") + Logs(folder_);
  return false;
}

lx_test::Outcome SlurmCluster::Run(const std::string& program,
                                   const std::vector<std::string>& arguments) const {
  return RunChild(program, arguments, {{"SLURM_CONF", (folder_ / "slurm.conf").string()}});
}

std::string SlurmCluster::Ask(const std::string& command) const {
  return Run("/bin/sh", {"-c", command}).text;
}

std::vector<std::string> SlurmCluster::AllJobs() const {
  std::istringstream in(Ask("squeue -h -t all -o '%i %T %N'"));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    // Not what a daemon says that does not answer.
    if (line.find_first_of("0123456789") == 0) {
      lines.push_back(line + "\n");
    }
  }
  std::sort(lines.begin(), lines.end(), [](const std::string& one, const std::string& other) {
    return std::pair(std::stoi(one), one) < std::pair(std::stoi(other), other);
  });
  return lines;
}

std::string SlurmCluster::Jobs() const {
  std::string text;
  for (const std::string& line : AllJobs()) {
    text += std::stoi(line) > lastOfOthers_ ? line : "";
  }
  return text;
}

bool SlurmCluster::Finishes(int seconds) const {
  return WaitFor(
      seconds, [&] { return Ask("squeue -h").empty(); }, kSlurmPause);
}

// Processes of this cluster's jobs that have a variable, "SLURM_ARRAY_TASK_ID=2": what they are
// started with tells whose they are.
std::vector<int> SlurmCluster::Tasks(const std::string& variable) const {
  std::vector<int> found;
  std::error_code error;
  const std::string ours = "SLURM_CONF=" + (folder_ / "slurm.conf").string() + '\0';
  for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) {
      continue;
    }
    const std::string environment = '\0' + Text(entry->path() / "environ");
    const auto has = [&](const std::string& line) {
      return environment.find('\0' + line) != std::string::npos;
    };
    if (has(ours) && has("SLURMD_NODENAME=") && (variable.empty() || has(variable + '\0'))) {
      found.push_back(std::stoi(name));
    }
  }
  return found;
}

std::string SlurmCluster::LoseNodeOf(int chunk) const {
  const std::vector<int> tasks = Tasks("SLURM_ARRAY_TASK_ID=" + std::to_string(chunk));
  std::string lost;
  for (const int task : tasks) {
    for (const char* node : kNodes) {
      const std::vector<int> there = Tasks(std::string("SLURMD_NODENAME=") + node);
      if (std::find(there.begin(), there.end(), task) == there.end()) {
        continue;
      }
      lost = node;
      // Its number may go to another process.
      const fs::path pidFile = folder_ / ("slurmd-" + lost + ".pid");
      if (const int daemon = ProcessOf(pidFile); daemon > 1) {
        kill(daemon, SIGKILL);
        fs::remove(pidFile);
        std::ofstream(folder_ / ("lost-" + lost)).close();
      }
      // What has started the task waits for it, to tell of its end.
      std::istringstream status(Text("/proc/" + std::to_string(task) + "/status"));
      int parent = 0;
      for (std::string word; status >> word;) {
        if (word == "PPid:") {
          status >> parent;
        }
      }
      if (parent > 1) {
        kill(parent, SIGKILL);
      }
      kill(task, SIGKILL);
    }
  }
  return lost;
}

}  // namespace farm_test
