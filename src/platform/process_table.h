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
  std::string name;             ///< raw bytes as the system gives them; empty when it cannot be read
};

/// The processes of the machine. One thread at a time, any thread.
class ProcessTable {
 public:
  virtual ~ProcessTable() = default;

  /// Identifiers in the system's order; empty when they cannot be listed.
  [[nodiscard]] virtual std::vector<std::int32_t> list() = 0;

  /// At little cost. Absent when the process has exited or may not be measured. The name is only looked up
  /// for one that may have a footprint.
  [[nodiscard]] virtual std::optional<ProcessReading> read(std::int32_t pid) = 0;

  /// Bytes, exactly; costs the more the larger the process is. Absent when the process has exited or may not be
  /// looked into.
  [[nodiscard]] virtual std::optional<std::uint64_t> footprint(std::int32_t pid) = 0;

  /// `name`, as `read` gave it, whole where the system has cut it off.
  [[nodiscard]] virtual std::string wholeName(std::int32_t pid, std::string name) = 0;
};

/// What this process has cost so far.
struct ResourceUsage {
  std::uint64_t physicalFootprint = 0;  ///< bytes of memory that are charged to this process alone
  std::uint64_t residentSize = 0;       ///< bytes in memory, shared ones included
  std::chrono::nanoseconds cpuTime{0};  ///< user and system time of all threads since the start
};

}  // namespace nimbo
