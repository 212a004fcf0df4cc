// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nimbo {

struct ProcessReading {
  std::uint64_t footprint = 0;  ///< bytes of physical memory charged to the process, roughly
  std::uint64_t most = 0;       ///< bytes that its real footprint does not exceed; 0 for kernel threads
  bool operator==(const ProcessReading&) const = default;
};

/// The processes of the machine. One thread at a time, any thread.
class ProcessTable {
 public:
  virtual ~ProcessTable() = default;

  /// Identifiers in the system's order; empty when they cannot be listed.
  [[nodiscard]] virtual std::vector<std::int32_t> list() = 0;

  /// At little cost. Absent when the process has exited or may not be measured.
  [[nodiscard]] virtual std::optional<ProcessReading> read(std::int32_t pid) = 0;

  /// Bytes, exactly; costs the more the larger the process is. Absent when the process has exited or may not be
  /// looked into.
  [[nodiscard]] virtual std::optional<std::uint64_t> footprint(std::int32_t pid) = 0;

  /// Raw bytes as the system gives them; empty when the name cannot be read.
  [[nodiscard]] virtual std::string name(std::int32_t pid) = 0;
};

/// What this process has cost so far.
struct ResourceUsage {
  std::uint64_t physicalFootprint = 0;  ///< bytes of memory that are charged to this process alone
  std::uint64_t residentSize = 0;       ///< bytes in memory, shared ones included
  std::chrono::nanoseconds cpuTime{0};  ///< user and system time of all threads since the start
};

}  // namespace nimbo
