// SPDX-License-Identifier: MIT
#include "app/widgets/widget_destination.h"

#include "base/text.h"

namespace nimbo {
namespace {

// What follows `prefix`; absent when `text` begins otherwise.
std::optional<std::string_view> after(std::string_view prefix, std::string_view text) {
  if (!startsWithIgnoringCase(text, prefix)) return std::nullopt;
  return text.substr(prefix.size());
}

// An empty port is no port (RFC 3986, section 3.2.3), while an empty query or fragment is one (6.2.3).
bool endsLink(std::string_view rest) {
  if (rest.starts_with(':')) rest.remove_prefix(1);
  return rest.empty() || rest == "/";
}

}  // namespace

std::string_view rawValue(WidgetDestination destination) {
  switch (destination) {
    case WidgetDestination::resources:
      return "resources";
    case WidgetDestination::awake:
      return "awake";
    case WidgetDestination::usage:
      return "usage";
  }
  return {};
}

std::optional<WidgetDestination> widgetDestination(std::string_view url) {
  // No host but these three counts, and none of them holds a character that RFC 3986 would split or
  // decode: whatever a parser would find besides (a user, an escaped letter) makes the comparison fail.
  const auto host = after("nimbo://", url);
  if (!host) return std::nullopt;
  for (const auto destination : kAllWidgetDestinations) {
    const auto rest = after(rawValue(destination), *host);
    if (rest && endsLink(*rest)) return destination;
  }
  return std::nullopt;
}

std::optional<WidgetDestination> lastWidgetDestination(std::span<const std::string> links) {
  std::optional<WidgetDestination> last;
  for (const auto& link : links) {
    if (const auto destination = widgetDestination(link)) last = destination;
  }
  return last;
}

DashboardTab tabFor(WidgetDestination destination) {
  switch (destination) {
    case WidgetDestination::resources:
      return DashboardTab::memory;
    case WidgetDestination::awake:
      return DashboardTab::awake;
    case WidgetDestination::usage:
      return DashboardTab::ai;
  }
  return DashboardTab::memory;
}

}  // namespace nimbo
