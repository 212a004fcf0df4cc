// SPDX-License-Identifier: MIT
#include "system/process_scan.h"

#include <fmt/format.h>

#include <algorithm>

#include "base/text.h"

namespace nimbo {
namespace {

std::string displayName(std::int32_t pid, const std::string& name) {
  return name.empty() ? fmt::format("Process {}", pid) : repairedUtf8(name);
}

}  // namespace

ProcessScan scanProcesses(ProcessTable& table) {
  ProcessScan scan;
  const auto pids = table.list();
  scan.processes.reserve(pids.size());
  for (const std::int32_t pid : pids) {
    if (pid < 1) continue;
    const auto reading = table.read(pid);
    if (!reading) {
      ++scan.unreadable;
    } else if (reading->footprint > 0) {
      scan.processes.push_back({pid, displayName(pid, reading->name), reading->footprint});
    }
  }
  std::sort(scan.processes.begin(), scan.processes.end(), [](const ProcessMemory& left, const ProcessMemory& right) {
    return left.bytes != right.bytes ? left.bytes > right.bytes : left.pid < right.pid;
  });
  return scan;
}

}  // namespace nimbo
