// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/session_spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <vector>

#include "platform/linux/files/last_error.h"

namespace nimbo {
namespace {

class SpawnAttributes {
 public:
  SpawnAttributes() { ::posix_spawnattr_init(&attributes_); }
  ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;

  void leadSessionWithCleanSignals() {
    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

class SpawnActions {
 public:
  SpawnActions() { ::posix_spawn_file_actions_init(&actions_); }
  ~SpawnActions() { ::posix_spawn_file_actions_destroy(&actions_); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;

  // The actions come after setsid(), and a terminal that a session leader opens becomes its
  // controlling one.
  [[nodiscard]] int standOn(const std::string& terminal) {
    int error = ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, terminal.c_str(), O_RDWR, 0);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
      if (error == 0) error = ::posix_spawn_file_actions_adddup2(&actions_, STDIN_FILENO, output);
    }
    return error;
  }

  [[nodiscard]] int startIn(const std::string& folder) {
    return ::posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
  }

  [[nodiscard]] int closeAllOthers() {
    return ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
  }

  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

// The kernel's form of a list of texts; it points into `texts`.
std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

Result<pid_t, std::error_code> spawn(const ChildProgram& program, const SpawnActions& actions) {
  std::vector<std::string> words{program.executable};
  words.insert(words.end(), program.arguments.begin(), program.arguments.end());
  std::vector<std::string> variables = program.environment;
  SpawnAttributes attributes;
  attributes.leadSessionWithCleanSignals();
  pid_t pid = 0;
  const int error = ::posix_spawn(&pid, program.executable.c_str(), actions.get(), attributes.get(),
                                  pointers(words).data(), pointers(variables).data());
  if (error != 0) return tl::unexpected(std::error_code(error, std::generic_category()));
  return pid;
}

}  // namespace

Result<SessionLeader, std::error_code> spawnSession(const ChildProgram& program, const std::string& terminal) {
  SpawnActions actions;
  int error = actions.standOn(terminal);
  if (error == 0) error = actions.startIn(program.folder);
  if (error == 0) error = actions.closeAllOthers();
  if (error != 0) return tl::unexpected(std::error_code(error, std::generic_category()));
  const auto pid = spawn(program, actions);
  if (!pid) return tl::unexpected(pid.error());
  // glibc 2.36 declares its wrapper without C linkage.
  SessionLeader leader{*pid, UniqueFd(static_cast<int>(::syscall(SYS_pidfd_open, *pid, 0)))};
  if (leader.descriptor) return leader;
  const std::error_code reason = lastError();
  if (reason != std::errc::no_such_process) {  // else the number is nobody's or a stranger's
    ::kill(*pid, SIGKILL);
    ::waitpid(*pid, nullptr, 0);
  }
  return tl::unexpected(reason);
}

}  // namespace nimbo
