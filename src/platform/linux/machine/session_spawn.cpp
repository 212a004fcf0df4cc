// SPDX-License-Identifier: MIT
#include "platform/linux/machine/session_spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "platform/linux/files/unique_fd.h"

namespace nimbo {
namespace {

// The kernel's form of a list of texts; it points into `texts`.
std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

/// `prepare` adds what is done in the child before its program begins: after it has got a session and clean signals,
/// and before all descriptors from `firstClosed` on are closed. Its result is 0 or an error number. `words` are the
/// name that the program is told, and its arguments.
Result<SessionLeader, std::error_code> spawn(const std::string& executable, std::vector<std::string> words,
                                             char* const* environment,
                                             const std::function<int(posix_spawn_file_actions_t* steps)>& prepare,
                                             int firstClosed = STDERR_FILENO + 1) {
  const std::vector<char*> wordPointers = pointers(words);

  sigset_t none;
  sigset_t all;
  ::sigemptyset(&none);
  ::sigfillset(&all);
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setsigdefault(&attributes, &all);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  posix_spawn_file_actions_t steps;
  ::posix_spawn_file_actions_init(&steps);

  SessionLeader leader;
  int error = prepare(&steps);
  if (error == 0) error = ::posix_spawn_file_actions_addclosefrom_np(&steps, firstClosed);
  if (error == 0) {
    error = ::posix_spawn(&leader.pid, executable.c_str(), &steps, &attributes, wordPointers.data(), environment);
  }
  ::posix_spawn_file_actions_destroy(&steps);
  ::posix_spawnattr_destroy(&attributes);
  if (error != 0) return tl::unexpected(std::error_code(error, std::generic_category()));

  leader.descriptor = processDescriptor(leader.pid);
  if (leader.descriptor) return leader;
  const std::error_code reason = lastError();
  if (reason != std::errc::no_such_process) {  // else the number is nobody's or a stranger's
    ::kill(leader.pid, SIGKILL);
    ::waitpid(leader.pid, nullptr, 0);
  }
  return tl::unexpected(reason);
}

std::vector<std::string> commandOf(const std::string& executable, const std::vector<std::string>& arguments) {
  std::vector<std::string> words{executable};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return words;
}

}  // namespace

Result<SessionLeader, std::error_code> spawnOnTerminal(const ChildProgram& program, const std::string& terminal) {
  std::vector<std::string> variables = program.environment;
  const auto onTerminal = [&](posix_spawn_file_actions_t* steps) {
    // A terminal that a session leader opens becomes its controlling one.
    int error = ::posix_spawn_file_actions_addopen(steps, STDIN_FILENO, terminal.c_str(), O_RDWR, 0);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
      if (error == 0) error = ::posix_spawn_file_actions_adddup2(steps, STDIN_FILENO, output);
    }
    return error != 0 ? error : ::posix_spawn_file_actions_addchdir_np(steps, program.folder.c_str());
  };
  return spawn(program.executable, commandOf(program.executable, program.arguments), pointers(variables).data(),
               onTerminal);
}

Result<SessionLeader, std::error_code> spawnWithoutInput(const std::string& executable,
                                                         const std::vector<std::string>& arguments) {
  return spawn(executable, commandOf(executable, arguments), ::environ, [](posix_spawn_file_actions_t* steps) {
    return ::posix_spawn_file_actions_addopen(steps, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  });
}

Result<SessionLeader, std::error_code> spawnWithInput(const UniqueFd& executable, const std::vector<std::string>& words,
                                                      const UniqueFd& input) {
  constexpr int kExecutable = STDERR_FILENO + 1;
  const auto withInput = [&](posix_spawn_file_actions_t* steps) {
    const int error = ::posix_spawn_file_actions_adddup2(steps, input.get(), STDIN_FILENO);
    return error != 0 ? error : ::posix_spawn_file_actions_adddup2(steps, executable.get(), kExecutable);
  };
  return spawn("/proc/self/fd/" + std::to_string(kExecutable), words, ::environ, withInput, kExecutable + 1);
}

// glibc 2.36 declares its wrapper without C linkage.
UniqueFd processDescriptor(pid_t pid) { return UniqueFd(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))); }

}  // namespace nimbo
