// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "app/app_delegate_fixture.h"
#include "ui/remote/records.h"

namespace nimbo {

/// A program that is led through its windows, menus and failures; all that it says is kept.
class WordingTest : public AppDelegateTest {
 protected:
  /// A text as a whole, as it stands in `said`.
  static std::string whole(const std::string& text) { return nlohmann::json(text).dump(); }
  [[nodiscard]] bool says(const std::string& text) const { return said.find(whole(text)) != std::string::npos; }

  void note(const std::string& text) { said += whole(text); }
  void noteDashboard() { said += encode(RecordForWindows(Show<DashboardContent>{0, content()})); }
  void noteSettings() {
    said += encode(RecordForWindows(Show<SettingsWindowContent>{0, interface.settingsWindows().back()->content()}));
  }
  void noteAlert() {
    ASSERT_FALSE(interface.alerts().empty());
    said += encode(RecordForWindows(OpenAlert{0, interface.alerts().back()->content()}));
  }
  void noteItems() {
    for (const auto& name : platform.bar.identifiers()) {
      const auto& content = platform.bar.item(name)->content;
      for (const auto& text : {content.title.value_or(""), content.toolTip, content.accessibleName}) note(text);
      for (const auto& entry : platform.bar.previewMenu(name).entries) note(entry.title);
    }
  }

  void walk() {
    settings.setMonitorCpu(true);
    settings.setMonitorTemperature(true);
    settings.setMenuAwake(true);
    settings.setUsageEnabled(UsageProvider::codex, true);
    settings.setUsageEnabled(UsageProvider::claude, true);
    platform.celsius.reset();
    platform.widgets.failsToWrite = true;
    platform.bundle.appGroup = "group";
    launch();
    finishWrites();
    walkDashboard();
    walkSession();
    walkUsage();
    walkSettings();
    walkCompactItem();
  }

  void walkDashboard() {
    clickItem("nimbo-memory");
    for (std::size_t tab = 0; tab < 3; ++tab) {
      window()->act(chosen("tabs", tab));
      noteDashboard();
    }
    noteItems();
  }

  // On the page of Keep Awake.
  void walkSession() {
    platform.assertions.refuse(kPreventSystemSleep, 5);
    window()->act(pressed("start"));
    noteDashboard();
    platform.assertions.grant(kPreventSystemSleep);
    window()->act(pressed("start"));
    noteDashboard();
    window()->act(pressed("displayOff"));
    platform.display.fail();
    noteDashboard();
    window()->act(switched("display", true));
    for (const auto& assertion : platform.assertions.held()) note(assertion.reason);
    window()->act(pressed("quit"));
    noteAlert();
    interface.alerts().back()->answer(0);
    clickItem("nimbo-awake");
    window()->act(switched("plugged", true));
    platform.batteries.onBattery(90);
    platform.assertions.manualSleep = false;
    noteDashboard();
    platform.batteries.onMains(90);
  }

  void walkUsage() {
    platform.screens->trusted = false;
    readClaude();
    platform.loop.advance(15s);  // the sign-in is never read
    noteUsage();
    platform.screens->trusted = true;
    window()->act(pressed("refresh"));
    readClaude();
  }
  void readClaude() {
    while (platform.claude.runOne()) continue;
    platform.loop.runPosted();
    noteUsage();
  }
  void noteUsage() {
    window()->act(chosen("tabs", 0));
    noteDashboard();
    noteItems();
  }

  void walkSettings() {
    delegate->openSettings();
    auto& window = *interface.settingsWindows().back();
    noteSettings();
    platform.login.refusal = "Permission denied";
    window.click("login");
    noteAlert();
    platform.login.current = LoginItemStatus::requiresApproval;
    window.press("checkUpdates");
    noteAlert();
    noteSettings();
    platform.desktop.installed.clear();
    window.selectTab(2);
    window.press("enableClaudeDesktop");
    while (platform.utilities.runOne()) continue;
    platform.loop.runPosted();
    noteAlert();
  }

  void walkCompactItem() {
    auto& window = *interface.settingsWindows().back();
    window.selectTab(0);
    window.click("compact");
    noteItems();
    toggleAwake();
    noteItems();
  }

  std::string said;
};

}  // namespace nimbo
