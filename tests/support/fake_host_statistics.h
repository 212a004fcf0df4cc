// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host_statistics.h"

namespace nimbo {

/// A machine of 16 GiB whose counters the test sets; an absent one cannot be read.
class FakeHostStatistics final : public HostStatistics {
 public:
  [[nodiscard]] std::uint64_t physicalMemory() override {
    ++physicalMemoryReads;
    return total;
  }
  [[nodiscard]] std::optional<MemoryCounts> memory() override {
    auto result = counts;
    if (result) result->swapUsed = swap;
    if (result) result->pressure = pressure;
    return result;
  }
  [[nodiscard]] std::optional<CpuTicks> cpuTicks() override { return ticks; }

  std::uint64_t total = std::uint64_t{16} << 30;
  std::optional<MemoryCounts> counts = MemoryCounts{};  ///< without the two below
  std::optional<std::uint64_t> swap = 0;
  MemoryPressure pressure = MemoryPressure::normal;
  std::optional<CpuTicks> ticks = CpuTicks{};
  int physicalMemoryReads = 0;
};

}  // namespace nimbo
