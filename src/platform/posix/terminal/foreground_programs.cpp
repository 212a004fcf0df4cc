// SPDX-License-Identifier: MIT
#include "platform/posix/terminal/foreground_programs.h"

#include <fmt/format.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "base/text.h"

namespace nimbo {
namespace {

std::atomic<pid_t> runningChild = 0;
std::atomic<int> earlySignal = 0;  // came before there was a child

void passOn(int signal) {
  if (const pid_t child = runningChild; child > 0) {
    ::kill(child, signal);
  } else {
    earlySignal = signal;
  }
}

/// While it lives a signal is dealt with in this way, unless it was ignored; but not in programs that are started.
class SignalHandler {
 public:
  SignalHandler(int number, void (*handler)(int)) : number_(number) {
    struct sigaction action {};
    action.sa_handler = handler;
    ::sigaction(number, &action, &before_);
    if (wasIgnored()) ::sigaction(number, &before_, nullptr);
  }
  ~SignalHandler() { ::sigaction(number_, &before_, nullptr); }
  SignalHandler(const SignalHandler&) = delete;
  SignalHandler& operator=(const SignalHandler&) = delete;

  [[nodiscard]] bool wasIgnored() const { return before_.sa_handler == SIG_IGN; }

 private:
  const int number_;
  struct sigaction before_ {};
};

/// The signals of the terminal as they were, and none blocked.
class ChildAttributes {
 public:
  ChildAttributes(const SignalHandler& interrupt, const SignalHandler& quit) {
    ::posix_spawnattr_init(&attributes_);
    sigset_t set;
    sigemptyset(&set);
    ::posix_spawnattr_setsigmask(&attributes_, &set);
    if (!interrupt.wasIgnored()) sigaddset(&set, SIGINT);
    if (!quit.wasIgnored()) sigaddset(&set, SIGQUIT);
    sigaddset(&set, SIGCHLD);
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

  const SignalHandler interrupt(SIGINT, SIG_IGN);
  const SignalHandler quit(SIGQUIT, SIG_IGN);
  const ChildAttributes attributes(interrupt, quit);
  const SignalHandler terminated(SIGTERM, passOn);
  const SignalHandler hungUp(SIGHUP, passOn);
  pid_t child = 0;
  if (const int failed = ::posix_spawnp(&child, words[0], nullptr, attributes.get(), words.data(), environment_)) {
    return tl::unexpected(
        fmt::format("{} cannot be started: {}.", printableLine(command[0]), std::generic_category().message(failed)));
  }
  runningChild = child;
  if (const int early = earlySignal.exchange(0)) passOn(early);
  // Its id must not become another's while a signal can still be passed on.
  siginfo_t ended{};
  while (::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT) < 0 && errno == EINTR) {
  }
  runningChild = 0;
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  constexpr int kSignalled = 128;
  return WIFSIGNALED(status) ? kSignalled + WTERMSIG(status) : WEXITSTATUS(status);
}

void UserForegroundPrograms::terminate() { passOn(SIGTERM); }

bool UserForegroundPrograms::isReadFor(std::chrono::seconds time) {
  pollfd output{STDOUT_FILENO, 0, 0};
  return ::poll(&output, 1, static_cast<int>(std::chrono::milliseconds(time).count())) <= 0;
}

bool UserForegroundPrograms::showsColours() {
  const char* const unwanted = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return ::isatty(STDOUT_FILENO) == 1 && (unwanted == nullptr || *unwanted == '\0') && terminal != nullptr &&
         std::string_view(terminal) != "dumb";
}

}  // namespace nimbo
