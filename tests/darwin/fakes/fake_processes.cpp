// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_processes.h"

#include <libproc.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstring>

namespace nimbo {
namespace {

FakeProcesses* processes = nullptr;

}  // namespace

FakeProcesses::FakeProcesses() {
  assert(processes == nullptr);
  processes = this;
}

FakeProcesses::~FakeProcesses() { processes = nullptr; }

}  // namespace nimbo

using nimbo::processes;

int proc_listallpids(void* buffer, int bytes) {
  if (!processes->isListed) return errno = EPERM, -1;
  const std::size_t count = processes->running.size() + 1;
  constexpr std::size_t kSlack = 20;
  if (buffer == nullptr) {
    if (processes->onCounted) processes->onCounted();
    return static_cast<int>(count + kSlack);
  }
  const std::size_t room = static_cast<std::size_t>(bytes) / sizeof(int);
  auto* pids = static_cast<int*>(buffer);
  const int* const end = pids + std::min(room, count);
  for (auto process = processes->running.begin(); pids != end; ++process) {
    *pids++ = process == processes->running.end() ? 0 : process->first;
    if (process == processes->running.end()) break;
  }
  return static_cast<int>(std::min(room, count));
}

int proc_pid_rusage(int pid, int flavor, rusage_info_t* buffer) {
  const auto process = processes->running.find(pid);
  if (flavor != RUSAGE_INFO_V2) return errno = EINVAL, -1;
  if (process == processes->running.end()) return errno = ESRCH, -1;
  if (!process->second.isOurs) return errno = EPERM, -1;
  rusage_info_v2 usage{};
  usage.ri_phys_footprint = process->second.footprint;
  usage.ri_resident_size = process->second.resident;
  std::memcpy(buffer, &usage, sizeof(usage));
  return 0;
}

int proc_name(int pid, void* buffer, uint32_t bytes) {
  constexpr std::size_t kLongest = 31;  // that the kernel keeps
  const auto process = processes->running.find(pid);
  if (process == processes->running.end()) return errno = ESRCH, 0;
  const std::string name = process->second.name.substr(0, kLongest);
  if (bytes <= kLongest) return errno = ENOMEM, 0;
  std::memcpy(buffer, name.c_str(), name.size() + 1);
  return static_cast<int>(name.size());
}
