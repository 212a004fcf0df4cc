// SPDX-License-Identifier: MIT
#include "app/sampling_loop.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace nimbo {

using std::chrono::milliseconds;
using std::chrono::seconds;

SamplingLoop::SamplingLoop(PlatformServices& platform, const Settings& settings, Callbacks callbacks)
    : platform_(platform),
      settings_(settings),
      callbacks_(std::move(callbacks)),
      sampler_(std::in_place, *platform.readers().hostStatistics, *platform.readers().clock) {}

void SamplingLoop::startTimer() {
  if (sleeping_) return;
  const seconds interval = settings_.refreshInterval();
  const milliseconds leeway(interval < seconds(5) ? 250 : 1000);
  timer_ = platform_.mainLoop().every(interval, leeway, [this] { tick(); });
}

void SamplingLoop::stopTimer() { timer_.reset(); }

void SamplingLoop::tick() {
  if (sleeping_) return;
  callbacks_.willTick();
  readMemory();
  readCpu();
  startTemperatureRead();
  callbacks_.readingsChanged();
  startProcessScan(Throttle::apply);
}

void SamplingLoop::readMemory() {
  const bool wanted = settings_.monitorMemory();
  readings_.memory = wanted ? sampler_->snapshot() : std::nullopt;
  readings_.memoryFailed = wanted && !readings_.memory;
  if (!wanted) readings_.memoryHistory.clear();
  if (readings_.memory) appendToHistory(readings_.memoryHistory, readings_.memory->usedFraction());
}

void SamplingLoop::readCpu() {
  const bool wanted = settings_.monitorCpu();
  readings_.cpu = wanted ? sampler_->cpuUsage() : std::nullopt;
  if (!wanted) readings_.cpuHistory.clear();
  if (readings_.cpu) appendToHistory(readings_.cpuHistory, *readings_.cpu);
}

void SamplingLoop::startTemperatureRead() {
  if (!settings_.monitorTemperature()) {
    forgetTemperature();
    return;
  }
  if (temperatureScanning_) return;
  temperatureScanning_ = true;
  auto finish = lifetime_.guard([this, generation = temperatureGeneration_](std::optional<double> celsius) {
    finishTemperatureRead(celsius, generation);
  });
  platform_.temperatureQueue().async(
      [make = platform_.readers().makeTemperatureSensor, &loop = platform_.mainLoop(), finish] {
        loop.post([finish, celsius = make()->temperature()] { finish(celsius); });
      });
}

void SamplingLoop::finishTemperatureRead(std::optional<double> celsius, std::uint64_t generation) {
  temperatureScanning_ = false;
  if (!settings_.monitorTemperature() || sleeping_ || generation != temperatureGeneration_) return;
  if (!celsius) return;  // the last one stands until there is another
  const bool first = !readings_.temperatureDate;
  readings_.temperature = celsius;
  readings_.temperatureDate = platform_.readers().clock->now();
  if (first) callbacks_.temperatureFound();
  callbacks_.readingsChanged();
}

void SamplingLoop::startProcessScan(Throttle throttle) {
  const std::size_t wanted = settings_.monitorMemory() ? callbacks_.processesWanted() : 0;
  if (wanted == 0) processes_.reset();
  if (wanted == 0 || scanning_) return;
  const double uptime = platform_.readers().clock->uptime().count();
  const seconds distance = std::max(seconds(5), settings_.refreshInterval());
  if (throttle == Throttle::apply && uptime - lastScan_ < static_cast<double>(distance.count())) return;
  if (!processes_) processes_ = platform_.readers().makeProcessTable();
  scanning_ = true;
  lastScan_ = uptime;
  auto finish = lifetime_.guard([this, generation = scanGeneration_](ProcessScan scan) {
    scanning_ = false;
    if (generation == scanGeneration_) callbacks_.processesScanned(std::move(scan));
  });
  platform_.utilityQueue().async([table = processes_, &loop = platform_.mainLoop(), finish, wanted] {
    loop.post([finish, scan = scanProcesses(*table, wanted)]() mutable { finish(std::move(scan)); });
  });
}

void SamplingLoop::forgetTemperature() {
  readings_.temperature.reset();
  readings_.temperatureDate.reset();
}

void SamplingLoop::monitorsChanged() {
  ++temperatureGeneration_;
  forgetTemperature();
  tick();
}

void SamplingLoop::willSleep() {
  sleeping_ = true;
  ++temperatureGeneration_;
  ++scanGeneration_;
  stopTimer();
}

void SamplingLoop::didWake() {
  sleeping_ = false;
  forgetTemperature();
  readings_.memoryHistory.clear();
  readings_.cpuHistory.clear();
  sampler_.emplace(*platform_.readers().hostStatistics, *platform_.readers().clock);
  tick();
  startTimer();
}

}  // namespace nimbo
