// SPDX-License-Identifier: MIT
#include "platform/linux/machine/session_spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace nimbo {
namespace {

Result<SessionLeader, std::error_code> leaderOf(const Result<pid_t, std::error_code>& child) {
  if (!child) return tl::unexpected(child.error());
  SessionLeader leader{*child, processDescriptor(*child)};
  if (leader.descriptor) return leader;
  const std::error_code reason = lastError();
  if (reason != std::errc::no_such_process) {  // else the number is nobody's or a stranger's
    ::kill(leader.pid, SIGKILL);
    ::waitpid(leader.pid, nullptr, 0);
  }
  return tl::unexpected(reason);
}

}  // namespace

Result<SessionLeader, std::error_code> spawnWithoutInput(const std::string& executable,
                                                         const std::vector<std::string>& arguments) {
  return leaderOf(spawnSession(
      {executable, commandOf(executable, arguments), ::environ}, closeFrom, [](posix_spawn_file_actions_t* steps) {
        return ::posix_spawn_file_actions_addopen(steps, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
      }));
}

Result<SessionLeader, std::error_code> spawnWithInput(const UniqueFd& executable, const std::vector<std::string>& words,
                                                      const UniqueFd& input) {
  constexpr int kExecutable = STDERR_FILENO + 1;
  const std::string file = "/proc/self/fd/" + std::to_string(kExecutable);
  return leaderOf(
      spawnSession({file, words, ::environ, kExecutable + 1}, closeFrom, [&](posix_spawn_file_actions_t* steps) {
        const int error = ::posix_spawn_file_actions_adddup2(steps, input.get(), STDIN_FILENO);
        if (error != 0) return error;
        return ::posix_spawn_file_actions_adddup2(steps, executable.get(), kExecutable);
      }));
}

int closeFrom(posix_spawnattr_t* /*attributes*/, posix_spawn_file_actions_t* steps, int first) {
  return ::posix_spawn_file_actions_addclosefrom_np(steps, first);
}

// glibc 2.36 declares its wrapper without C linkage.
UniqueFd processDescriptor(pid_t pid) { return UniqueFd(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))); }

}  // namespace nimbo
