// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/host_statistics.h"

namespace nimbo {

/// The fields of /proc/meminfo that are used, in bytes. Which ones there are depends on the kernel.
struct MemInfo {
  std::optional<std::uint64_t> total;
  std::optional<std::uint64_t> free;
  std::optional<std::uint64_t> available;  ///< since Linux 3.14
  std::optional<std::uint64_t> activeAnonymous;
  std::optional<std::uint64_t> inactiveAnonymous;
  std::optional<std::uint64_t> activeFile;
  std::optional<std::uint64_t> inactiveFile;
  std::optional<std::uint64_t> kernelReclaimable;  ///< since 4.20; slab and drivers' own caches
  std::optional<std::uint64_t> slabReclaimable;
  std::optional<std::uint64_t> zswapPool;  ///< since 5.19
  std::optional<std::uint64_t> swapTotal;
  std::optional<std::uint64_t> swapFree;
};

[[nodiscard]] MemInfo parseMemInfo(std::string_view text);

/// The kernel's own page lists tell applications from files: the anonymous lists hold private and
/// shared memory and exclude what is locked, the file lists hold what can be read again. Reclaimable
/// kernel memory counts as inactive and purgeable; all else that is in use is wired, so that memory
/// that no counter names (drivers, page tables, huge page pools, locked pages) is in the sum too.
/// Absent without the totals or the lists.
[[nodiscard]] std::optional<PageCounts> pageCounts(const MemInfo& info, std::uint64_t zramBytes,
                                                   std::uint64_t pageSize);

/// Bytes; absent when the kernel does not tell.
[[nodiscard]] std::optional<std::uint64_t> swapUsed(const MemInfo& info);

/// 2 below 10 % and 4 below 5 % of available memory, else 1: where earlyoom(1) by default asks and
/// then forces a process to end. Its condition on swap is left out, because a machine is short of
/// memory while it still has swap to fill. Absent when the kernel does not tell.
[[nodiscard]] std::optional<std::uint32_t> pressureLevel(const MemInfo& info);

}  // namespace nimbo
