// SPDX-License-Identifier: MIT
#include "app/launch_mode.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

#include "base/text.h"

namespace nimbo {
namespace {

using namespace std::string_view_literals;

constexpr std::array kFlags{
    std::pair{"--claude-desktop-check"sv, LaunchMode::claudeDesktopCheck},
    std::pair{"--diagnostics"sv, LaunchMode::diagnostics},
    std::pair{"--profile"sv, LaunchMode::profile},
};

bool isLink(std::string_view argument) { return startsWithIgnoringCase(argument, "nimbo:"); }

}  // namespace

LaunchMode launchMode(std::span<const std::string> arguments) {
  for (const auto& [flag, mode] : kFlags) {
    if (std::ranges::find(arguments, flag) != arguments.end()) return mode;
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
