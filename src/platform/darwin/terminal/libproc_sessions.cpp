// SPDX-License-Identifier: MIT
#include "platform/darwin/terminal/libproc_sessions.h"

#include <libproc.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "platform/darwin/machine/close_by_default.h"
#include "platform/darwin/machine/libproc_processes.h"

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kTimeToDie{5};
// Besides, a process that forks while it is looked for may escape one round.
constexpr int kMaximumRounds = 20;

void killAll(const std::function<std::vector<pid_t>()>& find) {
  for (int round = 0; round < kMaximumRounds; ++round) {
    const auto found = find();
    if (found.empty()) return;
    for (const pid_t pid : found) ::kill(pid, SIGKILL);
    std::this_thread::sleep_for(kTimeToDie);
  }
}

// One that is dead already has no session any more.
void killSession(pid_t leader) {
  killAll([leader] {
    auto pids = LibprocProcessTable().list();
    std::erase_if(pids, [leader](pid_t pid) { return pid < 1 || pid == leader || ::getsid(pid) != leader; });
    return pids;
  });
}

std::vector<pid_t> holdersOf(const std::string& path) {
  const int estimate = ::proc_listpidspath(PROC_ALL_PIDS, 0, path.c_str(), 0, nullptr, 0);
  if (estimate < 1) return {};
  std::vector<pid_t> pids(static_cast<std::size_t>(estimate) / sizeof(pid_t));
  const int bytes = ::proc_listpidspath(PROC_ALL_PIDS, 0, path.c_str(), 0, pids.data(), estimate);
  pids.resize(bytes < 1 ? 0 : static_cast<std::size_t>(bytes) / sizeof(pid_t));
  std::erase_if(pids, [](pid_t pid) { return pid < 1 || pid == ::getpid(); });
  return pids;
}

void killHolders(const std::string& path) {
  killAll([&path] { return holdersOf(path); });
}

}  // namespace

TerminalSystem libprocTerminalSystem() { return {closeByDefault, killSession, killHolders}; }

}  // namespace nimbo
