// SPDX-License-Identifier: MIT
// The process scan beside the floor (open, read and close every status file) and beside ps, with the
// processes of the machine and a number of sleeping ones; and the readings of one sampling tick.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/linux/machine/hwmon_temperature_sensor.h"
#include "platform/linux/machine/procfs_host_statistics.h"
#include "platform/linux/machine/procfs_processes.h"
#include "system/process_scan.h"
#include "system/system_sampler.h"

namespace {

pid_t spawn(std::vector<std::string> arguments) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t pid = 0;
  if (posix_spawnp(&pid, pointers[0], &actions, nullptr, pointers.data(), environ) != 0) std::abort();
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

/// Child processes that only sleep, ended with this object.
class Sleepers {
 public:
  Sleepers() = default;
  Sleepers(const Sleepers&) = delete;
  Sleepers& operator=(const Sleepers&) = delete;
  ~Sleepers() { resize(0); }

  void resize(std::size_t count) {
    while (pids_.size() < count) pids_.push_back(spawn({"sleep", "900"}));
    for (; pids_.size() > count; pids_.pop_back()) {
      kill(pids_.back(), SIGKILL);
      waitpid(pids_.back(), nullptr, 0);
    }
  }

 private:
  std::vector<pid_t> pids_;
};

std::size_t readEveryStatus() {
  std::size_t bytes = 0;
  std::array<char, 8192> text;
  std::array<char, 300> path;
  DIR* const folder = opendir("/proc");
  while (const dirent* entry = readdir(folder)) {
    if (entry->d_name[0] < '1' || entry->d_name[0] > '9') continue;
    std::snprintf(path.data(), path.size(), "/proc/%s/status", entry->d_name);
    const int file = open(path.data(), O_RDONLY | O_CLOEXEC);
    if (file < 0) continue;
    const ssize_t size = read(file, text.data(), text.size());
    close(file);
    bytes += size > 0 ? static_cast<std::size_t>(size) : 0;
  }
  closedir(folder);
  return bytes;
}

void bareLoop(benchmark::State& state, Sleepers& sleepers) {
  sleepers.resize(static_cast<std::size_t>(state.range(0)));
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(readEveryStatus());
}

constexpr std::size_t kShown = 13;  // that the resources page asks for at first

/// As the first one after the list was opened.
void firstScan(benchmark::State& state, Sleepers& sleepers) {
  sleepers.resize(static_cast<std::size_t>(state.range(0)));
  std::size_t listed = 0;
  for ([[maybe_unused]] auto _ : state) {
    nimbo::ProcfsProcessTable table;
    listed = nimbo::scanProcesses(table, kShown).processes.size();
  }
  state.counters["listed"] = static_cast<double>(listed);
}

/// As each later one.
void processScan(benchmark::State& state, Sleepers& sleepers) {
  sleepers.resize(static_cast<std::size_t>(state.range(0)));
  nimbo::ProcfsProcessTable table;
  benchmark::DoNotOptimize(nimbo::scanProcesses(table, kShown));
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(nimbo::scanProcesses(table, kShown));
}

void processStatusTool(benchmark::State& state, Sleepers& sleepers) {
  sleepers.resize(static_cast<std::size_t>(state.range(0)));
  for ([[maybe_unused]] auto _ : state) {
    waitpid(spawn({"ps", "-eo", "pid,rss,comm", "--sort=-rss"}), nullptr, 0);
  }
}

void samplingTick(benchmark::State& state) {
  nimbo::ProcfsHostStatistics host;
  const nimbo::SystemClock clock;
  nimbo::SystemSampler sampler(host, clock);
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(sampler.snapshot());
    benchmark::DoNotOptimize(sampler.cpuUsage());
  }
}

void temperatureReading(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    nimbo::HwmonTemperatureSensor sensor;
    benchmark::DoNotOptimize(sensor.temperature());
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Sleepers sleepers;
  for (const long count : {100L, 2000L}) {
    const auto add = [&](const char* name, void (*run)(benchmark::State&, Sleepers&)) {
      benchmark::RegisterBenchmark(name, [run, &sleepers](benchmark::State& state) { run(state, sleepers); })
          ->Arg(count)
          ->UseRealTime()
          ->Unit(benchmark::kMicrosecond);
    };
    add("bareLoop", bareLoop);
    add("firstScan", firstScan);
    add("processScan", processScan);
    add("ps", processStatusTool);
  }
  benchmark::RegisterBenchmark("samplingTick", samplingTick)->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("temperatureReading", temperatureReading)->Unit(benchmark::kMicrosecond);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
