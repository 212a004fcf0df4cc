// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

#include "platform/clock.h"
#include "platform/host_statistics.h"
#include "system/system_readings.h"

namespace nimbo {

/// Turns the host's counters into what is shown: how memory is split, and how busy the processors
/// were since the previous reading. One thread at a time; `host` and `clock` outlive it.
class SystemSampler {
 public:
  SystemSampler(HostStatistics& host, const Clock& clock);

  /// Absent when the memory counts cannot be read.
  [[nodiscard]] std::optional<MemorySnapshot> snapshot();

  /// Busy fraction, 0…1, of all processors since the previous successful reading. Absent on the
  /// first call, when the counters cannot be read, and when no ticks have passed.
  [[nodiscard]] std::optional<double> cpuUsage();

 private:
  HostStatistics& host_;
  const Clock& clock_;
  std::uint64_t total_;  // bytes; physical memory does not change while the sampler lives
  std::optional<CpuTicks> previousTicks_;
};

}  // namespace nimbo
