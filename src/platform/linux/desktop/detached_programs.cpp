// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/detached_programs.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <signal.h>
#include <spawn.h>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <string_view>

namespace nimbo {
namespace {

bool isProgram(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

// The main loop blocks the signals it handles; the program must not inherit that.
void setCleanStart(posix_spawnattr_t& attributes) {
  sigset_t none;
  sigset_t all;
  sigemptyset(&none);
  sigfillset(&all);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
}

std::optional<pid_t> spawn(const std::string& path, std::vector<std::string>& arguments) {
  posix_spawnattr_t attributes;
  posix_spawn_file_actions_t actions;
  posix_spawnattr_init(&attributes);
  posix_spawn_file_actions_init(&actions);
  setCleanStart(attributes);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  // Libraries open some that would outlive us in it.
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  std::string program = path;
  std::vector<char*> pointers{program.data()};
  for (auto& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  pid_t pid = 0;
  const int failure = ::posix_spawn(&pid, path.c_str(), &actions, &attributes, pointers.data(), ::environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  return failure == 0 ? std::optional(pid) : std::nullopt;
}

}  // namespace

std::optional<std::string> findProgram(const std::string& name, const std::string& searchPath) {
  std::string_view folders = searchPath;
  while (!folders.empty()) {
    const auto end = folders.find(':');
    const std::string folder(folders.substr(0, end));
    folders.remove_prefix(end == std::string_view::npos ? folders.size() : end + 1);
    if (!folder.starts_with('/')) continue;
    std::string path = fmt::format("{}/{}", folder, name);
    if (isProgram(path)) return path;
  }
  return std::nullopt;
}

bool DetachedPrograms::start(const std::string& path, std::vector<std::string> arguments) {
  const auto pid = spawn(path, arguments);
  if (!pid) return false;
  Child& child = children_.emplace_back();
  child.owner = this;
  // glibc 2.36 declares its wrapper without C linkage.
  child.descriptor.reset(static_cast<int>(::syscall(SYS_pidfd_open, *pid, 0)));
  sd_event_source* source = nullptr;
  sd_event_add_io(event_, &source, child.descriptor.get(), EPOLLIN, onEnded, &child);
  child.source.reset(source);
  return true;
}

int DetachedPrograms::onEnded(sd_event_source* /*source*/, int descriptor, std::uint32_t /*events*/, void* data) {
  const auto* const child = static_cast<Child*>(data);
  siginfo_t ended{};
  ::waitid(P_PIDFD, static_cast<id_t>(descriptor), &ended, WEXITED | WNOHANG);
  child->owner->children_.remove_if([child](const Child& entry) { return &entry == child; });
  return 0;
}

}  // namespace nimbo
