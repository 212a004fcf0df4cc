// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/system_monitor_programs.h"

#include "platform/linux/desktop/desktop_name.h"

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

std::vector<std::string_view> systemMonitorPrograms(std::string_view desktop) {
  std::vector<std::string_view> own;
  std::vector<std::string_view> others;
  for (const Candidate& candidate : kCandidates) {
    const bool isOwn = !candidate.desktop.empty() && desktopIs(desktop, candidate.desktop);
    (isOwn ? own : others).push_back(candidate.program);
  }
  own.insert(own.end(), others.begin(), others.end());
  return own;
}

}  // namespace nimbo
