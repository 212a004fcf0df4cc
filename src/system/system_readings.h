// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <vector>

#include "system/memory_snapshot.h"

namespace nimbo {

/// The latest figures of the machine, as far as their monitors are on. Histories hold fractions
/// 0…1, oldest first.
struct SystemReadings {
  static constexpr std::size_t kHistoryCapacity = 40;

  std::optional<MemorySnapshot> memory;
  bool memoryFailed = false;  ///< the last memory reading failed
  std::optional<double> cpu;  ///< 0…1
  std::vector<double> memoryHistory;
  std::vector<double> cpuHistory;
  std::optional<double> temperature;  ///< °C
  std::optional<std::chrono::system_clock::time_point> temperatureDate;
};

/// Appends `value`, clamped to 0…1, and drops the oldest one when the history is full.
void appendToHistory(std::vector<double>& history, double value);

}  // namespace nimbo
