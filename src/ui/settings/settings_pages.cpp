// SPDX-License-Identifier: MIT
#include "ui/settings/settings_pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "ui/settings/settings_controls.h"

namespace nimbo {
namespace {

constexpr Size kPageSize{504, 588};
constexpr double kLeft = 12;
constexpr double kRight = 492;
constexpr double kColumn = 180;
constexpr double kCaptionWidth = 156;
constexpr double kRefusalColumn = 252;
constexpr double kChoiceWidth = 240;
constexpr double kButtonInset = 3;  // what a button leaves free at either side

constexpr double kHeadingHeight = 26;
constexpr double kSubtitleHeight = 18;
constexpr double kSectionHeight = 18;
constexpr double kCheckHeight = 22;
constexpr double kChoiceHeight = 26;
constexpr double kCaptionHeight = 20;
constexpr double kButtonHeight = 28;
constexpr double kLineHeight = 15;

constexpr double kHeadingGap = 12;
constexpr double kSectionGap = 18;
constexpr double kGroupGap = 12;
constexpr double kGap = 4;
constexpr double kTightGap = 2;

// Where a line begins, counted from the left edge.
constexpr double kCheckText = 23;
constexpr double kBesideCaptions = kColumn - kLeft;

/// Sets the controls of one page below each other: captions on the left, what they caption in a column
/// beside them, explanations under what they explain. Reads a stored value when its control is added.
class PageBuilder {
 public:
  PageBuilder(const Settings& settings, const Wording& wording) : settings_(settings), bar_(wording.bar) {}

  void heading(const std::string& title, const std::string& subtitle) {
    label({kLeft, bottom_, kRight - kLeft, kHeadingHeight}, {20, FontWeight::semibold}, title);
    label({kLeft, bottom_ + kTightGap, kRight - kLeft, kSubtitleHeight},
          {13, FontWeight::regular, ColorRole::secondaryLabel}, subtitle);
    bottom_ += kHeadingGap;
  }

  /// Begins a part of the page with a heading of its own.
  void section(const std::string& title) {
    label({kLeft, bottom_ + kSectionGap, kRight - kLeft, kSectionHeight}, {13, FontWeight::semibold}, title);
  }

  /// Leaves more room above what follows.
  void space(double points) { bottom_ += points; }

  /// A check box of the store.
  void check(std::string_view identifier, double x = kLeft, double width = kRight - kLeft) {
    const auto* const found = settingsCheck(identifier);
    assert(found != nullptr);
    check(identifier, found->title, found->isOn(settings_), x, width);
  }

  void check(std::string_view identifier, const std::string& title, bool on, double x = kLeft,
             double width = kRight - kLeft) {
    CheckBoxContent box{std::string(identifier), {x, bottom_ + kTightGap, width, kCheckHeight}, title};
    box.on = on;
    bottom_ = box.frame.maxY();
    controls_.emplace_back(std::move(box));
  }

  /// A check box that is off for good, and why, on one line.
  void checkThatCannotBe(std::string_view identifier, const std::string& title, const std::string& why) {
    check(identifier, title, false, kLeft, kRefusalColumn - kLeft);
    auto& box = std::get<CheckBoxContent>(controls_.back());
    box.enabled = false;
    box.toolTip = why;
    label({kRefusalColumn, bottom_ - (kCheckHeight + kLineHeight) / 2, kRight - kRefusalColumn, kLineHeight},
          {11, FontWeight::regular, ColorRole::secondaryLabel}, why);
    bottom_ = std::get<LabelContent>(controls_.back()).frame.y + (kCheckHeight + kLineHeight) / 2;
  }

  /// Check boxes of the store, side by side in the column.
  void columnChecks(std::initializer_list<std::string_view> identifiers) {
    const bool alone = identifiers.size() == 1;
    const double width = alone ? kRight - kColumn : kChoiceWidth / static_cast<double>(identifiers.size());
    const double above = bottom_;
    double x = kColumn;
    for (const auto identifier : identifiers) {
      bottom_ = above;
      check(identifier, x, width);
      x += width;
    }
  }

