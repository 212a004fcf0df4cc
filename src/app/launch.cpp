// SPDX-License-Identifier: MIT
#include "app/launch.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/text.h"
#include "command/command_line.h"

namespace nimbo {
namespace {

using namespace std::string_view_literals;

constexpr std::array kFlags{
    std::pair{"--claude-desktop-check"sv, LaunchMode::claudeDesktopCheck},
    std::pair{"--diagnostics"sv, LaunchMode::diagnostics},
    std::pair{"--profile"sv, LaunchMode::profile},
};

// No host but these three counts, and none of them holds a character that RFC 3986 would split or
// decode: whatever a parser would find besides (a user, an escaped letter) makes the comparison fail.
constexpr std::array kLinks{
    std::pair{"nimbo://resources"sv, DashboardTab::memory},
    std::pair{"nimbo://awake"sv, DashboardTab::awake},
    std::pair{"nimbo://usage"sv, DashboardTab::ai},
};

// An empty port is no port (RFC 3986, section 3.2.3), while an empty query or fragment is one (6.2.3).
bool endsLink(std::string_view rest) {
  if (rest.starts_with(':')) rest.remove_prefix(1);
  return rest.empty() || rest == "/";
}

}  // namespace

LaunchMode launchMode(std::span<const std::string> arguments) {
  const bool command = isCommand(arguments);
  const auto end = command ? std::ranges::find(arguments, "--") : arguments.end();
  for (const auto& [flag, mode] : kFlags) {
    if (std::find(arguments.begin(), end, flag) != end) return mode;
  }
  return command ? LaunchMode::command : LaunchMode::menuBar;
}

std::vector<std::string> launchLinks(std::span<const std::string> arguments) {
  std::vector<std::string> links;
  if (arguments.empty()) return links;
  std::ranges::copy_if(arguments.subspan(1), std::back_inserter(links),
                       [](const std::string& argument) { return startsWithIgnoringCase(argument, "nimbo:"); });
  return links;
}

std::optional<DashboardTab> tabOfLink(std::string_view url) {
  for (const auto& [link, tab] : kLinks) {
    if (startsWithIgnoringCase(url, link) && endsLink(url.substr(link.size()))) return tab;
  }
  return std::nullopt;
}

std::optional<DashboardTab> tabOfLastLink(std::span<const std::string> links) {
  std::optional<DashboardTab> last;
  for (const auto& link : links) {
    if (const auto tab = tabOfLink(link)) last = tab;
  }
  return last;
}

}  // namespace nimbo
