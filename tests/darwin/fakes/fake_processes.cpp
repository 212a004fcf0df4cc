// SPDX-License-Identifier: MIT
#include "darwin/fakes/fake_processes.h"

#include <libproc.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

namespace nimbo {
namespace {

FakeProcesses* processes = nullptr;

namespace fs = std::filesystem;

/// The processes that `wanted` chooses by their folders in /proc.
std::vector<int> thisMachines(const std::function<bool(const fs::path&)>& wanted) {
  std::vector<int> pids;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const int pid = std::atoi(entry.path().filename().c_str());
    if (pid > 0 && wanted(entry.path())) pids.push_back(pid);
  }
  return pids;
}

bool holds(const fs::path& process, const std::string& file) {
  std::error_code error;
  for (const auto& descriptor : fs::directory_iterator(process / "fd", error)) {
    if (fs::read_symlink(descriptor, error) == file) return true;
  }
  return false;
}

int copy(const std::vector<int>& pids, void* buffer, int bytes) {
  const std::size_t count = std::min(static_cast<std::size_t>(bytes) / sizeof(int), pids.size());
  std::copy_n(pids.begin(), count, static_cast<int*>(buffer));
  return static_cast<int>(count);
}

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
  std::vector<int> pids;
  if (processes->isThisMachine) pids = nimbo::thisMachines([](const auto&) { return true; });
  for (const auto& process : processes->running) pids.push_back(process.first);
  pids.push_back(0);
  if (buffer != nullptr) return nimbo::copy(pids, buffer, bytes);
  if (processes->onCounted) processes->onCounted();
  constexpr std::size_t kSlack = 20;
  return static_cast<int>(pids.size() + kSlack);
}

int proc_listpidspath(uint32_t type, uint32_t /*typeInfo*/, const char* path, uint32_t /*flags*/, void* buffer,
                      int bytes) {
  constexpr int kRoom = 4096;
  if (type != PROC_ALL_PIDS || !processes->isThisMachine) return errno = EINVAL, -1;
  if (buffer == nullptr) return kRoom * static_cast<int>(sizeof(int));
  const auto pids = nimbo::thisMachines([path](const auto& process) { return nimbo::holds(process, path); });
  return nimbo::copy(pids, buffer, bytes) * static_cast<int>(sizeof(int));
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
