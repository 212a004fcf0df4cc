// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_host_statistics.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace nimbo {
namespace {

// "avg10=1.23" out of "some avg10=1.23 avg60=0.40 avg300=0.10 total=12345".
std::optional<double> shareOfTenSeconds(std::string_view line) {
  constexpr std::string_view kName = "avg10=";
  while (true) {
    const std::string_view word = takeWord(line);
    if (word.empty()) return std::nullopt;
    if (word.starts_with(kName)) return parseDecimal(word.substr(kName.size()));
  }
}

constexpr std::size_t kMemInfoSize = 8192;
constexpr std::uint64_t kNoMemory = std::uint64_t{1} << 60;  // no machine has as much; a few below it can be added
constexpr std::uint64_t kMostTicksBack = 1000;  // ten seconds; small steps are of some ticks for each processor

// The counters are read one after the other while memory moves, so a sum may pass its whole.
std::uint64_t lessAtLeastZero(std::uint64_t whole, std::uint64_t part) { return whole - std::min(whole, part); }

// Where earlyoom(1) by default asks and then forces a process to end. Its condition on swap is left out,
// because a machine is short of memory while it still has swap to fill.
MemoryPressure pressureOf(std::uint64_t total, std::optional<std::uint64_t> available) {
  if (!available) return MemoryPressure::unknown;
  if (*available < 5 * (total / 100)) return MemoryPressure::critical;
  return *available < 10 * (total / 100) ? MemoryPressure::warning : MemoryPressure::normal;
}

// Stalls come late, and where there is no swap hardly before the memory is gone.
MemoryPressure worseOf(MemoryPressure one, MemoryPressure other) {
  if (one == MemoryPressure::unknown) return other;
  return other == MemoryPressure::unknown ? one : std::max(one, other);
}

/// The fields of a meminfo. Each is looked for from the last one on at first: asked for in the kernel's order they take
/// one way through the text.
class MemInfoFields {
 public:
  explicit MemInfoFields(std::string_view text) : text_(text), rest_(text) {}

  [[nodiscard]] std::optional<std::uint64_t> operator()(std::string_view name) {
    for (std::string_view rest : {rest_, text_}) {
      while (auto line = takeLine(rest)) {
        if (!takePrefix(*line, name) || !takePrefix(*line, ":")) continue;
        rest_ = rest;
        return parseKilobytes(*line);
      }
    }
    return std::nullopt;
  }

 private:
  std::string_view text_;
  std::string_view rest_;
};

std::optional<std::uint64_t> swapUsedOf(MemInfoFields& field) {
  const auto total = field("SwapTotal");
  const auto free = field("SwapFree");
  if (!total || !free) return std::nullopt;
  return lessAtLeastZero(*total, *free);
}

}  // namespace

std::optional<std::uint64_t> memInfoField(std::string_view text, std::string_view name) {
  return MemInfoFields(text)(name);
}

std::optional<MemoryCounts> parseMemInfo(std::string_view text, std::uint64_t zramBytes, std::uint64_t arcBytes) {
  MemoryCounts counts;
  MemInfoFields field(text);
  const auto total = field("MemTotal");
  const auto free = field("MemFree");
  auto available = field("MemAvailable");  // since 3.14
  const auto activeAnonymous = field("Active(anon)");
  const auto inactiveAnonymous = field("Inactive(anon)");
  const auto activeFile = field("Active(file)");
  const auto inactiveFile = field("Inactive(file)");
  if (!total || !free || !activeAnonymous || !inactiveAnonymous || !activeFile || !inactiveFile) return std::nullopt;
  counts.swapUsed = swapUsedOf(field);
  counts.compressor = field("Zswap").value_or(0) + zramBytes;  // since 5.19
  auto reclaimable = field("KReclaimable");                    // since Linux 4.20: the slabs' and drivers' own caches
  if (!reclaimable) reclaimable = field("SReclaimable");

  if (available) *available += arcBytes;
  const std::uint64_t droppable =
      available ? lessAtLeastZero(*available, *free) : *activeFile + *inactiveFile + reclaimable.value_or(0) + arcBytes;

  counts.active = *activeAnonymous;
  counts.inactive = *inactiveAnonymous + droppable;
  counts.purgeable = std::min(reclaimable.value_or(0) + arcBytes, droppable);
  counts.fileBacked = droppable - counts.purgeable;
  const std::uint64_t used = lessAtLeastZero(*total, available.value_or(*free + droppable));
  counts.wired = lessAtLeastZero(used, *activeAnonymous + *inactiveAnonymous + counts.compressor);
  counts.pressure = pressureOf(*total, available);
  return counts;
}

std::optional<std::uint64_t> swapUsed(std::string_view text) {
  MemInfoFields field(text);
  return swapUsedOf(field);
}

std::optional<CpuTicks> parseCpuTicks(std::string_view text) {
  enum { kUser, kNice, kSystem, kIdle, kIoWait, kIrq, kSoftIrq, kSteal, kCount };
  auto line = takeLine(text);
  if (!line || takeWord(*line) != "cpu") return std::nullopt;
  std::array<std::uint64_t, kCount> ticks{};
  for (std::size_t index = 0; index < ticks.size(); ++index) {
    const auto number = parseNumber(takeWord(*line));
    if (!number && index <= kIdle) return std::nullopt;
    ticks[index] = number.value_or(0);  // old kernels end the line earlier
  }
  return CpuTicks{ticks[kUser], ticks[kSystem] + ticks[kIrq] + ticks[kSoftIrq] + ticks[kSteal],
                  ticks[kIdle] + ticks[kIoWait], ticks[kNice]};
}

