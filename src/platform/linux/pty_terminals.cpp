// SPDX-License-Identifier: MIT
#include "platform/linux/pty_terminals.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>

#include <array>
#include <utility>

#include "platform/linux/last_error.h"
#include "platform/linux/pty_program.h"
#include "platform/linux/session_spawn.h"
#include "platform/linux/unique_fd.h"

namespace nimbo {
namespace {

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

tl::unexpected<TerminalError> noTerminal(std::error_code code) {
  return tl::unexpected(TerminalError{TerminalError::Kind::noTerminal, code});
}

tl::unexpected<TerminalError> notStarted(std::error_code code) {
  return tl::unexpected(TerminalError{TerminalError::Kind::notStarted, code});
}

}  // namespace

PtyTerminals::PtyTerminals(std::filesystem::path procRoot) : procRoot_(std::move(procRoot)) {}

Result<std::unique_ptr<TerminalProgram>, TerminalError> PtyTerminals::start(const ChildProgram& program,
                                                                            TerminalSize size) {
  auto primary = openPrimary(size);
  if (!primary) return noTerminal(primary.error());
  auto secondary = secondaryName(*primary);
  if (!secondary) return noTerminal(secondary.error());
  auto leader = spawnSession(program, *secondary);
  if (!leader) return notStarted(leader.error());
  return std::make_unique<PtyProgram>(std::move(*primary), *std::move(secondary), std::move(*leader), procRoot_);
}

}  // namespace nimbo
