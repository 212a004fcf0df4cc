// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace nimbo {

enum class MemoryPressure { normal, warning, critical, unknown };

/// Bytes of physical memory in each of the roles that the memory split needs, and what else tells how short memory is.
struct MemoryCounts {
  std::uint64_t wired = 0;                  ///< cannot be moved out of memory: kernel, locked, reserved
  std::uint64_t compressor = 0;             ///< hold compressed pages of others
  std::uint64_t active = 0;                 ///< of applications and files, in use lately
  std::uint64_t inactive = 0;               ///< of applications and files, not used lately
  std::uint64_t purgeable = 0;              ///< of active + inactive: the owner lets go when asked
  std::uint64_t fileBacked = 0;             ///< of active + inactive: can be read again from a file
  std::optional<std::uint64_t> swapUsed{};  ///< 0 on a machine without swap; absent when it cannot be read
  MemoryPressure pressure = MemoryPressure::unknown;
};

/// Cumulative CPU time of all processors in clock ticks, in the order user, system, idle, nice.
/// Counters are 32 bits wide on some systems and wrap.
using CpuTicks = std::array<std::uint64_t, 4>;

/// Machine-wide counters as the operating system keeps them. One thread at a time.
class HostStatistics {
 public:
  virtual ~HostStatistics() = default;

  /// Bytes of memory the system can use; 0 when it cannot be read.
  [[nodiscard]] virtual std::uint64_t physicalMemory() = 0;

  /// Absent when the system does not tell.
  [[nodiscard]] virtual std::optional<MemoryCounts> memory() = 0;

  /// Absent when the counters cannot be read.
  [[nodiscard]] virtual std::optional<CpuTicks> cpuTicks() = 0;
};

}  // namespace nimbo
