// SPDX-License-Identifier: MIT
#include <algorithm>
#include <iterator>

#include "ui/settings/settings_window_fixture.h"

namespace nimbo {
namespace {

using Texts = std::vector<std::string>;

std::string textOf(const LabelContent& label) { return label.text; }
std::string textOf(const CheckBoxContent& box) { return "☐ " + box.title; }
std::string textOf(const PopUpContent& list) { return "▾ " + list.identifier; }
std::string textOf(const ButtonContent& button) { return "[" + button.title + "]"; }

class SettingsTextsTest : public SettingsWindowTest {
 protected:
  /// What somebody reads who goes through a page from top to bottom.
  [[nodiscard]] Texts texts(std::size_t page) const {
    Texts texts;
    for (const auto& control : window.content().pages.at(page).controls) {
      texts.push_back(std::visit([](const auto& shown) { return textOf(shown); }, control));
    }
    return texts;
  }
  [[nodiscard]] bool showsVersion(const std::string& line) {
    controller.syncIfVisible();
    return shows(line);
  }
};

TEST_F(SettingsTextsTest, WindowAndTabs) {
  const auto& content = window.content();
  EXPECT_EQ(content.title, "Nimbo Settings");
  EXPECT_EQ(content.tabs.labels, (Texts{"General", "Monitors", "AI Usage", "Keep Awake"}));
  ASSERT_EQ(content.pages.size(), 4U);
  for (std::size_t page = 0; page < 4; ++page) {
    EXPECT_EQ(content.pages[page].accessibleName, content.tabs.labels[page]);
  }
}

TEST_F(SettingsTextsTest, General) {
  EXPECT_EQ(texts(kGeneralPage), (Texts{"General",
                                        "Choose what appears in your menu bar.",
                                        "Show",
                                        "▾ preset",
                                        "☐ AI",
                                        "☐ Mem",
                                        "☐ Awake",
                                        "☐ Single app icon (hide all readouts)",
                                        "☐ Rotate selected readouts in one icon",
                                        "Rotate every",
                                        "▾ menuRotationInterval",
                                        "AI menu bar quotas",
                                        "▾ aiWindows",
                                        "AI menu bar fill",
                                        "▾ aiFill",
                                        "Subscription order",
                                        "▾ providers",
                                        "Tab order",
                                        "▾ tabOrder",
                                        "Memory icon",
                                        "▾ memoryStyle",
                                        "Rotation follows tab order and pauses while the dropdown is open.\n"
                                        "Selecting a category switches off single app icon mode.\n"
                                        "Hiding all categories leaves one icon so Settings stays reachable.",
                                        "Startup & updates",
                                        "☐ Launch at login",
                                        "Nimbo stays in the menu bar. Settings are saved as you change them.",
                                        "☐ Check for updates automatically",
                                        "[Check for Updates…]",
                                        "Nimbo Development (build local)",
                                        "A small native companion for your Mac."}));
}

TEST_F(SettingsTextsTest, Monitors) {
  EXPECT_EQ(texts(kMonitorsPage), (Texts{"Your menu bar, your way", "Choose what to watch and how much space it takes.",
                                         "☐ Memory", "☐ CPU", "☐ CPU temperature", "Sensor availability varies by Mac.",
                                         "Choose menu bar content and order in General.", "Refresh interval",
                                         "▾ interval", "AI usage refreshes separately, every 5 minutes."}));
}

TEST_F(SettingsTextsTest, Usage) {
  EXPECT_EQ(
      texts(kUsagePage),
      (Texts{"See your remaining allowance", "Connect the subscriptions you already use.", "☐ OpenAI · Codex",
             "Uses your existing Codex sign-in on this Mac.", "☐ Anthropic · Claude",
             "Reads Claude Code first, then Claude Desktop’s Usage page.\n"
             "Nimbo never reads your Claude password or sign-in token.",
             "[Enable desktop fallback…]", "Allow Accessibility, then leave Claude’s\nSettings → Usage page open.",
             "Subscription limits, not API billing",
             "Usage is read directly from each provider. Nimbo does not upload\n"
             "your credentials or usage to an Nimbo server. Open the AI Usage\n"
             "tab in the menu bar to see limits and reset times."}));
}

TEST_F(SettingsTextsTest, KeepAwake) {
  EXPECT_EQ(texts(kAwakePage),
            (Texts{"Let the work finish", "Set the defaults and battery rules for Keep Awake.", "☐ Keep display on too",
                   "Leave off to let the display sleep while your Mac works.", "☐ Only while connected to power",
                   "Stop on battery at", "▾ battery",
                   "Start or stop sessions from the Awake tab or the menu bar.\n"
                   "Keep your MacBook’s lid open; manual Sleep still applies."}));
  manualSleepApplies = false;
  controller.syncIfVisible();
  EXPECT_EQ(texts(kAwakePage).back(),
            "Start or stop sessions from the Awake tab or the menu bar.\n"
            "Keep your MacBook’s lid open; manual Sleep may be refused during a session.");
}

TEST_F(SettingsTextsTest, WidgetMessageStandsUnderTheNoteInASmallTextOfItsOwnColour) {
  widgetMessage = "Widget sharing unavailable.";
  controller.syncIfVisible();
  const auto& controls = window.content().pages.at(kGeneralPage).controls;
  const auto found = std::find_if(controls.begin(), controls.end(), [](const auto& control) {
    const auto* const label = std::get_if<LabelContent>(&control);
    return label != nullptr && label->text == "Widget sharing unavailable.";
  });
  ASSERT_NE(found, controls.end());
  const auto& note = std::get<LabelContent>(*std::prev(found));
  EXPECT_TRUE(note.text.starts_with("Rotation follows tab order"));
  const auto& message = std::get<LabelContent>(*found);
  EXPECT_EQ(message.style.size, note.style.size);
  EXPECT_EQ(message.style.color, ColorRole::orange);
}

TEST_F(SettingsTextsTest, VersionLineNamesWhatTheBundleKnows) {
  EXPECT_TRUE(showsVersion("Nimbo Development (build local)"));
  bundle.shortVersion = "1.2";
  EXPECT_TRUE(showsVersion("Nimbo 1.2 (build local)"));
  bundle.version = "34";
  EXPECT_TRUE(showsVersion("Nimbo 1.2 (build 34)"));
  bundle.shortVersion.reset();
  EXPECT_TRUE(showsVersion("Nimbo Development (build 34)"));
}

}  // namespace
}  // namespace nimbo
