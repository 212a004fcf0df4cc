// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "platform/host_statistics.h"
#include "platform/linux/machine/proc_file.h"

namespace nimbo {

/// Bytes in a field of a /proc/meminfo, such as "MemTotal". Which fields there are depends on the kernel.
[[nodiscard]] std::optional<std::uint64_t> memInfoField(std::string_view text, std::string_view name);

/// The kernel's own page lists tell applications from files: the anonymous lists hold private and
/// shared memory and exclude what is locked, the file lists hold what can be read again. Reclaimable
/// kernel memory counts as inactive and purgeable; all else that is in use is wired, so that memory
/// that no counter names (drivers, page tables, huge page pools, locked pages) is in the sum too.
/// The pressure follows available memory. Absent without the totals or the lists.
[[nodiscard]] std::optional<MemoryCounts> parseMemInfo(std::string_view text, std::uint64_t zramBytes);

/// Bytes; absent when the kernel does not tell.
[[nodiscard]] std::optional<std::uint64_t> swapUsed(std::string_view text);

/// The first line of /proc/stat. Interrupts and stolen time count as system, waiting for a disk as
/// idle; guests' time is part of user and nice already.
[[nodiscard]] std::optional<CpuTicks> parseCpuTicks(std::string_view text);

/// By /proc/pressure/memory: a warning when some tasks, critical when all tasks at once stood still for want
/// of memory during 5 % of the last ten seconds, else normal. That share, 100 ms in 2 s, is where GLib's
/// GMemoryMonitor warns at its levels "medium" and "critical". Absent for other text.
[[nodiscard]] std::optional<MemoryPressure> parsePressure(std::string_view text);

/// Bytes that a zram device takes, the third number of its mm_stat; absent for other text.
[[nodiscard]] std::optional<std::uint64_t> parseZramUsed(std::string_view text);

/// The counters of procfs, and of sysfs for zram. Keeps at most three files open; all readings of one
/// sampling tick together take some 35 µs.
class ProcfsHostStatistics final : public HostStatistics {
 public:
  explicit ProcfsHostStatistics(const std::string& procRoot = "/proc", const std::string& sysRoot = "/sys");

  [[nodiscard]] std::uint64_t physicalMemory() override;
  [[nodiscard]] std::optional<MemoryCounts> memory() override;
  [[nodiscard]] std::optional<CpuTicks> cpuTicks() override;

 private:
  [[nodiscard]] std::uint64_t zramBytes() const;

  ProcFile memInfo_;
  ProcFile stat_;
  ProcFile pressure_;
  std::string blockDevices_;
  CpuTicks lastTicks_{};
  CpuTicks lostTicks_{};  ///< of counters that began anew
};

}  // namespace nimbo
