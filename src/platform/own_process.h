// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace nimbo {

/// What this process has cost so far.
struct ResourceUsage {
  std::uint64_t physicalFootprint = 0;  ///< bytes of memory that are charged to this process alone
  std::uint64_t residentSize = 0;       ///< bytes in memory, shared ones included
  std::chrono::nanoseconds cpuTime{0};  ///< user and system time of all threads since the start
};

/// The running program, seen from the system's side. Any thread.
class OwnProcess {
 public:
  virtual ~OwnProcess() = default;

  /// Absent when the system does not tell.
  [[nodiscard]] virtual std::optional<ResourceUsage> usage() const = 0;
};

}  // namespace nimbo
