// SPDX-License-Identifier: MIT
#include "platform/linux/machine/session_spawn.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

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

/// What happens to a child before its program begins: first it gets a session and clean signals, then
/// come the steps that were added, and last all other descriptors are closed.
class SessionStart {
 public:
  SessionStart() {
    sigset_t none;
    sigset_t all;
    ::sigemptyset(&none);
    ::sigfillset(&all);
    ::posix_spawnattr_init(&attributes_);
    ::posix_spawnattr_setsigmask(&attributes_, &none);
    ::posix_spawnattr_setsigdefault(&attributes_, &all);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    ::posix_spawn_file_actions_init(&steps_);
  }
  ~SessionStart() {
    ::posix_spawn_file_actions_destroy(&steps_);
    ::posix_spawnattr_destroy(&attributes_);
  }
  SessionStart(const SessionStart&) = delete;
  SessionStart& operator=(const SessionStart&) = delete;

  void openInput(const char* path, int flags) {
    note(::posix_spawn_file_actions_addopen(&steps_, STDIN_FILENO, path, flags, 0));
  }
  void copyInputTo(int output) { note(::posix_spawn_file_actions_adddup2(&steps_, STDIN_FILENO, output)); }
  void enter(const std::string& folder) { note(::posix_spawn_file_actions_addchdir_np(&steps_, folder.c_str())); }

  [[nodiscard]] Result<SessionLeader, std::error_code> spawn(const std::string& executable,
                                                             const std::vector<std::string>& arguments,
                                                             char* const* environment) {
    std::vector<std::string> words{executable};
    words.insert(words.end(), arguments.begin(), arguments.end());
    SessionLeader leader;
    note(::posix_spawn_file_actions_addclosefrom_np(&steps_, STDERR_FILENO + 1));
    if (error_ == 0) {
      note(::posix_spawn(&leader.pid, executable.c_str(), &steps_, &attributes_, pointers(words).data(), environment));
    }
    if (error_ != 0) return tl::unexpected(std::error_code(error_, std::generic_category()));
    leader.descriptor = processDescriptor(leader.pid);
    if (leader.descriptor) return leader;
    const std::error_code reason = lastError();
    if (reason != std::errc::no_such_process) {  // else the number is nobody's or a stranger's
      ::kill(leader.pid, SIGKILL);
      ::waitpid(leader.pid, nullptr, 0);
    }
    return tl::unexpected(reason);
  }

 private:
  void note(int error) {
    if (error_ == 0) error_ = error;
  }

  posix_spawnattr_t attributes_{};
  posix_spawn_file_actions_t steps_{};
  int error_ = 0;  // the first one
};

}  // namespace

Result<SessionLeader, std::error_code> spawnOnTerminal(const ChildProgram& program, const std::string& terminal) {
  SessionStart start;
  // A terminal that a session leader opens becomes its controlling one.
  start.openInput(terminal.c_str(), O_RDWR);
  start.copyInputTo(STDOUT_FILENO);
  start.copyInputTo(STDERR_FILENO);
  start.enter(program.folder);
  std::vector<std::string> variables = program.environment;
  return start.spawn(program.executable, program.arguments, pointers(variables).data());
}

Result<SessionLeader, std::error_code> spawnWithoutInput(const std::string& executable,
                                                         const std::vector<std::string>& arguments) {
  SessionStart start;
  start.openInput("/dev/null", O_RDONLY);
  return start.spawn(executable, arguments, ::environ);
}

// glibc 2.36 declares its wrapper without C linkage.
UniqueFd processDescriptor(pid_t pid) { return UniqueFd(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0))); }

}  // namespace nimbo
