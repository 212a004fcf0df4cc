// SPDX-License-Identifier: MIT
#include "system/process_scan.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <queue>
#include <utility>

#include "base/text.h"

namespace nimbo {
namespace {

// For each of the largest so many are measured at most, and all together when they are not too large: enough for
// families that share their memory, and an end where hundreds of large processes do. A gigabyte takes some 15 ms.
constexpr std::size_t kMeasuredForEach = 2;
constexpr std::uint64_t kMeasuredBytes = std::uint64_t{16} << 30;

// For each of the largest so many have names: a list may grow a few times until the next scan.
constexpr std::size_t kNamedForEach = 4;

struct Candidate {
  ProcessMemory process;
  std::uint64_t most = 0;
};

/// Measures from the largest bound down until none of the rest can be among the `exact` largest.
void measureLargest(ProcessTable& table, std::vector<Candidate>& candidates, std::size_t exact) {
  const auto hasLess = [](const Candidate& left, const Candidate& right) { return left.most < right.most; };
  std::priority_queue<std::uint64_t, std::vector<std::uint64_t>, std::greater<>> largest;
  const auto least = [&] { return largest.size() < exact ? 0 : largest.top(); };
  std::size_t left = exact * kMeasuredForEach;
  std::uint64_t bytes = 0;
  auto rest = candidates.end();
  std::make_heap(candidates.begin(), rest, hasLess);
  while (left > 0 && bytes < kMeasuredBytes && rest != candidates.begin() && candidates.front().most > least()) {
    std::pop_heap(candidates.begin(), rest--, hasLess);
    auto& process = rest->process;
    if (const auto measured = table.footprint(process.pid)) {
      process.bytes = *measured;
      bytes += rest->most;
      --left;
    }
    largest.push(process.bytes);
    if (largest.size() > exact) largest.pop();
  }
  if (exact == 0 || largest.size() < exact) return;
  // A guess must not push one off the list that was measured.
  std::for_each(candidates.begin(), rest,
                [&](Candidate& candidate) { candidate.process.bytes = std::min(candidate.process.bytes, least()); });
}

std::string displayName(std::int32_t pid, const std::string& name) {
  return name.empty() ? fmt::format("Process {}", pid) : printableLine(name);
}

}  // namespace

ProcessScan scanProcesses(ProcessTable& table, std::size_t exact) {
  ProcessScan scan;
  std::vector<Candidate> candidates;
  const auto pids = table.list();
  candidates.reserve(pids.size());
  for (const std::int32_t pid : pids) {
    if (pid < 1) continue;
    auto reading = table.read(pid);
    if (!reading) {
      ++scan.unreadable;
    } else if (reading->most > 0) {
      candidates.push_back({{pid, {}, reading->footprint}, reading->most});
    }
  }
  measureLargest(table, candidates, exact);

  scan.processes.reserve(candidates.size());
  for (auto& candidate : candidates) {
    if (candidate.process.bytes > 0) scan.processes.push_back(std::move(candidate.process));
  }
  std::sort(scan.processes.begin(), scan.processes.end(), [](const ProcessMemory& left, const ProcessMemory& right) {
    return left.bytes != right.bytes ? left.bytes > right.bytes : left.pid < right.pid;
  });
  for (std::size_t index = 0; auto& process : scan.processes) {
    process.name = displayName(process.pid, index++ < exact * kNamedForEach ? table.name(process.pid) : std::string());
  }
  return scan;
}

}  // namespace nimbo
