// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nimbo {

struct ProcessReading {
  std::uint64_t footprint = 0;  ///< bytes of physical memory charged to the process; 0 for kernel threads
  std::string name;             ///< raw bytes as the system gives them; empty when it cannot be read
};

/// The processes of the machine. One thread at a time, any thread.
class ProcessTable {
 public:
  virtual ~ProcessTable() = default;

  /// Identifiers in the system's order; empty when they cannot be listed.
  [[nodiscard]] virtual std::vector<std::int32_t> list() = 0;

  /// Absent when the process has exited or may not be measured. The name is only looked up for a
  /// footprint above 0.
  [[nodiscard]] virtual std::optional<ProcessReading> read(std::int32_t pid) = 0;
};

/// What this process has cost so far.
struct ResourceUsage {
  std::uint64_t physicalFootprint = 0;  ///< bytes of memory that are charged to this process alone
  std::uint64_t residentSize = 0;       ///< bytes in memory, shared ones included
  std::chrono::nanoseconds cpuTime{0};  ///< user and system time of all threads since the start
};

}  // namespace nimbo
