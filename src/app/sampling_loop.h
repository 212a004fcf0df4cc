// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>

#include "base/lifetime.h"
#include "platform/platform_services.h"
#include "settings/settings.h"
#include "system/process_scan.h"
#include "system/system_readings.h"
#include "system/system_sampler.h"

namespace nimbo {

/// Keeps the figures fresh with one repeating timer. Memory and CPU are read on the main thread at
/// every tick; the temperature and the process scan, which cost more, on background queues and only
/// when they are wanted. What comes back too late (asleep, switched off) is dropped by generation.
class SamplingLoop {
 public:
  struct Callbacks {
    /// A tick begins, before anything is read.
    std::function<void()> willTick;
    /// The readings are new: after each tick and after each temperature.
    std::function<void()> readingsChanged;
    /// Before that, when a temperature is the first one since launch, wake or a change of the monitors.
    std::function<void()> temperatureFound;
    /// How many of the largest processes somebody looks at; 0 for nobody.
    std::function<std::size_t()> processesWanted;
    std::function<void(ProcessScan)> processesScanned;
  };
  enum class Throttle { apply, ignore };

  /// `platform` and `settings` outlive it.
  SamplingLoop(PlatformServices& platform, const Settings& settings, Callbacks callbacks);

  [[nodiscard]] const SystemReadings& readings() const { return readings_; }

  /// (Re)starts the timer with the interval of the settings; the first tick comes one interval later.
  void startTimer();
  void stopTimer();
  /// One tick, at once.
  void tick();
  /// Scans when processes are wanted and no scan runs; a throttled scan also keeps its distance of at
  /// least 5 s from the last one.
  void startProcessScan(Throttle throttle);

  /// Other monitors were switched on or off: forgets the temperature, and what is read of those that are
  /// off, and takes a sample at once.
  void monitorsChanged();
  void willSleep();
  /// Forgets what sleep made stale, takes a fresh sample and starts the timer again.
  void didWake();

 private:
  void forgetTemperature();
  void readMemory();
  void readCpu();
  void startTemperatureRead();
  void finishTemperatureRead(std::optional<double> celsius, std::uint64_t generation);

  PlatformServices& platform_;
  const Settings& settings_;
  Callbacks callbacks_;
  SystemReadings readings_;
  std::optional<SystemSampler> sampler_;
  Subscription timer_;
  bool sleeping_ = false;
  bool temperatureScanning_ = false;
  std::uint64_t temperatureGeneration_ = 0;
  bool scanning_ = false;
  std::uint64_t scanGeneration_ = 0;
  std::shared_ptr<ProcessTable> processes_;                     // only while somebody looks
  double lastScan_ = -std::numeric_limits<double>::infinity();  // seconds of uptime
  Lifetime lifetime_;
};

}  // namespace nimbo
