// SPDX-License-Identifier: MIT
#include "platform/linux/terminal/session_processes.h"

#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <vector>

#include "platform/linux/machine/proc_file.h"
#include "platform/linux/machine/session_spawn.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

using Condition = std::function<bool(pid_t)>;

constexpr const char* kProcRoot = "/proc";
constexpr int kMillisecondsToDie = 100;
// A process that forks while it is looked for may escape one round.
constexpr int kMaximumRounds = 8;

std::vector<pid_t> matching(const Condition& condition) {
  std::vector<pid_t> result;
  visitFolder(kProcRoot, [&](std::string_view name) {
    const auto number = parseNumber(name);
    const auto pid = static_cast<pid_t>(number.value_or(0));
    if (number && pid != ::getpid() && condition(pid)) result.push_back(pid);
  });
  return result;
}

// The number may pass to another process at any moment, a descriptor stays with its own: what
// matches after it was opened is what gets the signal.
void kill(pid_t pid, const Condition& condition) {
  const UniqueFd process = processDescriptor(pid);
  if (!process || !condition(pid)) return;
  if (::syscall(SYS_pidfd_send_signal, process.get(), SIGKILL, nullptr, 0) != 0) return;
  pollfd ended{.fd = process.get(), .events = POLLIN, .revents = 0};
  ::poll(&ended, 1, kMillisecondsToDie);
}

void killAll(const Condition& condition) {
  for (int round = 0; round < kMaximumRounds; ++round) {
    const auto found = matching(condition);
    if (found.empty()) return;
    for (const pid_t pid : found) kill(pid, condition);
  }
}

bool isSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// The name alone does not tell: in a container another terminal may have the same one.
bool holds(const fs::path& process, const std::string& path, const struct stat& file) {
  bool found = false;
  const fs::path folder = process / "fd";
  visitFolder(folder, [&](std::string_view name) {
    std::error_code error;
    if (found || fs::read_symlink(folder / name, error) != path) return;
    struct stat held {};
    found = ::stat((folder / name).c_str(), &held) == 0 && isSame(held, file);
  });
  return found;
}

void killSessionMembers(pid_t leader) {
  killAll([&](pid_t pid) {
    const auto text = readAttribute(fs::path(kProcRoot) / std::to_string(pid) / "stat");
    const auto place = text ? parseProcessPlace(*text) : std::nullopt;
    return place && !place->zombie && place->session == leader;
  });
}

void killHolders(const std::string& path) {
  struct stat file {};
  if (::stat(path.c_str(), &file) != 0) return;
  killAll([&](pid_t pid) { return holds(fs::path(kProcRoot) / std::to_string(pid), path, file); });
}

}  // namespace

std::optional<ProcessPlace> parseProcessPlace(std::string_view text) {
  // "PID (name) state parent group session …"; the name may hold anything, parentheses too.
  const auto nameEnd = text.rfind(')');
  if (nameEnd == std::string_view::npos) return std::nullopt;
  text.remove_prefix(nameEnd + 1);
  const std::string_view state = takeWord(text);
  for (int skipped = 0; skipped < 2; ++skipped) (void)takeWord(text);
  const auto session = parseNumber(takeWord(text));
  if (!session) return std::nullopt;
  return ProcessPlace{.zombie = state == "Z" || state == "X", .session = static_cast<pid_t>(*session)};
}

TerminalSystem procfsTerminalSystem() { return {closeFrom, killSessionMembers, killHolders}; }

}  // namespace nimbo
