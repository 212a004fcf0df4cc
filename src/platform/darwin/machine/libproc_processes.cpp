// SPDX-License-Identifier: MIT
#include "platform/darwin/machine/libproc_processes.h"

#include <libproc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace nimbo {
namespace {

std::optional<rusage_info_v2> usageOf(pid_t pid) {
  rusage_info_v2 usage{};
  const int failed = ::proc_pid_rusage(pid, RUSAGE_INFO_V2, reinterpret_cast<rusage_info_t*>(&usage));
  return failed == 0 ? std::optional(usage) : std::nullopt;
}

std::chrono::nanoseconds durationOf(const timeval& time) {
  return std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

}  // namespace

std::vector<std::int32_t> LibprocProcessTable::list() {
  constexpr std::size_t kStartedMeanwhile = 256;
  const int count = ::proc_listallpids(nullptr, 0);
  if (count < 1) return {};
  std::vector<std::int32_t> pids(static_cast<std::size_t>(count) + kStartedMeanwhile);
  const int listed = ::proc_listallpids(pids.data(), static_cast<int>(pids.size() * sizeof(pids[0])));
  pids.resize(std::min(static_cast<std::size_t>(std::max(listed, 0)), pids.size()));
  return pids;
}

std::optional<ProcessReading> LibprocProcessTable::read(std::int32_t pid) {
  const auto bytes = footprint(pid);
  return bytes ? std::optional(ProcessReading{*bytes, *bytes}) : std::nullopt;
}

std::optional<std::uint64_t> LibprocProcessTable::footprint(std::int32_t pid) {
  const auto usage = usageOf(pid);
  return usage ? std::optional<std::uint64_t>(usage->ri_phys_footprint) : std::nullopt;
}

std::string LibprocProcessTable::name(std::int32_t pid) {
  std::array<char, 1024> buffer{};
  if (::proc_name(pid, buffer.data(), static_cast<std::uint32_t>(buffer.size())) < 1) return {};
  return {buffer.begin(), std::find(buffer.begin(), buffer.end(), '\0')};
}

std::optional<ResourceUsage> readOwnUsage() {
  const auto usage = usageOf(::getpid());
  rusage times{};  // the other record's times are in the kernel's own unit
  if (!usage || ::getrusage(RUSAGE_SELF, &times) != 0) return std::nullopt;
  return ResourceUsage{usage->ri_phys_footprint, usage->ri_resident_size,
                       durationOf(times.ru_utime) + durationOf(times.ru_stime)};
}

}  // namespace nimbo
