// SPDX-License-Identifier: MIT
#include "platform/linux/machine/meminfo.h"

#include <algorithm>

#include "platform/linux/machine/proc_file.h"

namespace nimbo {
namespace {

// The counters are read one after the other while memory moves, so a sum may pass its whole.
std::uint64_t lessAtLeastZero(std::uint64_t whole, std::uint64_t part) { return whole - std::min(whole, part); }

// Where earlyoom(1) by default asks and then forces a process to end. Its condition on swap is left out,
// because a machine is short of memory while it still has swap to fill.
MemoryPressure pressureOf(std::uint64_t total, std::optional<std::uint64_t> available) {
  if (!available) return MemoryPressure::unknown;
  if (*available < 5 * (total / 100)) return MemoryPressure::critical;
  return *available < 10 * (total / 100) ? MemoryPressure::warning : MemoryPressure::normal;
}

}  // namespace

std::optional<std::uint64_t> memInfoField(std::string_view text, std::string_view name) {
  while (auto line = takeLine(text)) {
    if (takePrefix(*line, name) && takePrefix(*line, ":")) return parseKilobytes(*line);
  }
  return std::nullopt;
}

std::optional<MemoryCounts> parseMemInfo(std::string_view text, std::uint64_t zramBytes) {
  const auto field = [text](std::string_view name) { return memInfoField(text, name); };
  const auto total = field("MemTotal");
  const auto free = field("MemFree");
  const auto activeAnonymous = field("Active(anon)");
  const auto inactiveAnonymous = field("Inactive(anon)");
  const auto activeFile = field("Active(file)");
  const auto inactiveFile = field("Inactive(file)");
  if (!total || !free || !activeAnonymous || !inactiveAnonymous || !activeFile || !inactiveFile) return std::nullopt;
  auto reclaimable = field("KReclaimable");  // since Linux 4.20: the slabs' and drivers' own caches
  if (!reclaimable) reclaimable = field("SReclaimable");

  MemoryCounts counts;
  counts.compressor = field("Zswap").value_or(0) + zramBytes;  // since 5.19
  counts.active = *activeAnonymous + *activeFile;
  counts.purgeable = reclaimable.value_or(0);
  counts.inactive = *inactiveAnonymous + *inactiveFile + counts.purgeable;
  counts.fileBacked = *activeFile + *inactiveFile;
  const std::uint64_t inUse = lessAtLeastZero(*total, *free);
  counts.wired = lessAtLeastZero(inUse, counts.active + counts.inactive + counts.compressor);
  counts.swapUsed = swapUsed(text);
  counts.pressure = pressureOf(*total, field("MemAvailable"));  // since 3.14
  return counts;
}

std::optional<std::uint64_t> swapUsed(std::string_view text) {
  const auto total = memInfoField(text, "SwapTotal");
  const auto free = memInfoField(text, "SwapFree");
  if (!total || !free) return std::nullopt;
  return lessAtLeastZero(*total, *free);
}

}  // namespace nimbo
