// SPDX-License-Identifier: MIT
#include "app/launch_mode.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

namespace nimbo {
namespace {

using namespace std::string_view_literals;

constexpr std::array kFlags{
    std::pair{"--claude-desktop-check"sv, LaunchMode::claudeDesktopCheck},
    std::pair{"--diagnostics"sv, LaunchMode::diagnostics},
    std::pair{"--profile"sv, LaunchMode::profile},
};

// Not std::tolower, whose answer depends on the locale.
bool equalIgnoringCase(char character, char lowercase) {
  return character == lowercase || (character >= 'A' && character <= 'Z' && character - 'A' + 'a' == lowercase);
}

bool isLink(std::string_view argument) {
  constexpr std::string_view kScheme = "nimbo:";
  const std::string_view head = argument.substr(0, kScheme.size());
  return std::equal(head.begin(), head.end(), kScheme.begin(), kScheme.end(), equalIgnoringCase);
}

}  // namespace

LaunchMode launchMode(std::span<const std::string> arguments) {
  for (const auto& [flag, mode] : kFlags) {
    if (std::find(arguments.begin(), arguments.end(), flag) != arguments.end()) return mode;
  }
  return LaunchMode::menuBar;
}

std::vector<std::string> launchLinks(std::span<const std::string> arguments) {
  std::vector<std::string> links;
  if (arguments.empty()) return links;
  std::copy_if(std::next(arguments.begin()), arguments.end(), std::back_inserter(links), isLink);
  return links;
}

}  // namespace nimbo
