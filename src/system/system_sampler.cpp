// SPDX-License-Identifier: MIT
#include "system/system_sampler.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <utility>

namespace nimbo {
namespace {

// Sizes that overflow 64 bits are no memory of any machine: going on would show made-up figures.
std::uint64_t sum(std::uint64_t left, std::uint64_t right) {
  std::uint64_t result = 0;
  if (__builtin_add_overflow(left, right, &result)) std::abort();
  return result;
}

// Takes at most what is left, so that the parts never exceed the whole.
std::uint64_t take(std::uint64_t wanted, std::uint64_t& left) {
  const std::uint64_t taken = std::min(wanted, left);
  left -= taken;
  return taken;
}

void split(const MemoryCounts& counts, MemorySnapshot& snapshot) {
  const std::uint64_t cached = sum(counts.purgeable, counts.fileBacked);
  const std::uint64_t inUse = sum(counts.active, counts.inactive);
  std::uint64_t left = snapshot.total;
  snapshot.wired = take(counts.wired, left);
  snapshot.compressed = take(counts.compressor, left);
  snapshot.app = take(inUse > cached ? inUse - cached : 0, left);
  snapshot.cached = take(cached, left);
}

// The counters may be 32 bits wide: the difference modulo 2^32 is right across a wrap too.
std::uint64_t tickDelta(std::uint64_t current, std::uint64_t previous) {
  return static_cast<std::uint32_t>(current - previous);
}

}  // namespace

SystemSampler::SystemSampler(HostStatistics& host, const Clock& clock)
    : host_(host), clock_(clock), total_(host.physicalMemory()) {}

std::optional<MemorySnapshot> SystemSampler::snapshot() {
  const auto counts = host_.memory();
  if (!counts) return std::nullopt;

  MemorySnapshot snapshot;
  snapshot.total = total_;
  snapshot.swap = counts->swapUsed;
  snapshot.pressure = counts->pressure;
  split(*counts, snapshot);
  snapshot.timestamp = clock_.now();
  return snapshot;
}

std::optional<double> SystemSampler::cpuUsage() {
  constexpr std::size_t kIdle = 2;
  const auto current = host_.cpuTicks();
  if (!current) return std::nullopt;
  const auto previous = std::exchange(previousTicks_, current);
  if (!previous) return std::nullopt;

  std::uint64_t total = 0;
  for (std::size_t index = 0; index < current->size(); ++index) {
    total += tickDelta((*current)[index], (*previous)[index]);
  }
  if (total == 0) return std::nullopt;
  const std::uint64_t idle = tickDelta((*current)[kIdle], (*previous)[kIdle]);
  return static_cast<double>(total - idle) / static_cast<double>(total);
}

}  // namespace nimbo
