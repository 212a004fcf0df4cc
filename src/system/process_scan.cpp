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

// Of one that is among the largest, so many may be measured: enough for large families that share their memory,
// and an end where hundreds of large processes do.
constexpr std::size_t kMeasuredForEach = 4;

struct Candidate {
  ProcessMemory process;
  std::uint64_t most = 0;
};

/// Measures from the largest bound down until none of the rest can be among the `exact` largest.
void measureLargest(ProcessTable& table, std::vector<Candidate>& candidates, std::size_t exact) {
  if (exact == 0) return;
  std::sort(candidates.begin(), candidates.end(),
            [](const Candidate& left, const Candidate& right) { return left.most > right.most; });
  std::priority_queue<std::uint64_t, std::vector<std::uint64_t>, std::greater<>> largest;
  std::size_t left = exact * kMeasuredForEach;
  for (auto& [process, most] : candidates) {
    const std::uint64_t least = largest.size() < exact ? 0 : largest.top();
    const auto measured = left > 0 && most > least ? table.footprint(process.pid) : std::nullopt;
    if (measured) {
      process.bytes = *measured;
      --left;
    } else if (left == 0) {
      process.bytes = std::min(process.bytes, least);  // a guess must not push a measured one off the list
    }
    largest.push(process.bytes);
    if (largest.size() > exact) largest.pop();
  }
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
      candidates.push_back({{pid, std::move(reading->name), reading->footprint}, reading->most});
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
  for (std::size_t index = 0; auto& [pid, name, bytes] : scan.processes) {
    name = displayName(pid, index++ < exact ? table.wholeName(pid, std::move(name)) : name);
  }
  return scan;
}

}  // namespace nimbo
