// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/host_statistics.h"

namespace nimbo {

/// Bytes in a field of a /proc/meminfo, such as "MemTotal". Which fields there are depends on the kernel.
[[nodiscard]] std::optional<std::uint64_t> memInfoField(std::string_view text, std::string_view name);

/// The kernel's own page lists tell applications from files: the anonymous lists hold private and
/// shared memory and exclude what is locked, the file lists hold what can be read again. Reclaimable
/// kernel memory counts as inactive and purgeable; all else that is in use is wired, so that memory
/// that no counter names (drivers, page tables, huge page pools, locked pages) is in the sum too.
/// The pressure follows available memory. Absent without the totals or the lists.
[[nodiscard]] std::optional<MemoryCounts> parseMemInfo(std::string_view text, std::uint64_t zramBytes);

/// Bytes; absent when the kernel does not tell.
[[nodiscard]] std::optional<std::uint64_t> swapUsed(std::string_view text);

}  // namespace nimbo
