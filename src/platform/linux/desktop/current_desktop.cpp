// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/current_desktop.h"

#include "base/text.h"

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
  std::vector<std::string_view> own;
  std::vector<std::string_view> others;
  for (const Candidate& candidate : kCandidates) {
    const bool isOwn = !candidate.desktop.empty() && desktopIs(currentDesktop, candidate.desktop);
    (isOwn ? own : others).push_back(candidate.program);
  }
  own.insert(own.end(), others.begin(), others.end());
  return own;
}

}  // namespace nimbo
