// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/pty_terminals.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>

#include <array>
#include <utility>

#include "platform/linux/files/last_error.h"
#include "platform/linux/files/unique_fd.h"
#include "platform/linux/terminal/pty_program.h"
#include "platform/linux/terminal/session_spawn.h"

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

class Pty final : public PseudoTerminal {
 public:
  Pty(UniqueFd primary, std::string secondary, const std::filesystem::path& procRoot)
      : primary_(std::move(primary)), secondary_(std::move(secondary)), procRoot_(procRoot) {}

  [[nodiscard]] Result<std::unique_ptr<TerminalProgram>, std::error_code> start(const ChildProgram& program) override {
    auto leader = spawnSession(program, secondary_);
    if (!leader) return tl::unexpected(leader.error());
    return std::make_unique<PtyProgram>(std::move(primary_), secondary_, std::move(*leader), procRoot_);
  }

 private:
  UniqueFd primary_;
  const std::string secondary_;
  const std::filesystem::path procRoot_;
};

}  // namespace

PtyTerminals::PtyTerminals(std::filesystem::path procRoot) : procRoot_(std::move(procRoot)) {}

Result<std::unique_ptr<PseudoTerminal>, std::error_code> PtyTerminals::open(TerminalSize size) {
  auto primary = openPrimary(size);
  if (!primary) return tl::unexpected(primary.error());
  auto secondary = secondaryName(*primary);
  if (!secondary) return tl::unexpected(secondary.error());
  return std::make_unique<Pty>(std::move(*primary), *std::move(secondary), procRoot_);
}

}  // namespace nimbo
