// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/foreground_programs.h"

#include <fmt/format.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/text.h"
#include "platform/linux/machine/proc_file.h"
#include "platform/linux/machine/session_spawn.h"

namespace nimbo {
namespace {

/// While it lives a signal is ignored here, but not in programs that are started.
class IgnoredSignal {
 public:
  explicit IgnoredSignal(int number) : number_(number) {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(number, &ignore, &before_);
  }
  ~IgnoredSignal() { ::sigaction(number_, &before_, nullptr); }
  IgnoredSignal(const IgnoredSignal&) = delete;
  IgnoredSignal& operator=(const IgnoredSignal&) = delete;

  [[nodiscard]] bool wasIgnored() const { return before_.sa_handler == SIG_IGN; }

 private:
  const int number_;
  struct sigaction before_ {};
};

/// The signals of the terminal as they were, and none blocked.
class ChildAttributes {
 public:
  ChildAttributes(const IgnoredSignal& interrupt, const IgnoredSignal& quit) {
    ::posix_spawnattr_init(&attributes_);
    sigset_t set;
    ::sigemptyset(&set);
    ::posix_spawnattr_setsigmask(&attributes_, &set);
    if (!interrupt.wasIgnored()) ::sigaddset(&set, SIGINT);
    if (!quit.wasIgnored()) ::sigaddset(&set, SIGQUIT);
    ::sigaddset(&set, SIGCHLD);
    ::posix_spawnattr_setsigdefault(&attributes_, &set);
    ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  ~ChildAttributes() { ::posix_spawnattr_destroy(&attributes_); }
  ChildAttributes(const ChildAttributes&) = delete;
  ChildAttributes& operator=(const ChildAttributes&) = delete;

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

}  // namespace

Result<int, std::string> UserForegroundPrograms::run(const std::vector<std::string>& command) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);

  const IgnoredSignal interrupt(SIGINT);
  const IgnoredSignal quit(SIGQUIT);
  const ChildAttributes attributes(interrupt, quit);
  pid_t child = 0;
  if (const int failed = ::posix_spawnp(&child, words[0], nullptr, attributes.get(), words.data(), ::environ)) {
    return tl::unexpected(
        fmt::format("{} cannot be started: {}.", printableLine(command[0]), std::generic_category().message(failed)));
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  constexpr int kSignalled = 128;
  return WIFSIGNALED(status) ? kSignalled + WTERMSIG(status) : WEXITSTATUS(status);
}

Result<void, std::string> UserForegroundPrograms::waitFor(const std::vector<std::int32_t>& processes) {
  std::vector<UniqueFd> open;
  open.reserve(processes.size());
  for (const std::int32_t process : processes) {
    open.push_back(processDescriptor(process));
    if (!open.back()) return tl::unexpected(fmt::format("There is no process {}.", process));
  }
  for (const UniqueFd& descriptor : open) {
    pollfd wait{descriptor.get(), POLLIN, 0};
    while (::poll(&wait, 1, -1) < 0 && errno == EINTR) {
    }
  }
  return {};
}

std::string UserForegroundPrograms::nameOf(std::int32_t process) {
  return printableLine(readAttributeLine(fmt::format("/proc/{}/comm", process)));
}

}  // namespace nimbo
