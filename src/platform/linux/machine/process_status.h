// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace nimbo {

/// What a /proc/PID/status tells; 0 and empty for what is not told. Bytes.
struct ProcessStatus {
  std::string name;  ///< empty without a footprint
  /// Private anonymous memory and its swap; kernels before 4.5 do not tell it and all resident memory stands in for
  /// it. Kernel threads and zombies have none.
  std::uint64_t footprint = 0;
  std::uint64_t resident = 0;
};

[[nodiscard]] ProcessStatus parseProcessStatus(std::string_view text);

/// Parses the file that `read` reads into a buffer, at first into a small one; absent when it cannot be read.
[[nodiscard]] std::optional<ProcessStatus> readProcessStatus(
    const std::function<std::optional<std::string_view>(std::span<char>)>& read);

/// Pages of private anonymous memory out of a /proc/PID/statm: those resident less those that belong
/// to files and shared memory. Absent for other text.
[[nodiscard]] std::optional<std::uint64_t> parseAnonymousPages(std::string_view text);

}  // namespace nimbo
