// SPDX-License-Identifier: MIT
#include "platform/linux/procfs_own_process.h"

#include <sys/resource.h>

#include <array>
#include <cstddef>

#include "platform/linux/proc_file.h"
#include "platform/linux/process_status.h"

namespace nimbo {
namespace {

// All of the user's groups, ten digits each, come ahead of the memory.
constexpr std::size_t kLargestStatus = 32768;

std::chrono::nanoseconds durationOf(const timeval& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

}  // namespace

ProcfsOwnProcess::ProcfsOwnProcess(const std::string& procRoot) : status_(procRoot + "/self/status") {}

std::optional<ResourceUsage> ProcfsOwnProcess::usage() const {
  std::array<char, kLargestStatus> buffer;
  const auto text = ProcFile(status_).read(buffer);
  const StatusMemory memory = text ? parseStatusMemory(*text) : StatusMemory();
  rusage times{};
  if (memory.resident == 0 || ::getrusage(RUSAGE_SELF, &times) != 0) return std::nullopt;
  return ResourceUsage{memory.footprint, memory.resident, durationOf(times.ru_utime) + durationOf(times.ru_stime)};
}

}  // namespace nimbo
