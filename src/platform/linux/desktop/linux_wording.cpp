// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/linux_wording.h"

#include <cstddef>
#include <string_view>

#include "platform/linux/desktop/desktop_application.h"
#include "platform/linux/desktop/desktop_programs.h"

namespace nimbo {
namespace {

constexpr std::string_view kSystemMonitor = "System Monitor";
constexpr std::size_t kLongestMonitorName = 16;  // what has room on its button

}  // namespace

Wording linuxWording(const std::string& currentDesktop, const std::string& searchPath,
                     const std::vector<std::filesystem::path>& applicationFolders) {
  const auto monitor = findSystemMonitor(currentDesktop, searchPath);
  auto monitorName = monitor ? applicationName(monitor->desktopIds, applicationFolders) : std::nullopt;
  if (!monitorName || monitorName->size() > kLongestMonitorName) monitorName = kSystemMonitor;
  return {
      .computer = "computer",
      .laptop = "laptop",
      .bar = "tray",
      .system = "The system",
      .systemMonitor = *monitorName,
      .quitKeys = "Ctrl+Q",
      .quitKeysWidth = 40,
      // Often a compressed device in memory (zram).
      .swapPlace = "on disk or compressed",
      .accessibility = "the accessibility bus",
      // Nobody has to approve anything here.
      .loginSettings = "your desktop’s settings",
      .loginAdvice = "Check that Nimbo is still installed and your autostart folder can be written. ",
      .widgetsUnavailable = "Widget sharing unavailable. Check that ~/.local/share can be written and has room.",
      .signInReadStillWaiting = "A sign-in read is still waiting on Codex’s auth.json. Check its disk, then refresh.",
      .signInReadTimedOut = "Sign-in access timed out. Check the disk of Codex’s auth.json and refresh.",
      // Applications offer what they show only if somebody had asked for it when they started.
      .desktopFallbackHelp = "Restart Claude if it is running, then leave its\nSettings → Usage page open.",
      .desktopShowsNothing = "Desktop fallback: restart Claude and open Settings → Usage.",
  };
}

}  // namespace nimbo
