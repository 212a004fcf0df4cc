// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/pty_program.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/linux/terminal/session_processes.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

constexpr milliseconds kPatienceAtDestruction{500};

// Only a zombie or a process that was killed is asked about: this returns soon.
void awaitEnd(const UniqueFd& process, int alsoReap) {
  siginfo_t ended{};
  while (::waitid(P_PIDFD, static_cast<id_t>(process.get()), &ended, WEXITED | alsoReap) != 0 && errno == EINTR) {
  }
}

constexpr int kLeaveZombie = WNOWAIT;
constexpr int kReap = 0;

}  // namespace

PtyProgram::PtyProgram(UniqueFd terminal, std::string secondary, SessionLeader leader, std::filesystem::path procRoot)
    : terminal_(std::move(terminal)),
      secondary_(std::move(secondary)),
      leader_(std::move(leader)),
      procRoot_(std::move(procRoot)) {}

PtyProgram::~PtyProgram() { stop(kPatienceAtDestruction); }

TerminalProgram::Input PtyProgram::read(std::string& bytes, milliseconds patience) {
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

bool PtyProgram::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(terminal_.get(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool PtyProgram::running() { return leader_.descriptor && !endsWithin(milliseconds{0}); }

void PtyProgram::stop(milliseconds patience) {
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

// Throws away what the program still writes: one that says goodbye to a full terminal would wait for a reader.
bool PtyProgram::endsWithin(milliseconds patience) {
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
void PtyProgram::endSession() {
  killSessionMembers(procRoot_, leader_.pid);
  if (isHeld()) killHolders(procRoot_, secondary_);
}

bool PtyProgram::isHeld() const {
  pollfd terminal{.fd = terminal_.get(), .events = 0, .revents = 0};
  return ::poll(&terminal, 1, 0) == 0;
}

}  // namespace nimbo
