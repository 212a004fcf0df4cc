// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_own_process.h"

#include <sys/resource.h>

#include <array>

#include "platform/linux/machine/proc_file.h"

namespace nimbo {
namespace {

std::chrono::nanoseconds durationOf(const timeval& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

}  // namespace

ProcfsOwnProcess::ProcfsOwnProcess(const std::string& procRoot) : status_(procRoot + "/self/status") {}

StatusMemory ProcfsOwnProcess::readMemory() const {
  std::array<char, 8192> buffer;
  auto text = ProcFile(status_).read(buffer);
  if (text && text->size() < buffer.size()) return parseStatusMemory(*text);
  std::string large(kLargestStatus, '\0');
  text = ProcFile(status_).read(large);
  return text ? parseStatusMemory(*text) : StatusMemory();
}

std::optional<ResourceUsage> ProcfsOwnProcess::usage() const {
  const StatusMemory memory = readMemory();
  rusage times{};
  if (memory.resident == 0 || ::getrusage(RUSAGE_SELF, &times) != 0) return std::nullopt;
  return ResourceUsage{memory.footprint, memory.resident, durationOf(times.ru_utime) + durationOf(times.ru_stime)};
}

}  // namespace nimbo
