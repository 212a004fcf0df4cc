// SPDX-License-Identifier: MIT
#include "ui/settings/settings_pages.h"

#include <array>

#include "ui/settings/settings_page_builder.h"

namespace nimbo {
namespace {

constexpr double kGroupSpace = 12;

std::string versionLine(const BundleInfo& bundle) {
  return "Nimbo " + bundle.shortVersion.value_or("Development") + " (build " + bundle.version.value_or("local") + ")";
}

const char* loginNote(LoginItemStatus status) {
  if (status == LoginItemStatus::requiresApproval) {
    return "Approval needed in System Settings → General → Login Items. Click above to open it.";
  }
  return "Nimbo stays in the menu bar. Settings are saved as you change them.";
}

void fillMenuBar(SettingsPageBuilder& page, const SettingsFacts& facts) {
  page.heading("General", "Choose what appears in your menu bar.");
  page.choice("preset");
  page.columnChecks({"menuAI", "menuMemory", "menuAwake"});
  page.columnChecks({"compact"});
  page.columnChecks({"menuRotation"});
  for (const auto* const choice :
       {"menuRotationInterval", "aiWindows", "aiFill", "providers", "tabOrder", "memoryStyle"}) {
    page.choice(choice);
  }
  page.space(kGroupSpace / 3);
  page.note(
      "Rotation follows tab order and pauses while the dropdown is open.\n"
      "Selecting a category switches off single app icon mode.\n"
      "Hiding all categories leaves one icon so Settings stays reachable.");
  if (facts.widgetMessage) page.warning(*facts.widgetMessage);
}

void fillGeneral(SettingsPageBuilder& page, const SettingsFacts& facts) {
  fillMenuBar(page, facts);
  page.section("Startup & updates");
  page.check("login", "Launch at login", facts.loginStatus == LoginItemStatus::enabled);
  page.checkHelp(loginNote(facts.loginStatus), 2);
  page.check("updates", "Check for updates automatically", facts.automaticUpdates);
  page.button("checkUpdates", "Check for Updates…", 162);
  page.besideButton({versionLine(facts.bundle), "A small native companion for your Mac."});
}

void fillMonitors(SettingsPageBuilder& page, const SettingsFacts& /*facts*/) {
  page.heading("Your menu bar, your way", "Choose what to watch and how much space it takes.");
  page.check("memory");
  page.check("cpu");
  page.check("temperature");
  page.checkHelp("Sensor availability varies by Mac.");
  page.space(kGroupSpace);
  page.note("Choose menu bar content and order in General.");
  page.space(kGroupSpace);
  page.choice("interval");
  page.choiceHelp("AI usage refreshes separately, every 5 minutes.");
}

void fillUsage(SettingsPageBuilder& page, const SettingsFacts& /*facts*/) {
  page.heading("See your remaining allowance", "Connect the subscriptions you already use.");
  page.check("codex");
  page.checkHelp("Uses your existing Codex sign-in on this Mac.");
  page.space(kGroupSpace);
  page.check("claude");
  page.checkHelp(
      "Reads Claude Code first, then Claude Desktop’s Usage page.\n"
      "Nimbo never reads your Claude password or sign-in token.");
  page.space(kGroupSpace / 2);
  page.checkButton("enableClaudeDesktop", "Enable desktop fallback…", 208);
  page.space(kGroupSpace / 4);
  page.checkHelp("Allow Accessibility, then leave Claude’s\nSettings → Usage page open.");
  page.space(kGroupSpace);
  page.section("Subscription limits, not API billing");
  page.note(
      "Usage is read directly from each provider. Nimbo does not upload\n"
      "your credentials or usage to an Nimbo server. Open the AI Usage\n"
      "tab in the menu bar to see limits and reset times.");
}

void fillAwake(SettingsPageBuilder& page, const SettingsFacts& /*facts*/) {
  page.heading("Let the work finish", "Set the defaults and battery rules for Keep Awake.");
  page.check("display");
  page.checkHelp("Leave off to let the display sleep while your Mac works.");
  page.space(kGroupSpace);
  page.check("power");
  page.space(kGroupSpace);
  page.choice("battery");
  page.space(kGroupSpace);
  page.note(
      "Start or stop sessions from the Awake tab or the menu bar.\n"
      "Keep your MacBook’s lid open; manual Sleep still applies.");
}

struct Page {
  const char* label;
  void (*fill)(SettingsPageBuilder& page, const SettingsFacts& facts);
};
constexpr std::array<Page, kSettingsPageCount> kPages{{
    {"General", fillGeneral},
    {"Monitors", fillMonitors},
    {"AI Usage", fillUsage},
    {"Keep Awake", fillAwake},
}};

SettingsPageContent contentOf(const Page& page, const SettingsFacts& facts) {
  SettingsPageBuilder builder(facts.settings);
  page.fill(builder, facts);
  return {{28, 68, kSettingsPageSize.width, kSettingsPageSize.height}, page.label, builder.takeControls()};
}

}  // namespace

SettingsWindowContent settingsWindowContent(const SettingsFacts& facts, std::size_t selectedPage) {
  SettingsWindowContent content{"Nimbo Settings", {560, 680}, {{28, 20, 504, 28}, {}, selectedPage}, {}};
  for (const auto& page : kPages) {
    content.tabs.labels.emplace_back(page.label);
    content.pages.push_back(contentOf(page, facts));
    content.pages.back().visible = content.pages.size() == selectedPage + 1;
  }
  return content;
}

}  // namespace nimbo
