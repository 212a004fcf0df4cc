// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_programs.h"

#include <fmt/format.h>
#include <sys/wait.h>
#include <algorithm>

#include <array>
#include <utility>

#include "base/text.h"
#include "platform/linux/machine/session_spawn.h"
#include "platform/posix/files/regular_file.h"

namespace nimbo {
namespace {

struct Candidate {
  std::string_view desktop;
  std::string_view program;
  std::vector<std::string_view> desktopIds = {program};
};

const std::array<Candidate, 12>& candidates() {
  static const std::array<Candidate, 12> kCandidates{{
      {"GNOME", "gnome-system-monitor", {"org.gnome.SystemMonitor", "gnome-system-monitor"}},
      {"KDE", "plasma-systemmonitor", {"org.kde.plasma-systemmonitor"}},
      {"KDE", "ksysguard", {"org.kde.ksysguard"}},
      {"XFCE", "xfce4-taskmanager"},
      {"MATE", "mate-system-monitor"},
      {"X-Cinnamon", "gnome-system-monitor", {"org.gnome.SystemMonitor", "gnome-system-monitor"}},
      {"LXQt", "qps"},
      {"LXDE", "lxtask"},
      {"Deepin", "deepin-system-monitor"},
      {"Pantheon", "io.elementary.monitor"},
      {"", "missioncenter", {"io.missioncenter.MissionCenter"}},
      {"", "resources", {"net.nokyan.Resources"}},
  }};
  return kCandidates;
}

}  // namespace

bool desktopIs(std::string_view currentDesktop, std::string_view name) {
  while (!currentDesktop.empty()) {
    if (equalsIgnoringCase(takeUntil(currentDesktop, ':'), name)) return true;
  }
  return false;
}

bool desktopIsAny(std::string_view currentDesktop, std::initializer_list<std::string_view> names) {
  return std::ranges::any_of(names, [&](std::string_view name) { return desktopIs(currentDesktop, name); });
}

std::optional<SystemMonitor> findSystemMonitor(std::string_view currentDesktop, const std::string& searchPath) {
  for (const bool isOwn : {true, false}) {
    for (const Candidate& candidate : candidates()) {
      const bool belongs = !candidate.desktop.empty() && desktopIs(currentDesktop, candidate.desktop);
      if (belongs != isOwn) continue;
      if (auto path = findProgram(std::string(candidate.program), searchPath)) {
        return SystemMonitor{std::move(*path), candidate.desktopIds};
      }
    }
  }
  return std::nullopt;
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
