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
  } else if constexpr (List<Part> && !std::same_as<Part, std::string>) {
    for (const auto& each : part) lookFor(event, each, words);
  } else if constexpr (std::is_aggregate_v<Part>) {
    boost::pfr::for_each_field(part, [&](const auto& each) { lookFor(event, each, words); });
  }
}

std::optional<std::string> wordingIn(const auto& content, const ControlEvent& event) {
  std::optional<std::string> words;
  lookFor(event, content, words);
  return words;
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
  return wordingIn(content, event);
}

std::optional<std::string> wording(const SettingsWindowContent& content, const ControlEvent& event) {
  return wordingIn(content, event);
}

std::string encode(const RecordForWindows& record) { return encoded(record); }
std::string encode(const RecordFromWindows& record) { return encoded(record); }

std::optional<RecordForWindows> decodeForWindows(std::string_view text) { return decoded<RecordForWindows>(text); }
std::optional<RecordFromWindows> decodeFromWindows(std::string_view text) { return decoded<RecordFromWindows>(text); }

}  // namespace nimbo
