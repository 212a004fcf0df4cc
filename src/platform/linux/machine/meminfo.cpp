// SPDX-License-Identifier: MIT
#include "platform/linux/machine/meminfo.h"

#include <algorithm>

#include "platform/linux/machine/proc_text.h"

namespace nimbo {
namespace {

struct Field {
  std::string_view name;
  std::optional<std::uint64_t> MemInfo::*value;
};

constexpr Field kFields[] = {{"MemTotal", &MemInfo::total},
                             {"MemFree", &MemInfo::free},
                             {"MemAvailable", &MemInfo::available},
                             {"Active(anon)", &MemInfo::activeAnonymous},
                             {"Inactive(anon)", &MemInfo::inactiveAnonymous},
                             {"Active(file)", &MemInfo::activeFile},
                             {"Inactive(file)", &MemInfo::inactiveFile},
                             {"KReclaimable", &MemInfo::kernelReclaimable},
                             {"SReclaimable", &MemInfo::slabReclaimable},
                             {"Zswap", &MemInfo::zswapPool},
                             {"SwapTotal", &MemInfo::swapTotal},
                             {"SwapFree", &MemInfo::swapFree}};

// The counters are read one after the other while memory moves, so a sum may pass its whole.
std::uint64_t lessAtLeastZero(std::uint64_t whole, std::uint64_t part) { return whole - std::min(whole, part); }

}  // namespace

MemInfo parseMemInfo(std::string_view text) {
  MemInfo info;
  while (const auto line = takeLine(text)) {
    const std::string_view name = line->substr(0, line->find(':'));
    const auto* const field = std::find_if(std::begin(kFields), std::end(kFields),
                                           [&](const Field& candidate) { return candidate.name == name; });
    if (field == std::end(kFields) || name.size() == line->size()) continue;
    info.*field->value = parseKilobytes(line->substr(name.size() + 1));
  }
  return info;
}

std::optional<PageCounts> pageCounts(const MemInfo& info, std::uint64_t zramBytes, std::uint64_t pageSize) {
  if (!info.total || !info.free || !info.activeAnonymous || !info.inactiveAnonymous || !info.activeFile ||
      !info.inactiveFile) {
    return std::nullopt;
  }
  const std::uint64_t reclaimable = info.kernelReclaimable.value_or(info.slabReclaimable.value_or(0));
  const std::uint64_t compressor = info.zswapPool.value_or(0) + zramBytes;
  const std::uint64_t active = *info.activeAnonymous + *info.activeFile;
  const std::uint64_t inactive = *info.inactiveAnonymous + *info.inactiveFile + reclaimable;
  const std::uint64_t inUse = lessAtLeastZero(*info.total, *info.free);

  PageCounts pages;
  pages.wired = lessAtLeastZero(inUse, active + inactive + compressor) / pageSize;
  pages.compressor = compressor / pageSize;
  pages.active = active / pageSize;
  pages.inactive = inactive / pageSize;
  pages.purgeable = reclaimable / pageSize;
  pages.fileBacked = (*info.activeFile + *info.inactiveFile) / pageSize;
  return pages;
}

std::optional<std::uint64_t> swapUsed(const MemInfo& info) {
  if (!info.swapTotal || !info.swapFree) return std::nullopt;
  return lessAtLeastZero(*info.swapTotal, *info.swapFree);
}

std::optional<std::uint32_t> pressureLevel(const MemInfo& info) {
  if (!info.total || !info.available) return std::nullopt;
  const std::uint64_t percentOfAll = *info.total / 100;
  if (*info.available < 5 * percentOfAll) return 4;
  return *info.available < 10 * percentOfAll ? 2 : 1;
}

}  // namespace nimbo
