// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/process_table.h"

namespace nimbo {

struct ProcessMemory {
  std::int32_t pid = 0;
  std::string name;         ///< UTF-8
  std::uint64_t bytes = 0;  ///< physical footprint
  bool operator==(const ProcessMemory&) const = default;
};

struct ProcessScan {
  std::vector<ProcessMemory> processes;  ///< largest first, equal ones by ascending pid
  int unreadable = 0;                    ///< not permitted, or gone between listing and measuring
  bool operator==(const ProcessScan&) const = default;
};

/// Measures every process once. Never fails; at worst the scan is empty. Any thread that has
/// `table` to itself.
[[nodiscard]] ProcessScan scanProcesses(ProcessTable& table);

}  // namespace nimbo
