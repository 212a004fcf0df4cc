// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/process_table.h"

namespace nimbo {

/// The bytes of a /proc/PID/status, which names all groups of a process ahead of its memory: up to 65,536 of ten
/// digits.
inline constexpr std::size_t kLargestStatus = std::size_t{1} << 20;

/// Memory of one process in bytes.
struct StatusMemory {
  std::uint64_t footprint = 0;
  std::uint64_t resident = 0;
};

/// Footprint and name out of a /proc/PID/status. The footprint is the private anonymous memory and its
/// swap; kernels before 4.5 do not tell it and all resident memory stands in for it. Kernel threads
/// and zombies have none.
[[nodiscard]] ProcessReading parseProcessStatus(std::string_view text);

/// The same footprint, with all resident memory beside it; 0 for what is not told.
[[nodiscard]] StatusMemory parseStatusMemory(std::string_view text);

/// Pages of private anonymous memory out of a /proc/PID/statm: those resident less those that belong
/// to files and shared memory. Absent for other text.
[[nodiscard]] std::optional<std::uint64_t> parseAnonymousPages(std::string_view text);

}  // namespace nimbo