  /// A pop-up of the store.
  void choice(std::string_view identifier) {
    const auto* const found = settingsChoice(identifier);
    assert(found != nullptr);
    PopUpContent list{std::string(identifier), {kColumn, bottom_ + kGap, kChoiceWidth, kChoiceHeight}};
    for (const auto& item : found->items) list.items.push_back(item.title);
    list.selected = found->selected(settings_);
    list.accessibleName = fmt::format(fmt::runtime(found->label), bar_);
    // In the middle of the pop-up's height.
    label({kLeft, list.frame.y + (kChoiceHeight - kCaptionHeight) / 2, kCaptionWidth, kCaptionHeight}, {13},
          list.accessibleName);
    bottom_ = list.frame.maxY();
    controls_.emplace_back(std::move(list));
  }

  void button(const std::string& identifier, const std::string& title, double width, double indent = 0) {
    ButtonContent button{identifier, {kLeft + indent - kButtonInset, bottom_ + kGap, width, kButtonHeight}};
    button.title = title;
    bottom_ = button.frame.maxY();
    controls_.emplace_back(std::move(button));
  }

  /// A small text with as many lines as it has line breaks, and at least `lines`.
  void help(const std::string& text, double indent, int lines = 1, ColorRole color = ColorRole::secondaryLabel) {
    const int count = std::max(lines, 1 + static_cast<int>(std::ranges::count(text, '\n')));
    label({kLeft + indent, bottom_, kRight - kLeft - indent, kLineHeight * count}, {11, FontWeight::regular, color},
          text, count);
  }

  /// A small text that stands apart from what is above it.
  void note(const std::string& text, double indent = 0) {
    bottom_ += kGap;
    help(text, indent);
  }

  void warning(const std::string& text) {
    bottom_ += kGap;
    help(text, 0, 2, ColorRole::orange);
  }

  /// Lines in the column, beginning beside the button above.
  void besideButton(std::initializer_list<std::string> lines) {
    bottom_ -= kButtonHeight;
    for (const auto& line : lines) help(line, kBesideCaptions);
  }

  [[nodiscard]] std::vector<SettingsControl> takeControls() { return std::move(controls_); }

 private:
  void label(const Rect& frame, const TextStyle& style, const std::string& text, int lines = 1) {
    LabelContent content{frame, style, text};
    content.lines = lines;
    bottom_ = frame.maxY();
    controls_.emplace_back(std::move(content));
  }

