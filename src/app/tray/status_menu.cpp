// SPDX-License-Identifier: MIT
#include "app/tray/status_menu.h"

#include <string>
#include <utility>

namespace nimbo {
namespace {

MenuEntry entry(std::string title, std::function<void()> action, std::string keyEquivalent = {}) {
  const bool enabled = static_cast<bool>(action);
  return {MenuEntry::Kind::action, std::move(title), enabled, std::move(keyEquivalent), std::move(action)};
}

MenuEntry separator() { return {MenuEntry::Kind::separator, {}, false, {}, {}}; }

}  // namespace

StatusMenu makeStatusMenu(const StatusMenuActions& actions, AwakeSession session) {
  const bool running = session == AwakeSession::running;
  return {"Nimbo",
          {
              entry(running ? "Stop awake session" : "Keep awake until stopped", actions.quickToggleAwake),
              separator(),
              entry("Settings…", actions.openSettings, ","),
              entry("Check for Updates…", actions.checkForUpdates),
              separator(),
              entry("Quit Nimbo", actions.quit),
          }};
}

}  // namespace nimbo
