// SPDX-License-Identifier: MIT
#include "ui/remote/records.h"

#include "base/bounded_json.h"
#include "ui/remote/record_codec.h"

namespace nimbo {

constexpr auto lastOf(ColorRole /*of*/) { return ColorRole::fieldBorder; }
constexpr auto lastOf(FontWeight /*of*/) { return FontWeight::semibold; }
constexpr auto lastOf(TextAlignment /*of*/) { return TextAlignment::right; }
constexpr auto lastOf(ButtonLook /*of*/) { return ButtonLook::icon; }
constexpr auto lastOf(UsageProvider /*of*/) { return UsageProvider::claude; }
constexpr auto lastOf(Appearance /*of*/) { return Appearance::dark; }
constexpr auto lastOf(ClosedBy /*of*/) { return ClosedBy::clickElsewhere; }
constexpr auto lastOf(MenuRole /*of*/) { return MenuRole::closeWindow; }
constexpr auto lastOf(WindowName /*of*/) { return WindowName::settings; }

template <class Value, class Type>
concept Of = std::same_as<std::remove_const_t<Value>, Type>;
template <class Value>
concept AnyShow = kIs<std::remove_const_t<Value>, Show>;

// The fields of everything that is sent, in the order of their declaration.
auto fields(Of<Point> auto& v) { return std::tie(v.x, v.y); }
auto fields(Of<Size> auto& v) { return std::tie(v.width, v.height); }
auto fields(Of<Rect> auto& v) { return std::tie(v.x, v.y, v.width, v.height); }
auto fields(Of<RoundedRect> auto& v) { return std::tie(v.rect, v.radius); }
auto fields(Of<TextStyle> auto& v) { return std::tie(v.size, v.weight, v.color, v.alignment, v.monospacedDigits); }
auto fields(Of<LabelContent> auto& v) { return std::tie(v.frame, v.style, v.text, v.toolTip, v.visible, v.lines); }
auto fields(Of<ButtonContent> auto& v) {
  return std::tie(v.identifier, v.frame, v.look, v.textSize, v.title, v.accessibleName, v.toolTip, v.keyEquivalent,
                  v.visible, v.enabled);
}
auto fields(Of<CheckBoxContent> auto& v) {
  return std::tie(v.identifier, v.frame, v.title, v.toolTip, v.on, v.visible, v.enabled);
}
auto fields(Of<PopUpContent> auto& v) {
  return std::tie(v.identifier, v.frame, v.items, v.selected, v.accessibleName, v.visible, v.enabled);
}
auto fields(Of<TextFieldContent> auto& v) {
  return std::tie(v.identifier, v.frame, v.text, v.placeholder, v.accessibleName, v.toolTip, v.visible, v.enabled);
}
auto fields(Of<DatePickerContent> auto& v) {
  return std::tie(v.identifier, v.frame, v.date, v.accessibleName, v.visible, v.enabled);
}
auto fields(Of<TabsContent> auto& v) { return std::tie(v.frame, v.labels, v.selected); }
auto fields(Of<ControlEvent> auto& v) { return std::tie(v.identifier, v.value); }
auto fields(Of<ChartBar> auto& v) { return std::tie(v.shape, v.color, v.alpha, v.clip); }
auto fields(Of<ChartContent> auto& v) {
  return std::tie(v.frame, v.bars, v.opacity, v.accessibleName, v.toolTip, v.progress, v.percent, v.reading, v.visible);
}
auto fields(Of<ProcessListContent> auto& v) { return std::tie(v.frame, v.document, v.labels, v.visible); }
auto fields(Of<MemoryRowContent> auto& v) { return std::tie(v.title, v.value); }
auto fields(Of<ResourcesContent> auto& v) {
  return std::tie(v.hero, v.subtitle, v.history, v.pressure, v.time, v.breakdown, v.rows, v.cpu, v.temperature,
                  v.processTitle, v.lessButton, v.moreButton, v.processes, v.processNote, v.activityButton, v.footer);
}
auto fields(Of<AwakeContent> auto& v) {
  return std::tie(v.state, v.detail, v.start, v.extend, v.durationTitle, v.duration, v.minutes, v.date, v.display,
                  v.plugged, v.batteryTitle, v.battery, v.off, v.note);
}
auto fields(Of<UsageRowContent> auto& v) { return std::tie(v.frame, v.title, v.amount, v.bar, v.reset); }
auto fields(Of<UsageCardContent> auto& v) {
  return std::tie(v.provider, v.frame, v.title, v.link, v.status, v.connect, v.rows);
}
auto fields(Of<UsageContent> auto& v) {
  return std::tie(v.scroll, v.document, v.cards, v.refresh, v.progress, v.configure, v.note);
}
auto fields(Of<DashboardContent> auto& v) {
  return std::tie(v.size, v.title, v.tabs, v.settingsButton, v.page, v.footerSeparator, v.quitButton, v.quitHint);
}
auto fields(Of<WindowPlace> auto& v) { return std::tie(v.item, v.ownItems); }
auto fields(Of<SettingsPageContent> auto& v) { return std::tie(v.frame, v.accessibleName, v.controls, v.visible); }
auto fields(Of<SettingsWindowContent> auto& v) { return std::tie(v.title, v.size, v.tabs, v.pages); }
auto fields(Of<AlertContent> auto& v) { return std::tie(v.title, v.text, v.buttons, v.cancel); }
auto fields(Of<SetAppearance> auto& v) { return std::tie(v.appearance); }
auto fields(Of<Open> auto& v) { return std::tie(v.window, v.serial, v.place); }
auto fields(Of<Close> auto& v) { return std::tie(v.window); }
auto fields(Of<OpenAlert> auto& v) { return std::tie(v.serial, v.content); }
auto fields(Of<PresentAlert> auto& v) { return std::tie(v.serial); }
auto fields(Of<CloseAlert> auto& v) { return std::tie(v.serial); }
auto fields(Of<WindowsReady> auto& v) { return std::tie(v.version); }
auto fields(Of<Acted> auto& v) { return std::tie(v.window, v.number, v.event, v.shown); }
auto fields(Of<BecameKey> auto& v) { return std::tie(v.window); }
auto fields(Of<Closed> auto& v) { return std::tie(v.window, v.serial, v.by); }
auto fields(Of<AlertAnswered> auto& v) { return std::tie(v.serial, v.button); }
auto fields(Of<MenuChosen> auto& v) { return std::tie(v.role); }
auto fields(AnyShow auto& v) { return std::tie(v.handled, v.content); }

namespace {

std::string itemOf(const std::vector<std::string>& items, const ControlEvent& event) {
  const auto* const index = std::get_if<std::size_t>(&event.value);
  return index != nullptr && *index < items.size() ? items[*index] : std::string();
}

/// Looks for the control in whatever part of a content, hidden parts left out.
template <class Part>
void lookFor(const ControlEvent& event, const Part& part, std::optional<std::string>& words) {
  if constexpr (requires { part.visible; }) {
    if (!part.visible) return;
  }
  if constexpr (std::same_as<Part, TabsContent>) {
    if (event.identifier == kTabsIdentifier) words = itemOf(part.labels, event);
  } else if constexpr (requires { part.enabled; }) {
    if (part.identifier != event.identifier || !part.enabled) return;
    words.emplace();
    if constexpr (requires { part.title; }) words = part.title;
    if constexpr (requires { part.items; }) words = itemOf(part.items, event);
  } else if constexpr (kIs<Part, std::variant>) {
    std::visit([&](const auto& each) { lookFor(event, each, words); }, part);
  } else if constexpr (requires { fields(part); }) {
    std::apply([&](const auto&... each) { (lookFor(event, each, words), ...); }, fields(part));
  } else if constexpr (List<Part> && !std::same_as<Part, std::string>) {
    for (const auto& each : part) lookFor(event, each, words);
  }
}

std::string encoded(const auto& record) {
  std::string text;
  writeJson(text, record);
  return text;
}

template <class Record>
std::optional<Record> decoded(std::string_view text) {
  const auto json = parseBoundedJson(text);
  Record record;
  if (!json || !fromJson(*json, record)) return std::nullopt;
  return record;
}

}  // namespace

std::optional<std::string> wording(const DashboardContent& content, const ControlEvent& event) {
  std::optional<std::string> words;
  lookFor(event, content, words);
  return words;
}

std::optional<std::string> wording(const SettingsWindowContent& content, const ControlEvent& event) {
  std::optional<std::string> words;
  lookFor(event, content, words);
  return words;
}

std::string encode(const RecordForWindows& record) { return encoded(record); }
std::string encode(const RecordFromWindows& record) { return encoded(record); }

std::optional<RecordForWindows> decodeForWindows(std::string_view text) { return decoded<RecordForWindows>(text); }
std::optional<RecordFromWindows> decodeFromWindows(std::string_view text) { return decoded<RecordFromWindows>(text); }

}  // namespace nimbo
