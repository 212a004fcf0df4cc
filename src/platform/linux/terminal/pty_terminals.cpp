// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/pty_terminals.h"

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

#include "platform/linux/files/unique_fd.h"
#include "platform/linux/machine/session_spawn.h"
#include "platform/linux/terminal/session_processes.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

constexpr milliseconds kTimeToEndAtDestruction{500};

// Only a zombie or a process that was killed is asked about: this returns soon.
void awaitEnd(const UniqueFd& process, int alsoReap) {
  siginfo_t ended{};
  while (::waitid(P_PIDFD, static_cast<id_t>(process.get()), &ended, WEXITED | alsoReap) != 0 && errno == EINTR) {
  }
}

constexpr int kLeaveZombie = WNOWAIT;
constexpr int kReap = 0;

/// The child at the other end of a pseudo-terminal, and its whole session.
class PtyProgram final : public TerminalProgram {
 public:
  /// `terminal` is the primary side and does not block; `secondary` names the other one.
  PtyProgram(UniqueFd terminal, std::string secondary, SessionLeader leader, fs::path procRoot)
      : terminal_(std::move(terminal)),
        secondary_(std::move(secondary)),
        leader_(std::move(leader)),
        procRoot_(std::move(procRoot)) {}
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
    // The kernel reports a terminal that nobody holds any more as an input/output error.
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

  [[nodiscard]] bool running() override { return leader_.descriptor && !endsWithin(milliseconds{0}); }

  void stop(milliseconds patience) override {
    if (!leader_.descriptor) return;
    if (running()) {
      ::kill(-leader_.pid, SIGTERM);
      if (!endsWithin(patience)) ::kill(-leader_.pid, SIGKILL);
    }
    awaitEnd(leader_.descriptor, kLeaveZombie);
    endSession();
    awaitEnd(leader_.descriptor, kReap);
    leader_.descriptor.reset();
  }

 private:
  // Throws away what the program still writes: one that says goodbye to a full terminal would wait for a reader.
  [[nodiscard]] bool endsWithin(milliseconds patience) {
    const auto deadline = SteadyClock::now() + patience;
    std::array<pollfd, 2> waited{
        {{.fd = leader_.descriptor.get(), .events = POLLIN, .revents = 0},
         {.fd = patience > milliseconds{0} ? terminal_.get() : -1, .events = POLLIN, .revents = 0}}};
    for (;;) {
      const auto left = std::chrono::ceil<milliseconds>(deadline - SteadyClock::now());
      const int ready = ::poll(waited.data(), waited.size(), static_cast<int>(std::max(left, milliseconds{0}).count()));
      if (ready > 0 && waited[0].revents != 0) return true;
      if (left <= milliseconds{0}) return false;
      std::string thrownAway;
      if (ready > 0 && read(thrownAway, milliseconds{0}) == Input::ended) waited[1].fd = -1;
    }
  }

  // The leader is a zombie meanwhile: as long as it keeps its number, no stranger's session can have it.
  void endSession() {
    killSessionMembers(procRoot_, leader_.pid);
    pollfd terminal{.fd = terminal_.get(), .events = 0, .revents = 0};
    const bool isHeld = ::poll(&terminal, 1, 0) == 0;
    if (isHeld) killHolders(procRoot_, secondary_);
  }

  const UniqueFd terminal_;
  const std::string secondary_;
  SessionLeader leader_;  // without a descriptor once it has been reaped
  const fs::path procRoot_;
};

// Not openpty(): its descriptors are not close-on-exec, and another thread may start a program meanwhile.
Result<UniqueFd, std::error_code> openPrimary(TerminalSize size) {
  UniqueFd primary(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  if (!primary || ::grantpt(primary.get()) != 0 || ::unlockpt(primary.get()) != 0) return tl::unexpected(lastError());
  const winsize cells{.ws_row = size.rows, .ws_col = size.columns, .ws_xpixel = 0, .ws_ypixel = 0};
  if (::ioctl(primary.get(), TIOCSWINSZ, &cells) != 0) return tl::unexpected(lastError());
  return primary;
}

Result<std::string, std::error_code> secondaryName(const UniqueFd& primary) {
  std::array<char, 64> name{};
  const int error = ::ptsname_r(primary.get(), name.data(), name.size());
  if (error != 0) return tl::unexpected(std::error_code(error, std::generic_category()));
  return std::string(name.data());
}

class Pty final : public PseudoTerminal {
 public:
  Pty(UniqueFd primary, std::string secondary, const fs::path& procRoot)
      : primary_(std::move(primary)), secondary_(std::move(secondary)), procRoot_(procRoot) {}

  [[nodiscard]] Result<std::unique_ptr<TerminalProgram>, std::error_code> start(const ChildProgram& program) override {
    auto leader = spawnOnTerminal(program, secondary_);
    if (!leader) return tl::unexpected(leader.error());
    return std::make_unique<PtyProgram>(std::move(primary_), secondary_, std::move(*leader), procRoot_);
  }

 private:
  UniqueFd primary_;
  const std::string secondary_;
  const fs::path procRoot_;
};

}  // namespace

PtyTerminals::PtyTerminals(fs::path procRoot) : procRoot_(std::move(procRoot)) {}

Result<std::unique_ptr<PseudoTerminal>, std::error_code> PtyTerminals::open(TerminalSize size) {
  auto primary = openPrimary(size);
  if (!primary) return tl::unexpected(primary.error());
  auto secondary = secondaryName(*primary);
  if (!secondary) return tl::unexpected(secondary.error());
  return std::make_unique<Pty>(std::move(*primary), *std::move(secondary), procRoot_);
}

}  // namespace nimbo
