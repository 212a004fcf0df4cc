// SPDX-License-Identifier: MIT
#include "platform/posix/terminal/pty_terminals.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <utility>

#include "platform/posix/files/unique_fd.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

constexpr milliseconds kTimeToEndAtDestruction{500};

/// How often it is looked whether a program that was asked to end has ended.
constexpr milliseconds kLook{20};

/// Whether a child has ended, which stays one to be reaped. Without WNOHANG it is waited for.
bool hasEnded(pid_t child, int options) {
  siginfo_t ended{};
  int failed = 0;
  do {
    failed = ::waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOWAIT | options);
  } while (failed != 0 && errno == EINTR);
  return failed != 0 || ended.si_pid == child;
}

void reap(pid_t child) {
  while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

/// The child at the other end of a pseudo-terminal, and its whole session.
class PtyProgram final : public TerminalProgram {
 public:
  /// `terminal` is the primary side and does not block; `secondary` names the other one.
  PtyProgram(UniqueFd terminal, std::string secondary, pid_t leader, const TerminalSystem& system)
      : terminal_(std::move(terminal)), secondary_(std::move(secondary)), leader_(leader), system_(system) {}
  ~PtyProgram() override { stop(kTimeToEndAtDestruction); }
  PtyProgram(const PtyProgram&) = delete;
  PtyProgram& operator=(const PtyProgram&) = delete;

  [[nodiscard]] Input read(std::string& bytes, milliseconds patience) override {
    pollfd terminal{.fd = terminal_.get(), .events = POLLIN, .revents = 0};
    if (::poll(&terminal, 1, static_cast<int>(patience.count())) <= 0) return Input::nothing;
    std::array<char, 8192> buffer;
    const ssize_t count = ::read(terminal_.get(), buffer.data(), buffer.size());
    if (count > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(count));
      return Input::some;
    }
    // A terminal that nobody holds any more is at its end; Linux says an input/output error.
    return count < 0 && (errno == EAGAIN || errno == EINTR) ? Input::nothing : Input::ended;
  }

  [[nodiscard]] bool write(std::string_view bytes) override {
    while (!bytes.empty()) {
      const ssize_t count = ::write(terminal_.get(), bytes.data(), bytes.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

  [[nodiscard]] bool running() override { return leader_ != kReaped && !hasEnded(leader_, WNOHANG); }

  void stop(milliseconds patience) override {
    if (leader_ == kReaped) return;
    if (running()) {
      ::kill(-leader_, SIGTERM);
      if (!endsWithin(patience)) ::kill(-leader_, SIGKILL);
    }
    (void)hasEnded(leader_, 0);  // which is soon
    endSession();
    reap(std::exchange(leader_, kReaped));
  }

 private:
  // Throws away what the program still writes: one that says goodbye to a full terminal would wait for a reader.
  [[nodiscard]] bool endsWithin(milliseconds patience) {
    const auto deadline = SteadyClock::now() + patience;
    pollfd terminal{.fd = terminal_.get(), .events = POLLIN, .revents = 0};
    while (running()) {
      const auto left = std::chrono::ceil<milliseconds>(deadline - SteadyClock::now());
      if (left <= milliseconds{0}) return false;
      std::string thrownAway;
      const int ready = ::poll(&terminal, 1, static_cast<int>(std::min(left, kLook).count()));
      if (ready > 0 && read(thrownAway, milliseconds{0}) == Input::ended) terminal.fd = -1;
    }
    return true;
  }

  // The leader is a zombie meanwhile: as long as it keeps its number, no stranger's session can have it.
  void endSession() {
    system_.killSession(leader_);
    pollfd terminal{.fd = terminal_.get(), .events = 0, .revents = 0};
    const bool isHeld = ::poll(&terminal, 1, 0) == 0;
    if (isHeld) system_.killHolders(secondary_);
  }

  const UniqueFd terminal_;
  const std::string secondary_;
  static constexpr pid_t kReaped = -1;
  pid_t leader_;
  const TerminalSystem system_;
};

class Pty final : public PseudoTerminal {
 public:
  Pty(UniqueFd primary, std::string secondary, const TerminalSystem& system)
      : primary_(std::move(primary)), secondary_(std::move(secondary)), system_(system) {}

  [[nodiscard]] Result<std::unique_ptr<TerminalProgram>, std::error_code> start(const ChildProgram& program) override {
    std::vector<std::string> variables = program.environment;
    const auto environment = pointers(variables);
    const auto onTerminal = [&](posix_spawn_file_actions_t* steps) {
      // A terminal that a session leader opens becomes its controlling one.
      int error = ::posix_spawn_file_actions_addopen(steps, STDIN_FILENO, secondary_.c_str(), O_RDWR, 0);
      for (const int output : {STDOUT_FILENO, STDERR_FILENO}) {
        if (error == 0) error = ::posix_spawn_file_actions_adddup2(steps, STDIN_FILENO, output);
      }
      return error != 0 ? error : ::posix_spawn_file_actions_addchdir_np(steps, program.folder.c_str());
    };
    const auto leader =
        spawnSession({program.executable, commandOf(program.executable, program.arguments), environment.data()},
                     system_.guard, onTerminal);
    if (!leader) return tl::unexpected(leader.error());
    return std::make_unique<PtyProgram>(std::move(primary_), secondary_, *leader, system_);
  }

 private:
  UniqueFd primary_;
  const std::string secondary_;
  const TerminalSystem system_;
};

}  // namespace

// Not by openpty(), whose descriptors are not close-on-exec while another thread may start a program, nor by
// posix_openpt(), which need not know that flag.
Result<std::unique_ptr<PseudoTerminal>, std::error_code> PtyTerminals::open(TerminalSize size) {
  UniqueFd primary(::open("/dev/ptmx", O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  if (!primary || ::grantpt(primary.get()) != 0 || ::unlockpt(primary.get()) != 0) return tl::unexpected(lastError());
  std::array<char, 128> name{};
  if (::ptsname_r(primary.get(), name.data(), name.size()) != 0) return tl::unexpected(lastError());
  // On a Mac only this side has a size. It is not kept open: what a program wrote last would be lost with its session.
  const UniqueFd secondary(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
  const winsize cells{.ws_row = size.rows, .ws_col = size.columns, .ws_xpixel = 0, .ws_ypixel = 0};
  if (!secondary || ::ioctl(secondary.get(), TIOCSWINSZ, &cells) != 0) return tl::unexpected(lastError());
  return std::make_unique<Pty>(std::move(primary), name.data(), system_);
}

}  // namespace nimbo
