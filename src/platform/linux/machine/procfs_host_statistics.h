// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host_statistics.h"
#include "platform/linux/machine/proc_file.h"

namespace nimbo {

/// Bytes in a field of a /proc/meminfo, such as "MemTotal". Which fields there are depends on the kernel.
[[nodiscard]] std::optional<std::uint64_t> memInfoField(std::string_view text, std::string_view name);

/// The anonymous page lists are the applications': private and shared memory that is not locked. What the
/// kernel says is available but not free can be dropped; it counts as inactive, and as purgeable (the slabs' and
/// ZFS's caches) or file-backed. All else is wired, so that memory that no counter names (drivers, page tables,
/// huge page pools, locked pages, the kernel's reserve) is in the sum too and that is what is not available.
/// Kernels that do not tell what is available have their file lists and reclaimable memory taken for it. The
/// pressure follows available memory. Absent without the totals or the lists. `arcBytes` as by `parseArcCache`.
[[nodiscard]] std::optional<MemoryCounts> parseMemInfo(std::string_view text, std::uint64_t zramBytes,
                                                       std::uint64_t arcBytes = 0);

/// Bytes that ZFS's cache gives back when they are wanted, by its arcstats: its size beyond its least. The kernel
/// takes them for used. 0 for other text.
[[nodiscard]] std::uint64_t parseArcCache(std::string_view text);

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

/// The counters of procfs, and of sysfs for zram, whose devices, as ZFS, are looked for once a minute. Keeps four files
/// open and one for each zram device; all readings of one sampling tick together take some 25 µs.
class ProcfsHostStatistics final : public HostStatistics {
 public:
  explicit ProcfsHostStatistics(const std::string& procRoot = "/proc", const std::string& sysRoot = "/sys",
                                std::chrono::seconds lookAgain = std::chrono::seconds(60));

  [[nodiscard]] std::uint64_t physicalMemory() override;
  [[nodiscard]] std::optional<MemoryCounts> memory() override;
  [[nodiscard]] std::optional<CpuTicks> cpuTicks() override;

 private:
  void lookForCaches();
  [[nodiscard]] std::uint64_t zramBytes();

  ProcFile memInfo_;
  ProcFile stat_;
  ProcFile pressure_;
  ProcFile arcStats_;
  std::string blockDevices_;
  const std::chrono::seconds lookAgain_;
  std::optional<std::chrono::steady_clock::time_point> lastLook_;
  bool hasArc_ = false;
  std::vector<ProcFile> zram_;
  CpuTicks lastTicks_{};
  CpuTicks lostTicks_{};  ///< of counters that began anew
};

}  // namespace nimbo
