// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/host_statistics.h"

namespace nimbo {

/// "Normal", "Elevated", "High" or "Unavailable".
[[nodiscard]] std::string_view pressureWord(MemoryPressure pressure);

/// How physical memory was split at one moment. Sizes are bytes; app + wired + compressed + cached
/// never exceed total.
struct MemorySnapshot {
  std::uint64_t total = 0;
  std::uint64_t app = 0;
  std::uint64_t wired = 0;
  std::uint64_t compressed = 0;
  std::uint64_t cached = 0;
  std::optional<std::uint64_t> swap;  ///< in use; absent when it could not be read
  MemoryPressure pressure = MemoryPressure::unknown;
  std::chrono::system_clock::time_point timestamp;

  [[nodiscard]] std::uint64_t used() const { return app + wired + compressed; }
  [[nodiscard]] std::uint64_t available() const { return total - used(); }
  /// 0…1; 0 when total is 0.
  [[nodiscard]] double usedFraction() const {
    return total == 0 ? 0 : static_cast<double>(used()) / static_cast<double>(total);
  }
  bool operator==(const MemorySnapshot&) const = default;
};

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