  const Settings& settings_;
  const std::string& bar_;
  std::vector<SettingsControl> controls_;
  double bottom_ = 0;  // of the controls so far
};

std::string versionLine(const BundleInfo& bundle) {
  return "Nimbo " + bundle.shortVersion.value_or("Development") + " (build " + bundle.version.value_or("local") + ")";
}

std::string loginNote(const SettingsFacts& facts) {
  if (facts.loginStatus == LoginItemStatus::requiresApproval) {
    return fmt::format("Approval needed in {}. Click above to open it.", facts.wording.loginSettings);
  }
  return fmt::format("Nimbo stays in the {}. Settings are saved as you change them.", facts.wording.bar);
}

void fillMenuBar(PageBuilder& page, const SettingsFacts& facts) {
  page.heading("General", fmt::format("Choose what appears in your {}.", facts.wording.bar));
  page.choice("preset");
  page.columnChecks({"menuAI", "menuMemory", "menuAwake"});
  page.columnChecks({"compact"});
  page.columnChecks({"menuRotation"});
  for (const auto* const choice :
       {"menuRotationInterval", "aiWindows", "aiFill", "providers", "tabOrder", "memoryStyle"}) {
    page.choice(choice);
  }
  page.space(kGroupGap / 3);
  page.note(
      "Rotation follows tab order and pauses while the dropdown is open.\n"
      "Selecting a category switches off single app icon mode.\n"
      "Hiding all categories leaves one icon so Settings stays reachable.");
  if (facts.widgetMessage) page.warning(*facts.widgetMessage);
}

void fillGeneral(PageBuilder& page, const SettingsFacts& facts) {
  fillMenuBar(page, facts);
  page.section("Startup & updates");
  page.check("login", "Launch at login", facts.loginStatus == LoginItemStatus::enabled);
  page.help(loginNote(facts), kCheckText, 2);
  if (facts.automaticUpdates) {
    page.check("updates", "Check for updates automatically", *facts.automaticUpdates);
  } else {
    page.checkThatCannotBe("updates", "Check for updates automatically", "This build has no update feed.");
  }
  page.button("checkUpdates", "Check for Updates…", 162);
  page.besideButton(
      {versionLine(facts.bundle), fmt::format("A small native companion for your {}.", facts.wording.computer)});
}

void fillMonitors(PageBuilder& page, const SettingsFacts& facts) {
  page.heading(fmt::format("Your {}, your way", facts.wording.bar),
               "Choose what to watch and how much space it takes.");
  page.check("memory");
  page.check("cpu");
  page.check("temperature");
  page.help(fmt::format("Sensor availability varies by {}.", facts.wording.computer), kCheckText);
  page.space(kGroupGap);
  page.note(fmt::format("Choose {} content and order in General.", facts.wording.bar));
  page.space(kGroupGap);
  page.choice("interval");
  page.note("AI usage refreshes separately, every 5 minutes.", kBesideCaptions);
}

void fillUsage(PageBuilder& page, const SettingsFacts& facts) {
  page.heading("See your remaining allowance", "Connect the subscriptions you already use.");
  page.check("codex");
  page.help(fmt::format("Uses your existing Codex sign-in on this {}.", facts.wording.computer), kCheckText);
  page.space(kGroupGap);
  page.check("claude");
  page.help(
      "Reads Claude Code first, then Claude Desktop’s Usage page.\n"
      "Nimbo never reads your Claude password or sign-in token.",
      kCheckText);
  page.space(kGroupGap / 2);
  page.button("enableClaudeDesktop", "Enable desktop fallback…", 208, kCheckText);
  page.space(kGroupGap / 4);
  page.help(facts.wording.desktopFallbackHelp, kCheckText);
  page.space(kGroupGap);
  page.section("Subscription limits, not API billing");
  page.note(
      fmt::format("Usage is read directly from each provider. Nimbo does not upload\n"
                  "your credentials or usage to an Nimbo server. Open the AI Usage\n"
                  "tab in the {} to see limits and reset times.",
                  facts.wording.bar));
}

void fillAwake(PageBuilder& page, const SettingsFacts& facts) {
  page.heading("Let the work finish", "Set the defaults and battery rules for Keep Awake.");
  page.check("display");
  page.help(fmt::format("Leave off to let the display sleep while your {} works.", facts.wording.computer), kCheckText);
  page.space(kGroupGap);
  page.check("power");
  page.space(kGroupGap);
  page.choice("battery");
  page.space(kGroupGap);
  page.note(fmt::format(
      "Start or stop sessions from the Awake tab or the {}.\nKeep your {}’s lid open; {}", facts.wording.bar,
      facts.wording.laptop,
      facts.manualSleepApplies ? "manual Sleep still applies." : "manual Sleep may be refused during a session."));
}

struct Page {
  const char* label;
  void (*fill)(PageBuilder& page, const SettingsFacts& facts);
};
constexpr std::array<Page, kSettingsTabCount> kPages{{
    {"General", fillGeneral},
    {"Monitors", fillMonitors},
    {"AI Usage", fillUsage},
    {"Keep Awake", fillAwake},
}};

}  // namespace

SettingsWindowContent settingsWindowContent(const SettingsFacts& facts, std::size_t selectedTab) {
  SettingsWindowContent content{"Nimbo Settings", {560, 680}, {{28, 20, 504, 28}, {}, selectedTab}, {}};
  for (const auto& [label, fill] : kPages) {
    PageBuilder builder(facts.settings, facts.wording);
    fill(builder, facts);
    const bool visible = content.pages.size() == selectedTab;
    content.tabs.labels.emplace_back(label);
    content.pages.push_back({{28, 68, kPageSize.width, kPageSize.height}, label, builder.takeControls(), visible});
  }
  return content;
}

}  // namespace nimbo
