// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_own_process.h"

#include <sys/resource.h>

#include "platform/linux/machine/proc_file.h"
#include "platform/linux/machine/process_status.h"

namespace nimbo {
namespace {

std::chrono::nanoseconds durationOf(const timeval& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

}  // namespace

ProcfsOwnProcess::ProcfsOwnProcess(const std::string& procRoot) : status_(procRoot + "/self/status") {}

std::optional<ResourceUsage> ProcfsOwnProcess::usage() const {
  const auto status = readProcessStatus([this](std::span<char> buffer) { return ProcFile(status_).read(buffer); });
  rusage times{};
  if (!status || status->resident == 0 || ::getrusage(RUSAGE_SELF, &times) != 0) return std::nullopt;
  return ResourceUsage{status->footprint, status->resident, durationOf(times.ru_utime) + durationOf(times.ru_stime)};
}

}  // namespace nimbo
