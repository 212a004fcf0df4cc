// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/detached_programs.h"

#include <fmt/format.h>
#include <sys/wait.h>

#include <string_view>
#include <utility>

#include "base/text.h"
#include "platform/linux/files/regular_file.h"
#include "platform/linux/machine/session_spawn.h"

namespace nimbo {

std::optional<std::string> findProgram(const std::string& name, const std::string& searchPath) {
  std::string_view folders = searchPath;
  while (!folders.empty()) {
    const std::string_view folder = takeUntil(folders, ':');
    std::string path = fmt::format("{}/{}", folder, name);
    if (folder.starts_with('/') && isExecutableFile(path)) return path;
  }
  return std::nullopt;
}

bool DetachedPrograms::start(const std::string& path, const std::vector<std::string>& arguments) {
  auto leader = spawnWithoutInput(path, arguments);
  if (!leader) return false;
  const auto child = children_.insert(children_.end(), Child{std::move(leader->descriptor), {}});
  child->ended = loop_.watch(child->process.get(), [this, child] {
    siginfo_t ended{};
    ::waitid(P_PIDFD, static_cast<id_t>(child->process.get()), &ended, WEXITED | WNOHANG);
    children_.erase(child);
  });
  return true;
}

}  // namespace nimbo
