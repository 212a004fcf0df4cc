// SPDX-License-Identifier: MIT
// Everything that the program says, on macOS and on Linux.
#include <gtest/gtest.h>

#include <boost/pfr.hpp>
#include <nlohmann/json.hpp>

#include "app/app_delegate_fixture.h"
#include "platform/linux/desktop/linux_wording.h"
#include "ui/remote/records.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

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

// All texts with a word of the system; so this also shows that the walk leaves none out.
TEST_F(WordingTest, MacSaysEachTextToTheLetter) {
  walk();
  for (const char* const text :
       {"Activity Monitor ↗",
        "⌘Q",
        "CPU temperature unavailable on this Mac",
        "Memory stored on disk. Swap may remain allocated after pressure subsides.",
        "Keep Mac awake",
        "Your Mac is staying awake",
        "Off by default: the display may sleep while the Mac stays awake.",
        "Keep your MacBook’s lid open. Manual Sleep still applies. App-specific background limits still apply.",
        "macOS couldn’t keep your Mac awake (error 5). Please try again.",
        "macOS couldn’t turn the display off. Your Mac is still awake.",
        "Connect the charger to keep this Mac awake.",
        "Nimbo — keep Mac awake while work continues",
        "Nimbo — keep display on",
        "Quitting or installing an update ends this session. Your Mac may sleep afterward.",
        "Choose what appears in your menu bar.",
        "AI menu bar quotas",
        "AI menu bar fill",
        "Nimbo stays in the menu bar. Settings are saved as you change them.",
        "Approval needed in System Settings → General → Login Items. Click above to open it.",
        "A small native companion for your Mac.",
        "Widget sharing unavailable. Install a signed build with its app group configured.",
        "Your menu bar, your way",
        "Sensor availability varies by Mac.",
        "Choose menu bar content and order in General.",
        "Uses your existing Codex sign-in on this Mac.",
        "Allow Accessibility, then leave Claude’s\nSettings → Usage page open.",
        "Usage is read directly from each provider. Nimbo does not upload\n"
        "your credentials or usage to an Nimbo server. Open the AI Usage\n"
        "tab in the menu bar to see limits and reset times.",
        "Leave off to let the display sleep while your Mac works.",
        "Start or stop sessions from the Awake tab or the menu bar.\n"
        "Keep your MacBook’s lid open; manual Sleep may be refused during a session.",
        "Keep Nimbo in Applications before enabling launch at login. Permission denied",
        "Sign-in access timed out. Check Keychain access and refresh.",
        "A sign-in read is still waiting on Keychain. Check for a macOS prompt, then refresh.",
        "Install Claude Code and sign in to read usage automatically. "
        "Desktop fallback needs Accessibility access. Enable it in Nimbo Settings → AI Usage.",
        "Install Claude Code and sign in to read usage automatically. "
        "Desktop fallback: leave Claude → Settings → Usage open, then refresh.",
        "Nimbo · Resources, AI usage & Keep Awake · Keeping Mac awake"}) {
    EXPECT_TRUE(says(text)) << text;
  }
}

class LinuxWordingTest : public WordingTest {
 protected:
  LinuxWordingTest() { platform.words = linuxWording("", "", {}); }
};

TEST_F(LinuxWordingTest, NoTextSpeaksOfAMac) {
  walk();
  boost::pfr::for_each_field(platform.words, [this](const auto& field) {
    if constexpr (std::is_same_v<decltype(field), const std::string&>) note(field);
  });
  for (const char* const word :
       {"Mac", "menu bar", "⌘", "⇧", "⌥", "Activity Monitor", "Keychain", "Accessibility access", "Allow Accessibility",
        "Applications folder", "in Applications", "app group", "System Settings", "Login Items"}) {
    EXPECT_EQ(said.find(word), std::string::npos) << said.substr(said.find(word) - 60, 120);
  }
}

TEST_F(LinuxWordingTest, TextsAreThoseOfALinuxDesktop) {
  walk();
  for (const char* const text :
       {"System Monitor ↗", "Ctrl+Q", "Keep computer awake", "Your computer is staying awake",
        "Keep your laptop’s lid open. Manual Sleep still applies. App-specific background limits still apply.",
        "The system couldn’t keep your computer awake (error 5). Please try again.",
        "Nimbo — keep computer awake while work continues", "Choose what appears in your tray.", "AI tray quotas",
        "Nimbo stays in the tray. Settings are saved as you change them.",
        "Check that Nimbo is still installed and your autostart folder can be written. Permission denied"}) {
    EXPECT_TRUE(says(text)) << text;
  }
}

}  // namespace
}  // namespace nimbo
