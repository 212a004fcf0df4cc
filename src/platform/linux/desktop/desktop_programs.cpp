// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_programs.h"

#include <fmt/format.h>
#include <sys/wait.h>

#include <utility>

#include "base/text.h"
#include "platform/linux/files/regular_file.h"
#include "platform/linux/machine/session_spawn.h"

namespace nimbo {
namespace {

struct Candidate {
  std::string_view desktop;
  std::string_view program;
};

constexpr Candidate kCandidates[] = {
    {"GNOME", "gnome-system-monitor"},
    {"KDE", "plasma-systemmonitor"},
    {"KDE", "ksysguard"},
    {"XFCE", "xfce4-taskmanager"},
    {"MATE", "mate-system-monitor"},
    {"X-Cinnamon", "gnome-system-monitor"},
    {"LXQt", "qps"},
    {"LXDE", "lxtask"},
    {"Deepin", "deepin-system-monitor"},
    {"Pantheon", "io.elementary.monitor"},
    {"", "missioncenter"},
    {"", "resources"},
};

}  // namespace

bool desktopIs(std::string_view currentDesktop, std::string_view name) {
  while (!currentDesktop.empty()) {
    if (equalsIgnoringCase(takeUntil(currentDesktop, ':'), name)) return true;
  }
  return false;
}

std::vector<std::string_view> systemMonitorPrograms(std::string_view currentDesktop) {
  std::vector<std::string_view> programs;
  for (const bool isOwn : {true, false}) {
    for (const Candidate& candidate : kCandidates) {
      const bool belongs = !candidate.desktop.empty() && desktopIs(currentDesktop, candidate.desktop);
      if (belongs == isOwn) programs.push_back(candidate.program);
    }
  }
  return programs;
}

std::optional<std::string> findProgram(const std::string& name, const std::string& searchPath) {
  std::string_view folders = searchPath;
  while (!folders.empty()) {
    const std::string_view folder = takeUntil(folders, ':');
    std::string path = fmt::format("{}/{}", folder, name);
    if (folder.starts_with('/') && isExecutableFile(path)) return path;
  }
  return std::nullopt;
}

bool DetachedPrograms::start(const std::vector<std::string>& command) {
  if (command.empty()) return false;
  auto leader = spawnWithoutInput(command.front(), {command.begin() + 1, command.end()});
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
