// SPDX-License-Identifier: MIT
#pragma once

#include "platform/host_statistics.h"

namespace nimbo {

/// A machine of 16 GiB whose counters the test sets; an absent one cannot be read.
class FakeHostStatistics final : public HostStatistics {
 public:
  [[nodiscard]] std::uint64_t physicalMemory() override {
    ++physicalMemoryReads;
    return memory;
  }
  [[nodiscard]] std::optional<PageCounts> pageCounts() override { return pages; }
  [[nodiscard]] std::optional<std::uint64_t> pageSize() override { return bytesPerPage; }
  [[nodiscard]] std::optional<std::uint64_t> swapUsed() override { return swap; }
  [[nodiscard]] std::optional<std::uint32_t> pressureLevel() override { return level; }
  [[nodiscard]] std::optional<CpuTicks> cpuTicks() override { return ticks; }

  std::uint64_t memory = std::uint64_t{16} << 30;
  std::optional<PageCounts> pages = PageCounts{};
  std::optional<std::uint64_t> bytesPerPage = 4096;
  std::optional<std::uint64_t> swap = 0;
  std::optional<std::uint32_t> level = 1;
  std::optional<CpuTicks> ticks = CpuTicks{};
  int physicalMemoryReads = 0;
};

}  // namespace nimbo
