// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/process_table.h"

namespace nimbo {

struct ProcessMemory {
  std::int32_t pid = 0;
  std::string name;         ///< UTF-8 of one line, without control characters; "Process PID" for none
  std::uint64_t bytes = 0;  ///< physical footprint
  bool operator==(const ProcessMemory&) const = default;
};

struct ProcessScan {
  std::vector<ProcessMemory> processes;  ///< largest first, equal ones by ascending pid
  int unreadable = 0;                    ///< not permitted, or gone between listing and measuring
  bool operator==(const ProcessScan&) const = default;
};

/// Reads every process once and measures those that may be among the `exact` largest, which then have exact
/// figures; the others' figures are estimates below theirs, and names are looked up for some of them only. Never
/// fails; at worst the scan is empty. Any thread that has `table` to itself.
[[nodiscard]] ProcessScan scanProcesses(ProcessTable& table, std::size_t exact);

}  // namespace nimbo