std::optional<MemoryPressure> parsePressure(std::string_view text) {
  constexpr double kShare = 5.0;  // percent
  std::optional<double> some;
  double full = 0;
  while (auto line = takeLine(text)) {
    const std::string_view kind = takeWord(*line);
    if (kind == "some") some = shareOfTenSeconds(*line);
    if (kind == "full") full = shareOfTenSeconds(*line).value_or(0);
  }
  if (!some) return std::nullopt;
  if (full >= kShare) return MemoryPressure::critical;
  return *some >= kShare ? MemoryPressure::warning : MemoryPressure::normal;
}

std::uint64_t parseArcCache(std::string_view text) {
  std::optional<std::uint64_t> size;
  std::optional<std::uint64_t> least;
  while (auto line = takeLine(text)) {
    const std::string_view name = takeWord(*line);
    if (name != "size" && name != "c_min") continue;
    (void)takeWord(*line);  // its type
    (name == "size" ? size : least) = parseNumber(takeWord(*line));
  }
  return size && *size < kNoMemory ? lessAtLeastZero(*size, least.value_or(0)) : 0;
}

std::optional<std::uint64_t> parseZramUsed(std::string_view text) {
  auto line = takeLine(text);
  if (!line) return std::nullopt;
  for (int skipped = 0; skipped < 2; ++skipped) (void)takeWord(*line);
  return parseNumber(takeWord(*line));
}

ProcfsHostStatistics::ProcfsHostStatistics(const std::string& procRoot, const std::string& sysRoot,
                                           std::chrono::seconds lookAgain)
    : memInfo_(procRoot + "/meminfo"),
      stat_(procRoot + "/stat"),
      pressure_(procRoot + "/pressure/memory"),
      arcStats_(procRoot + "/spl/kstat/zfs/arcstats"),
      blockDevices_(sysRoot + "/block"),
      lookAgain_(lookAgain) {}

std::uint64_t ProcfsHostStatistics::physicalMemory() {
  std::array<char, kMemInfoSize> buffer;
  return memInfoField(memInfo_.read(buffer).value_or(""), "MemTotal").value_or(0);
}

std::optional<MemoryCounts> ProcfsHostStatistics::memory() {
  std::array<char, kMemInfoSize> buffer;
  lookForCaches();
  const std::uint64_t arcBytes = hasArc_ ? parseArcCache(arcStats_.read(buffer).value_or("")) : 0;
  auto counts = parseMemInfo(memInfo_.read(buffer).value_or(""), zramBytes(), arcBytes);
  if (!counts) return std::nullopt;
  if (const auto text = pressure_.read(buffer)) {
    counts->pressure = worseOf(parsePressure(*text).value_or(MemoryPressure::unknown), counts->pressure);
  }
  return counts;
}

std::optional<CpuTicks> ProcfsHostStatistics::cpuTicks() {
  std::array<char, 256> buffer;  // the first line has at most ten numbers of 20 digits
  const auto text = stat_.read(buffer);
  const auto ticks = text ? parseCpuTicks(*text) : std::nullopt;
  if (!ticks) return std::nullopt;
  // Idle and waiting time are known to step back a little, which would look like a counter that
  // wrapped and make the machine seem idle. Where they step back a lot, as they do on older kernels
  // when processors come back after a suspend, they have begun anew and go on from where they were.
  bool begunAnew = false;
  for (std::size_t index = 0; index < ticks->size(); ++index) {
    auto& last = lastTicks_[index];
    auto& lost = lostTicks_[index];
    if ((*ticks)[index] + lost + kMostTicksBack < last) {
      lost = last - (*ticks)[index];
      begunAnew = true;
    }
    last = std::max(last, (*ticks)[index] + lost);
  }
  // How much was lost is not known, so nothing can be said of this interval.
  return begunAnew ? std::nullopt : std::optional(lastTicks_);
}

// Few machines have them, and they come seldom.
void ProcfsHostStatistics::lookForCaches() {
  const auto now = std::chrono::steady_clock::now();
  if (lastLook_ && now - *lastLook_ < lookAgain_) return;
  lastLook_ = now;
  std::array<char, 1> some;
  hasArc_ = arcStats_.read(some).has_value();
  zram_.clear();
  visitFolder(blockDevices_, [this](std::string_view device) {
    if (device.starts_with("zram")) zram_.emplace_back(blockDevices_ + '/' + std::string(device) + "/mm_stat");
  });
}

std::uint64_t ProcfsHostStatistics::zramBytes() {
  std::uint64_t bytes = 0;
  std::array<char, 4096> buffer;
  for (ProcFile& device : zram_) {
    const auto text = device.read(buffer);
    const auto used = text ? parseZramUsed(*text) : std::nullopt;
    if (used && *used < kNoMemory) bytes += *used;
  }
  return bytes;
}

}  // namespace nimbo
